// Parses the --field options of the mail command and reports each address.

#include "app/SendMailBatch.h"

#include "editor/DocumentIO.h"
#include "mail/SendJob.h"

#include <QFile>
#include <QHash>

#include <atomic>

namespace ed {

namespace {

const QStringList kFieldNames = {QStringLiteral("to"),         QStringLiteral("subject"),
                                 QStringLiteral("from"),       QStringLiteral("server"),
                                 QStringLiteral("security"),   QStringLiteral("user"),
                                 QStringLiteral("attachment"), QStringLiteral("timeout")};

struct MailArguments {
    QHash<QString, QString> fields;
    bool report = false;
    QString inFile;
};

bool parseMailArguments(const QStringList& args, MailArguments& m, QString& error) {
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString& a = args[i];
        if (a == u"--apply") {
            if (i + 1 >= args.size() || args[i + 1] != u"SendAsEmail") {
                error = QStringLiteral("SendAsEmail cannot be combined with other commands");
                return false;
            }
            ++i;
        } else if (a == u"--field") {
            if (i + 1 >= args.size()) {
                error = QStringLiteral("--field needs NAME=VALUE");
                return false;
            }
            const QString v = args[++i];
            const qsizetype eq = v.indexOf(u'=');
            const QString name = eq < 0 ? v : v.left(eq);
            if (eq < 0 || !kFieldNames.contains(name)) {
                error = QStringLiteral("--field wants NAME=VALUE with NAME one of %1, not \"%2\"")
                            .arg(kFieldNames.join(QStringLiteral(", ")), v);
                return false;
            }
            m.fields.insert(name, v.mid(eq + 1));
        } else if (a == u"--report") {
            m.report = true;
        } else if (a.startsWith(u"--")) {
            error = QStringLiteral("option %1 does not go with SendAsEmail").arg(a);
            return false;
        } else {
            if (!m.inFile.isEmpty()) {
                error = QStringLiteral("only one FILE may be given (\"%1\" and \"%2\")")
                            .arg(m.inFile, a);
                return false;
            }
            m.inFile = a;
        }
    }
    return true;
}

// The `to` field: a file of addresses when such a file exists, else a list separated by ",".
bool readAddresses(const QString& to, QStringList& addresses, QString& error) {
    if (QFile::exists(to)) {
        if (!mail::readAddressFile(to, addresses, error))
            return false;
    } else if (!to.trimmed().isEmpty() && !to.contains(u'@')) {
        error = QStringLiteral("the address list %1 does not exist").arg(to);
        return false;
    } else {
        addresses = mail::splitAddresses(to);
    }
    return true;
}

bool buildRequest(const MailArguments& m, mail::SendRequest& r, QString& error) {
    if (!readAddresses(m.fields.value(QStringLiteral("to")), r.addresses, error))
        return false;
    r.subject = m.fields.value(QStringLiteral("subject"));
    r.from = m.fields.value(QStringLiteral("from"));
    if (!mail::parseServer(
            m.fields.value(QStringLiteral("server"), QStringLiteral("localhost:587")), 587,
            r.server.host, r.server.port, error))
        return false;
    const QString security =
        m.fields.value(QStringLiteral("security"), QStringLiteral("starttls")).toLower();
    if (security == u"starttls") {
        r.server.security = mail::Security::StartTls;
    } else if (security == u"tls") {
        r.server.security = mail::Security::Tls;
    } else if (security == u"none") {
        r.server.security = mail::Security::None;
    } else {
        error = QStringLiteral("security must be starttls, tls or none, not \"%1\"").arg(security);
        return false;
    }
    if (m.fields.contains(QStringLiteral("timeout"))) {
        bool ok = false;
        const int seconds = m.fields.value(QStringLiteral("timeout")).toInt(&ok);
        if (!ok || seconds < 1) {
            error = QStringLiteral("timeout must be a whole number of seconds, 1 or more");
            return false;
        }
        r.server.connectTimeoutSeconds = seconds;
        r.server.idleTimeoutSeconds = seconds;
    }
    r.server.user = m.fields.value(QStringLiteral("user"));
    if (!r.server.user.isEmpty()) {
        if (!qEnvironmentVariableIsSet("EDITOR_SMTP_PASSWORD")) {
            error = QStringLiteral("a user name needs the password in EDITOR_SMTP_PASSWORD");
            return false;
        }
        r.server.password = qEnvironmentVariable("EDITOR_SMTP_PASSWORD");
    }
    const QString attachment = m.fields.value(QStringLiteral("attachment"));
    if (!attachment.isEmpty()) {
        if (!mail::loadAttachment(attachment, r.attachment, error))
            return false;
        r.hasAttachment = true;
    }
    error = mail::checkRequest(r);
    return error.isEmpty();
}

bool readBody(const QString& path, QString& body, QString& error) {
    QByteArray bytes;
    if (path.isEmpty() || path == u"-") {
        QFile in;
        if (!in.open(stdin, QIODevice::ReadOnly)) {
            error = QStringLiteral("cannot read standard input");
            return false;
        }
        bytes = in.readAll();
    } else if (!readFileBytes(path, bytes, error)) {
        return false;
    }
    body = decodeDocument(bytes, path).text;
    return true;
}

void writeLine(FILE* f, const QString& line) {
    const QByteArray b = line.toUtf8();
    std::fwrite(b.constData(), 1, size_t(b.size()), f);
    std::fputc('\n', f);
    std::fflush(f);
}

// A reason on one line, so each address keeps one report line.
QString oneLine(QString text) {
    text.replace(u'\r', u' ');
    text.replace(u'\n', u' ');
    return text;
}

} // namespace

int runSendMailBatch(const QStringList& args, mail::MailTransport& transport, FILE* err) {
    MailArguments m;
    mail::SendRequest request;
    QString error;
    if (!parseMailArguments(args, m, error) || !buildRequest(m, request, error) ||
        !readBody(m.inFile, request.body, error)) {
        writeLine(err, QStringLiteral("Editor: ") + error);
        return 2;
    }
    const std::atomic_bool cancel{false};
    bool anyFailed = false;
    mail::runSend(request, transport, cancel, [&](int, const mail::AddressResult& r) {
        if (r.status == mail::AddressStatus::Failed)
            anyFailed = true;
        if (!m.report)
            return;
        QString line = mail::statusWord(r.status) + QStringLiteral(": ") + oneLine(r.address);
        if (r.status == mail::AddressStatus::Failed)
            line += QStringLiteral(": ") + oneLine(r.reason);
        writeLine(err, line);
    });
    return anyFailed ? 1 : 0;
}

} // namespace ed
