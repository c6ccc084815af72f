#pragma once
// The per-user settings store over INI files. The application name "A/B" (the program and user,
// then the program's folder) becomes the folder A and the file B.ini under the user's config
// folder ($XDG_CONFIG_HOME, else ~/.config), so two copies in two folders never share settings.

#include "app/Ports.h"

#include <QSettings>

#include <map>
#include <memory>

namespace ed {

class SettingsStore : public Settings {
public:
    // `root` overrides the user's config folder (tests); empty means the standard location.
    explicit SettingsStore(Logger* log = nullptr, QString root = QString());
    ~SettingsStore() override;

    QString read(const QString& app, const QString& section, const QString& key,
                 const QString& defaultValue) override;
    void write(const QString& app, const QString& section, const QString& key,
               const QString& value) override;

    // The file that holds the settings of `app`.
    QString filePath(const QString& app) const;
    static QString configRoot();

    void setLogger(Logger* log) { log_ = log; }

private:
    QSettings& open(const QString& app);
    void report(const QString& label, const QString& detail);

    Logger* log_;
    QString root_;
    std::map<QString, std::unique_ptr<QSettings>> files_;
    std::map<QString, bool> reported_;
};

// Settings bound to one application name, the form every command uses.
class AppSettings {
public:
    AppSettings(Settings& store, QString app) : store_(store), app_(std::move(app)) {}
    QString get(const QString& section, const QString& key, const QString& defaultValue = {}) {
        return store_.read(app_, section, key, defaultValue);
    }
    void save(const QString& section, const QString& key, const QString& value) {
        store_.write(app_, section, key, value);
    }
    const QString& appName() const { return app_; }
    Settings& store() { return store_; }

private:
    Settings& store_;
    QString app_;
};

// "True"/"False"/"-1"/"0"/numbers as the platform's string-to-boolean conversion reads them.
bool settingToBool(const QString& value, bool* ok = nullptr);
inline QString boolToSetting(bool b) { return b ? QStringLiteral("True") : QStringLiteral("False"); }

} // namespace ed
