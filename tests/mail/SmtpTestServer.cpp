// Starts smtp_server.py with Debian's Python (which has aiosmtpd) and reads what it saved.

#include "SmtpTestServer.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

namespace ed::test {

SmtpTestServer::SmtpTestServer() {
    const QString python = QFile::exists(QStringLiteral("/usr/bin/python3"))
                               ? QStringLiteral("/usr/bin/python3")
                               : QStringLiteral("python3");
    process_.setProcessChannelMode(QProcess::SeparateChannels);
    process_.start(python, {QStringLiteral(MAIL_TEST_SERVER), dir_.path()});
    if (!process_.waitForStarted(10000))
        return;
    QByteArray line;
    while (!line.contains('\n') && process_.waitForReadyRead(15000))
        line += process_.readAllStandardOutput();
    const QJsonObject ports = QJsonDocument::fromJson(line.trimmed()).object();
    plainPort = ports.value(QStringLiteral("plain")).toInt();
    authPort = ports.value(QStringLiteral("auth")).toInt();
    hangPort = ports.value(QStringLiteral("hang")).toInt();
    closedPort = ports.value(QStringLiteral("closed")).toInt();
}

SmtpTestServer::~SmtpTestServer() {
    process_.closeWriteChannel();
    if (!process_.waitForFinished(5000)) {
        process_.kill();
        process_.waitForFinished(5000);
    }
}

std::vector<ReceivedMessage> SmtpTestServer::messages() const {
    std::vector<ReceivedMessage> out;
    const QDir dir(dir_.path());
    for (const QString& name : dir.entryList({QStringLiteral("*.json")}, QDir::Files, QDir::Name)) {
        QFile f(dir.filePath(name));
        if (!f.open(QIODevice::ReadOnly))
            continue;
        const QJsonObject o = QJsonDocument::fromJson(f.readAll()).object();
        ReceivedMessage m;
        for (const QJsonValue& r : o.value(QStringLiteral("rcpt")).toArray())
            m.rcpt << r.toString();
        m.to = o.value(QStringLiteral("to")).toString();
        m.subject = o.value(QStringLiteral("subject")).toString();
        m.date = o.value(QStringLiteral("date")).toString();
        m.messageId = o.value(QStringLiteral("message_id")).toString();
        m.body = QByteArray::fromBase64(o.value(QStringLiteral("body")).toString().toLatin1());
        for (const QJsonValue& a : o.value(QStringLiteral("attachments")).toArray()) {
            const QJsonObject ao = a.toObject();
            m.attachments.push_back(
                {ao.value(QStringLiteral("filename")).toString(),
                 ao.value(QStringLiteral("type")).toString(),
                 QByteArray::fromBase64(ao.value(QStringLiteral("bytes")).toString().toLatin1())});
        }
        out.push_back(m);
    }
    return out;
}

QStringList SmtpTestServer::log() const {
    QFile f(dir_.filePath(QStringLiteral("log.txt")));
    if (!f.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(f.readAll()).split(u'\n', Qt::SkipEmptyParts);
}

} // namespace ed::test
