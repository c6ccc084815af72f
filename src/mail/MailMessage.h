#pragma once
// One e-mail as it goes to one recipient: the headers and parts, and its MIME text.

#include <QByteArray>
#include <QDateTime>
#include <QString>

namespace ed::mail {

struct Attachment {
    QString fileName; // the name the recipient sees
    QString mimeType; // "application/pdf"
    QByteArray bytes;
};

struct MailMessage {
    QString from;
    QString to;
    QString subject;
    QString body; // any line breaks; sent as CR LF
    QDateTime date;
    QString messageId; // without the angle brackets
    bool hasAttachment = false;
    Attachment attachment;
};

// A header value in RFC 2047 encoded words when it holds anything but printable ASCII.
QByteArray encodeHeaderText(const QString& text);

// The whole message, CR LF line breaks, ready for SMTP's DATA: a UTF-8 text body as
// quoted-printable (or base64 when that is shorter), and the attachment as base64.
QByteArray buildMime(const MailMessage& message);

// A unique id for Message-ID, its domain taken from the sender's address.
QString makeMessageId(const QString& from);

// Reads a file to attach, its MIME type guessed from its name and content. False with `error`.
bool loadAttachment(const QString& path, Attachment& attachment, QString& error);

} // namespace ed::mail
