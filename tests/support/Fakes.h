#pragma once
// Test doubles for the ports and a harness that runs a command handler on a text buffer.

#include "app/BatchPorts.h"
#include "app/Command.h"
#include "app/TextBuffer.h"
#include "util/Utility.h"

#include <QMap>
#include <QStringList>

#include <deque>
#include <memory>
#include <ostream>

// Readable QString values in test failures and messages.
inline std::ostream& operator<<(std::ostream& os, const QString& s) {
    return os << '"' << s.toStdString() << '"';
}
inline void PrintTo(const QString& s, std::ostream* os) {
    *os << s;
}

namespace ed::test {

struct PromptEvent {
    QString prompt, title, defaultAnswer;
};
struct MessageEvent {
    QString text, title;
    Buttons buttons;
    Icon icon;
};

// Answers prompts from a queue (empty queue = Cancel) and records what was shown.
class FakeDialogs : public Dialogs {
public:
    std::deque<QString> answers;
    std::deque<Answer> buttonAnswers;
    std::vector<PromptEvent> prompts;
    std::vector<MessageEvent> messages;
    // The default button of each question asked through ask(), by its text.
    QMap<QString, Answer> defaults;

    // Each prompt shown so far as "prompt|title|default answer".
    QStringList shown() const;

    QString inputBox(const QString& prompt, const QString& title,
                     const QString& defaultAnswer) override;
    Answer messageBox(const QString& text, const QString& title, Buttons buttons,
                      Icon icon) override;
    Answer ask(const QString& text, const QString& title, Buttons buttons, Icon icon,
               Answer defaultButton) override {
        defaults.insert(text, defaultButton);
        return messageBox(text, title, buttons, icon);
    }
};

class MemorySettings : public Settings {
public:
    QMap<QString, QString> values; // "app|section|key" -> value
    int writes = 0;
    QString read(const QString& app, const QString& section, const QString& key,
                 const QString& defaultValue) override {
        return values.value(app + u'|' + section + u'|' + key, defaultValue);
    }
    void write(const QString& app, const QString& section, const QString& key,
               const QString& value) override {
        ++writes;
        values.insert(app + u'|' + section + u'|' + key, value);
    }
};

struct LoggedError {
    QString module, location, detail;
};
class RecordingLogger : public Logger {
public:
    std::vector<LoggedError> errors;
    void logError(const QString& module, const QString& location, const QString& detail) override {
        errors.push_back({module, location, detail});
    }
};

class FixedClock : public Clock {
public:
    QDateTime time = QDateTime(QDate(2026, 11, 15), QTime(15, 47, 19));
    QDateTime now() const override { return time; }
};

class FakeLauncher : public Launcher {
public:
    struct Started {
        QString program;
        QStringList arguments;
    };
    std::vector<Started> started;
    QStringList opened, explored;
    bool result = true;
    bool open(const QString& target) override {
        opened << target;
        return result;
    }
    bool explore(const QString& folder) override {
        explored << folder;
        return result;
    }

protected:
    bool startProcess(const QString& program, const QStringList& arguments) override {
        started.push_back({program, arguments});
        return result;
    }
};

class FakeWindow : public FormWindow {
public:
    QString captionText;
    QStringList statuses;
    int closed = 0;
    void setCaption(const QString& c) override { captionText = c; }
    QString caption() const override { return captionText; }
    void showStatus(const QString& t) override { statuses << t; }
    void close() override { ++closed; }
};

// The front of a queue of scripted answers, taken off; an empty queue gives the empty answer.
template <class T> T takeNext(std::deque<T>& queue) {
    if (queue.empty())
        return T();
    T answer = std::move(queue.front());
    queue.pop_front();
    return answer;
}

// Open, save and folder dialogs answered from queues (empty queue = Cancel); the font dialog is
// cancelled.
class FakeFileDialogs : public FileDialogs {
public:
    std::deque<FileDialogResult> openAnswers, saveAnswers;
    std::deque<QString> folderAnswers;
    std::vector<FileDialogRequest> requests;
    std::vector<std::pair<QString, QString>> folderRequests; // title, initial folder
    FileDialogResult showOpen(const FileDialogRequest& r) override {
        requests.push_back(r);
        return takeNext(openAnswers);
    }
    FileDialogResult showSave(const FileDialogRequest& r) override {
        requests.push_back(r);
        return takeNext(saveAnswers);
    }
    FontSpec showFont(const FontSpec& f) override { return f; }
    QString showFolder(const QString& title, const QString& initialDir) override {
        folderRequests.emplace_back(title, initialDir);
        return takeNext(folderAnswers);
    }
};

// Everything a handler needs, over a TextBuffer. `app` is the settings application name.
struct Harness {
    explicit Harness(const QString& text = QString());
    TextBuffer edit;
    FakeDialogs dialogs;
    MemoryClipboard clipboard;
    MemorySettings settings;
    RecordingLogger log;
    FixedClock clock;
    FakeLauncher launcher;
    DeclaredMenuState menu;
    Utility util{log};
    FormState form;
    FakeWindow window;
    StartUpState startUp;
    CommandContext ctx;

    // Runs a menu item through the registry (with its error trap), as the window would.
    void run(const QString& item);
    QString setting(const QString& section, const QString& key) const;
    void setSetting(const QString& section, const QString& key, const QString& value);
    void select(int start, int length) {
        edit.setSelStart(start);
        edit.setSelLength(length);
    }
};

// The harness after `item` ran on `text` with the selection set and `answers` queued for its
// prompts (once they run out: Cancel).
std::unique_ptr<Harness> runOn(const QString& item, const QString& text,
                               const QStringList& answers = {}, int selStart = 0,
                               int selLength = 0);

// A folder removed at the end of the test.
QString makeTempDir();

// Whole files of a test; readFile gives "<missing>" for a file that cannot be read.
void writeFile(const QString& path, const QByteArray& bytes);
QByteArray readFile(const QString& path);

// The program's batch mode (EDITOR_BIN) on a file holding `document`, with settings and logs in a
// folder of their own and `settings` ("section/key" -> value) stored first. The event loop runs
// while it works, so a test's own servers keep answering.
struct EditorRun {
    int exitCode = -1; // -1: did not start or finish in time, -2: crashed
    QByteArray out;
    QStringList report; // the lines on standard error
    QString logs;       // the folder of its error log
};
EditorRun runEditorBatch(const QStringList& args, const QByteArray& document,
                         const QMap<QString, QString>& settings = {});

} // namespace ed::test
