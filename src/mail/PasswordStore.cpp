// Reads and writes the SMTP password through QtKeychain's asynchronous jobs.

#include "mail/PasswordStore.h"

#include <qt6keychain/keychain.h>

namespace ed::mail {

namespace {

const QString kService = QStringLiteral("Editor SMTP");

QString keyOf(const QString& user, const QString& server) {
    return user + u'@' + server;
}

} // namespace

PasswordStore::PasswordStore(QObject* parent)
    : QObject(parent), available_(!qEnvironmentVariableIsSet("EDITOR_NO_KEYCHAIN") &&
                                  qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS")) {}

void PasswordStore::read(const QString& user, const QString& server,
                         std::function<void(const QString&)> found) {
    if (!available_ || user.isEmpty())
        return;
    auto* job = new QKeychain::ReadPasswordJob(kService, this);
    job->setKey(keyOf(user, server));
    connect(job, &QKeychain::Job::finished, this, [found = std::move(found)](QKeychain::Job* j) {
        const auto* r = static_cast<QKeychain::ReadPasswordJob*>(j);
        if (r->error() == QKeychain::NoError && !r->textData().isEmpty())
            found(r->textData());
    });
    job->start();
}

void PasswordStore::write(const QString& user, const QString& server, const QString& password) {
    if (!available_ || user.isEmpty() || password.isEmpty())
        return;
    auto* job = new QKeychain::WritePasswordJob(kService, this);
    job->setKey(keyOf(user, server));
    job->setTextData(password);
    job->start();
}

} // namespace ed::mail
