#pragma once
// The SMTP password in the desktop's keychain, when there is one. Without a keychain (no session
// bus, or EDITOR_NO_KEYCHAIN set) nothing is stored and the form asks each time.

#include <QObject>
#include <QString>

#include <functional>

namespace ed::mail {

class PasswordStore : public QObject {
    Q_OBJECT
public:
    explicit PasswordStore(QObject* parent = nullptr);
    bool available() const { return available_; }
    // Looks up the password of `user` on `server`; `found` gets it later, and only when the
    // keychain has one.
    void read(const QString& user, const QString& server,
              std::function<void(const QString& password)> found);
    void write(const QString& user, const QString& server, const QString& password);

private:
    bool available_;
};

} // namespace ed::mail
