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
        auto text = [](const QJsonObject& o, const char* key) { return o.value(key).toString(); };
        auto bytes = [&](const QJsonObject& o, const char* key) {
            return QByteArray::fromBase64(text(o, key).toLatin1());
        };
        ReceivedMessage m{o.value("rcpt").toVariant().toStringList(),
                          text(o, "to"),
                          text(o, "subject"),
                          text(o, "date"),
                          text(o, "message_id"),
                          bytes(o, "body"),
                          {}};
        for (const QJsonValue& a : o.value("attachments").toArray())
            m.attachments.push_back({text(a.toObject(), "filename"), text(a.toObject(), "type"),
                                     bytes(a.toObject(), "bytes")});
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
