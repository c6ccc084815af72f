// Builds the MIME text of one message.

#include "mail/MailMessage.h"

#include <QFile>
#include <QFileInfo>
#include <QMimeDatabase>
#include <QRandomGenerator>

namespace ed::mail {

namespace {

bool isPlainAscii(const QString& text) {
    for (QChar c : text) {
        if (c.unicode() < 0x20 || c.unicode() > 0x7e)
            return false;
    }
    return true;
}

// Base64 lines of at most 76 characters.
QByteArray base64Lines(const QByteArray& bytes) {
    const QByteArray b64 = bytes.toBase64();
    QByteArray out;
    out.reserve(b64.size() + b64.size() / 76 * 2 + 2);
    for (qsizetype i = 0; i < b64.size(); i += 76) {
        out += b64.mid(i, 76);
        out += "\r\n";
    }
    return out;
}

// Quoted-printable with soft line breaks; hard line breaks are CR LF.
QByteArray quotedPrintable(const QByteArray& utf8) {
    static const char hex[] = "0123456789ABCDEF";
    QByteArray out;
    int lineLength = 0;
    auto put = [&](const QByteArray& piece) {
        if (lineLength + piece.size() > 75) {
            out += "=\r\n";
            lineLength = 0;
        }
        out += piece;
        lineLength += int(piece.size());
    };
    for (qsizetype i = 0; i < utf8.size(); ++i) {
        const auto c = uchar(utf8[i]);
        if (c == '\r' && i + 1 < utf8.size() && utf8[i + 1] == '\n') {
            ++i;
            out += "\r\n";
            lineLength = 0;
            continue;
        }
        const bool lineEndFollows = i + 1 == utf8.size() || utf8[i + 1] == '\r';
        const bool plain =
            (c >= 33 && c <= 126 && c != '=') || ((c == ' ' || c == '\t') && !lineEndFollows);
        // A dot at the start of a line is encoded too, so no relay ever sees a lone ".".
        if (plain && !(c == '.' && lineLength == 0))
            put(QByteArray(1, char(c)));
        else
            put(QByteArray("=") + hex[c >> 4] + hex[c & 15]);
    }
    return out;
}

QString toCrLf(QString text) {
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(u'\r', u'\n');
    text.replace(QStringLiteral("\n"), QStringLiteral("\r\n"));
    return text;
}

QByteArray rfc2822Date(const QDateTime& when) {
    return (when.isValid() ? when : QDateTime::currentDateTime())
        .toString(Qt::RFC2822Date)
        .toLatin1();
}

QByteArray headerAddress(const QString& address) {
    return address.trimmed().toUtf8();
}

// A file name parameter; non-ASCII names use RFC 2231's UTF-8 form.
QByteArray fileNameParameter(const QString& name) {
    if (isPlainAscii(name) && !name.contains(u'"') && !name.contains(u'\\'))
        return "filename=\"" + name.toLatin1() + '"';
    return "filename*=UTF-8''" + name.toUtf8().toPercentEncoding();
}

} // namespace

QByteArray encodeHeaderText(const QString& text) {
    if (isPlainAscii(text))
        return text.toLatin1();
    // Encoded words of at most 75 characters, never splitting a character's bytes.
    QByteArray out;
    QByteArray chunk;
    auto flush = [&] {
        if (chunk.isEmpty())
            return;
        if (!out.isEmpty())
            out += "\r\n ";
        out += "=?UTF-8?B?" + chunk.toBase64() + "?=";
        chunk.clear();
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        QString one = text.at(i);
        if (text.at(i).isHighSurrogate() && i + 1 < text.size())
            one += text.at(++i);
        const QByteArray bytes = one.toUtf8();
        if ((chunk.size() + bytes.size() + 2) / 3 * 4 > 45)
            flush();
        chunk += bytes;
    }
    flush();
    return out;
}

QString makeMessageId(const QString& from) {
    QString domain = from.section(u'@', -1).trimmed();
    if (!from.contains(u'@') || domain.isEmpty())
        domain = QStringLiteral("localhost");
    const quint64 a = QRandomGenerator::system()->generate64();
    return QStringLiteral("%1.%2@%3")
        .arg(QDateTime::currentMSecsSinceEpoch())
        .arg(a, 16, 16, QLatin1Char('0'))
        .arg(domain);
}

QByteArray buildMime(const MailMessage& m) {
    const QByteArray body = toCrLf(m.body).toUtf8();
    QByteArray qp = quotedPrintable(body);
    // A soft line break at the very end: a body without a final line break arrives without one.
    if (!body.isEmpty() && !body.endsWith("\r\n"))
        qp += "=\r\n";
    const QByteArray b64 = base64Lines(body);
    const bool useQp = qp.size() <= b64.size();

    QByteArray textPart = "Content-Type: text/plain; charset=UTF-8\r\n"
                          "Content-Transfer-Encoding: ";
    textPart += useQp ? "quoted-printable\r\n\r\n" : "base64\r\n\r\n";
    textPart += useQp ? qp : b64;

    QByteArray out;
    out += "Date: " + rfc2822Date(m.date) + "\r\n";
    out += "From: " + headerAddress(m.from) + "\r\n";
    out += "To: " + headerAddress(m.to) + "\r\n";
    out += "Subject: " + encodeHeaderText(m.subject) + "\r\n";
    out += "Message-ID: <" + m.messageId.toLatin1() + ">\r\n";
    out += "MIME-Version: 1.0\r\n";
    if (!m.hasAttachment)
        return out + textPart;

    const QByteArray boundary =
        "=_part_" + QByteArray::number(QRandomGenerator::system()->generate64(), 36);
    out += "Content-Type: multipart/mixed; boundary=\"" + boundary + "\"\r\n\r\n";
    out += "This is a message in MIME format.\r\n";
    // The line break before each boundary belongs to the boundary, not to the part.
    out += "--" + boundary + "\r\n" + textPart + "\r\n";
    const QString type = m.attachment.mimeType.isEmpty()
                             ? QStringLiteral("application/octet-stream")
                             : m.attachment.mimeType;
    out += "--" + boundary + "\r\n";
    out += "Content-Type: " + type.toLatin1() + "\r\n";
    out += "Content-Transfer-Encoding: base64\r\n";
    out +=
        "Content-Disposition: attachment; " + fileNameParameter(m.attachment.fileName) + "\r\n\r\n";
    out += base64Lines(m.attachment.bytes);
    out += "\r\n--" + boundary + "--\r\n";
    return out;
}

bool loadAttachment(const QString& path, Attachment& attachment, QString& error) {
    const QFileInfo info(path);
    if (!info.isFile()) {
        error = QStringLiteral("The attachment %1 does not exist.").arg(path);
        return false;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error =
            QStringLiteral("The attachment %1 cannot be read: %2").arg(path, file.errorString());
        return false;
    }
    attachment.bytes = file.readAll();
    attachment.fileName = info.fileName();
    attachment.mimeType = QMimeDatabase().mimeTypeForFileNameAndData(path, attachment.bytes).name();
    return true;
}

} // namespace ed::mail
