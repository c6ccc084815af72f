// The test doubles and harness declared in Fakes.h, and the batch program run on a scratch file.
#include "support/Fakes.h"

#include "editor/MenuTable.h"
#include "web/WaitLoop.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>

#include <memory>
#include <vector>

namespace ed::test {

QStringList FakeDialogs::shown() const {
    QStringList out;
    for (const PromptEvent& p : prompts)
        out << p.prompt + u'|' + p.title + u'|' + p.defaultAnswer;
    return out;
}

QString FakeDialogs::inputBox(const QString& prompt, const QString& title,
                              const QString& defaultAnswer) {
    prompts.push_back({prompt, title, defaultAnswer});
    return takeNext(answers);
}

Answer FakeDialogs::messageBox(const QString& text, const QString& title, Buttons buttons,
                               Icon icon) {
    messages.push_back({text, title, buttons, icon});
    if (buttons == Buttons::Ok)
        return Answer::Ok;
    if (buttonAnswers.empty())
        return buttons == Buttons::YesNo ? Answer::No : Answer::Cancel;
    return takeNext(buttonAnswers);
}

namespace {
StartUpState testStartUp() {
    StartUpState s;
    runStartUp(s, QStringLiteral("/opt/editor/Editor"), {});
    return s;
}
} // namespace

Harness::Harness(const QString& text)
    : edit(text), window(), startUp(testStartUp()),
      ctx(edit, dialogs, clipboard, AppSettings(settings, startUp.RegKeyAppName), log, clock,
          launcher, menu, util, form, window, startUp) {
    ctx.run = [this](const QString& item) { run(item); };
}

void Harness::run(const QString& item) {
    const MenuItemDecl* d = findMenuItem(item);
    if (!d)
        throw std::runtime_error("no such menu item: " + item.toStdString());
    if (!d->handler)
        throw std::runtime_error("menu item has no handler: " + item.toStdString());
    runMenuItem(*d, ctx);
}

QString Harness::setting(const QString& section, const QString& key) const {
    return settings.values.value(startUp.RegKeyAppName + u'|' + section + u'|' + key,
                                 QStringLiteral("<unset>"));
}

void Harness::setSetting(const QString& section, const QString& key, const QString& value) {
    settings.values.insert(startUp.RegKeyAppName + u'|' + section + u'|' + key, value);
}

std::unique_ptr<Harness> runOn(const QString& item, const QString& text, const QStringList& answers,
                               int selStart, int selLength) {
    auto h = std::make_unique<Harness>(text);
    h->select(selStart, selLength);
    h->dialogs.answers.assign(answers.begin(), answers.end());
    h->run(item);
    return h;
}

QString makeTempDir() {
    static std::vector<std::unique_ptr<QTemporaryDir>> dirs;
    dirs.push_back(std::make_unique<QTemporaryDir>());
    return dirs.back()->path();
}

void writeFile(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly) || f.write(bytes) != bytes.size())
        throw std::runtime_error("cannot write " + path.toStdString());
}

QByteArray readFile(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<missing>");
}

EditorRun runEditorBatch(const QStringList& args, const QByteArray& document,
                         const QMap<QString, QString>& settings) {
    const QString dir = makeTempDir();
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("XDG_CONFIG_HOME", dir + "/config");
    env.insert("LOGFILES", dir + "/logs");
    QDir().mkpath(dir + "/logs");
    auto run = [&](const QStringList& arguments) {
        QProcess p;
        p.setProcessEnvironment(env);
        p.start(qEnvironmentVariable("EDITOR_BIN"), arguments);
        EditorRun r;
        if (!p.waitForStarted(30000))
            return r;
        web::waitUntil([&] { return p.state() == QProcess::NotRunning; }, 60000, 20);
        if (p.state() != QProcess::NotRunning) {
            p.kill();
            p.waitForFinished(5000);
            return r;
        }
        r.exitCode = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -2;
        r.out = p.readAllStandardOutput();
        r.report = QString::fromUtf8(p.readAllStandardError()).split(u'\n', Qt::SkipEmptyParts);
        r.logs = dir + "/logs";
        return r;
    };
    if (!settings.isEmpty()) {
        QSettings stored(QString::fromUtf8(run({"--settings-path"}).out.trimmed()),
                         QSettings::IniFormat);
        for (auto it = settings.begin(); it != settings.end(); ++it)
            stored.setValue(it.key(), it.value());
    }
    writeFile(dir + "/doc.txt", document);
    return run(args + QStringList{dir + "/doc.txt"});
}

} // namespace ed::test
