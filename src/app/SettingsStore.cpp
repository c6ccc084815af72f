#include "app/SettingsStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QStringList>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ed {

SettingsStore::SettingsStore(Logger* log, QString root) : log_(log), root_(std::move(root)) {}
SettingsStore::~SettingsStore() = default;

QString SettingsStore::configRoot() {
    const QByteArray xdg = qgetenv("XDG_CONFIG_HOME");
    if (!xdg.isEmpty() && QDir::isAbsolutePath(QString::fromLocal8Bit(xdg)))
        return QString::fromLocal8Bit(xdg);
    return QDir::homePath() + QStringLiteral("/.config");
}

QString SettingsStore::filePath(const QString& app) const {
    const QString root = root_.isEmpty() ? configRoot() : root_;
    QString rel = app;
    rel.replace(u'\\', u'/');
    // The folder part of the application name starts with "." on this platform ("/tmp/x" reads
    // ".tmp.x"), which would hide the file. A name that starts with "." or "_" gets one more "_"
    // in front, so no file is hidden and two names never share a file.
    QStringList parts = rel.split(u'/');
    for (QString& part : parts) {
        if (part.startsWith(u'.') || part.startsWith(u'_'))
            part.prepend(u'_');
    }
    return QDir::cleanPath(root + u'/' + parts.join(u'/')) + QStringLiteral(".ini");
}

void SettingsStore::report(const QString& label, const QString& detail) {
    // One report per file and kind of failure, not one per read.
    if (reported_[label])
        return;
    reported_[label] = true;
    if (log_)
        log_->logError(QStringLiteral("mStartUp"), label, detail);
}

namespace {
// Creates the folders of `path` that are missing (owner only) and an empty `path` readable by
// its owner only, so the settings written into it later stay private: the file is replaced on
// each save with one that keeps the permissions of the one before.
void makePrivateFile(const QString& path) {
    const QString folder = QFileInfo(path).path();
    QStringList missing;
    for (QString dir = folder; !dir.isEmpty() && !QFileInfo::exists(dir);
         dir = QFileInfo(dir).path()) {
        missing.prepend(dir);
        if (dir == QFileInfo(dir).path())
            break;
    }
    for (const QString& dir : missing)
        ::mkdir(QFile::encodeName(dir).constData(), 0700);
    const int fd = ::open(QFile::encodeName(path).constData(),
                          O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (fd >= 0)
        ::close(fd);
}
} // namespace

QSettings& SettingsStore::open(const QString& app) {
    auto it = files_.find(app);
    if (it != files_.end())
        return *it->second;
    const QString path = filePath(app);
    makePrivateFile(path);
    auto s = std::make_unique<QSettings>(path, QSettings::IniFormat);
    if (s->status() == QSettings::FormatError)
        report(QStringLiteral("Function GetSetting"),
               QStringLiteral("The settings file %1 is corrupt; defaults are used").arg(path));
    auto& ref = *s;
    files_.emplace(app, std::move(s));
    return ref;
}

QString SettingsStore::read(const QString& app, const QString& section, const QString& key,
                            const QString& defaultValue) {
    QSettings& s = open(app);
    if (s.status() == QSettings::FormatError)
        return defaultValue;
    s.sync(); // pick up what another copy of the program wrote meanwhile
    const QVariant v = s.value(section + u'/' + key);
    if (!v.isValid())
        return defaultValue;
    if (v.typeId() == QMetaType::QStringList)
        return v.toStringList().join(u',');
    return v.toString();
}

void SettingsStore::write(const QString& app, const QString& section, const QString& key,
                          const QString& value) {
    QSettings& s = open(app);
    if (s.status() == QSettings::FormatError)
        return; // never overwrite a file we could not read
    s.setValue(section + u'/' + key, value);
    s.sync();
    if (s.status() == QSettings::AccessError)
        report(QStringLiteral("Sub SaveSetting"),
               QStringLiteral("Cannot write the settings file %1").arg(s.fileName()));
}

bool settingToBool(const QString& value, bool* ok) {
    const QString v = value.trimmed();
    if (ok)
        *ok = true;
    if (v.compare(u"True", Qt::CaseInsensitive) == 0)
        return true;
    if (v.compare(u"False", Qt::CaseInsensitive) == 0)
        return false;
    bool isNum = false;
    const double d = v.toDouble(&isNum);
    if (isNum)
        return d != 0;
    if (ok)
        *ok = false;
    return false;
}

} // namespace ed
