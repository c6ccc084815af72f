#include "web/DownloadNames.h"

#include <QRegularExpression>
#include <QStringDecoder>

#include <optional>

namespace ed::web {

namespace {

constexpr qsizetype kLongestName = 200;

bool forbidden(QChar c) {
    static const QString bad = QStringLiteral("\\/:*?\"<>|");
    return c.unicode() < 0x20 || c.unicode() == 0x7F || bad.contains(c);
}

// "CON", "nul.txt", "Com1.log": names some systems give to devices.
bool isDeviceName(const QString& name) {
    static const QRegularExpression device(
        QStringLiteral("^(con|prn|aux|nul|com[1-9]|lpt[1-9])(\\..*)?$"),
        QRegularExpression::CaseInsensitiveOption);
    return device.match(name).hasMatch();
}

// Position of the extension's dot, or -1 (a leading dot starts a hidden name, not an extension).
qsizetype extensionDot(const QString& name) {
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 ? dot : -1;
}

QString decodeBytes(const QByteArray& bytes, const QByteArray& charset) {
    if (charset.compare("iso-8859-1", Qt::CaseInsensitive) == 0)
        return QString::fromLatin1(bytes);
    QStringDecoder utf8(QStringDecoder::Utf8);
    const QString text = utf8.decode(bytes);
    return utf8.hasError() ? QString::fromLatin1(bytes) : text;
}

// The value of parameter `key` of a header, unquoted; nothing when absent.
std::optional<QByteArray> parameter(const QByteArray& header, const QByteArray& key) {
    qsizetype i = header.indexOf(';');
    while (i >= 0 && i < header.size()) {
        ++i;
        while (i < header.size() && (header[i] == ' ' || header[i] == '\t'))
            ++i;
        const qsizetype eq = header.indexOf('=', i);
        if (eq < 0)
            return std::nullopt;
        const QByteArray name = header.mid(i, eq - i).trimmed();
        qsizetype j = eq + 1;
        while (j < header.size() && (header[j] == ' ' || header[j] == '\t'))
            ++j;
        QByteArray value;
        if (j < header.size() && header[j] == '"') {
            for (++j; j < header.size() && header[j] != '"'; ++j) {
                if (header[j] == '\\' && j + 1 < header.size())
                    ++j;
                value += header[j];
            }
            i = header.indexOf(';', j);
        } else {
            const qsizetype end = header.indexOf(';', j);
            value = header.mid(j, end < 0 ? -1 : end - j).trimmed();
            i = end;
        }
        if (name.compare(key, Qt::CaseInsensitive) == 0)
            return value;
    }
    return std::nullopt;
}

} // namespace

QString safeFileName(QString name, const QString& fallback) {
    for (QChar& c : name) {
        if (forbidden(c))
            c = u'_';
    }
    // No hidden names, no "." or "..", nothing a system trims away behind the user's back.
    name = name.trimmed();
    while (name.startsWith(u'.') || name.startsWith(u' '))
        name.remove(0, 1);
    while (name.endsWith(u'.') || name.endsWith(u' '))
        name.chop(1);
    if (name.isEmpty())
        return fallback;
    if (isDeviceName(name))
        name.prepend(u'_');
    if (name.size() > kLongestName) {
        const qsizetype dot = extensionDot(name);
        const QString ext = dot >= 0 && name.size() - dot <= 20 ? name.mid(dot) : QString();
        QString stem = name.left(kLongestName - ext.size());
        if (stem.back().isHighSurrogate())
            stem.chop(1);
        name = stem + ext;
    }
    return name;
}

QString contentDispositionName(const QByteArray& header) {
    // filename*=UTF-8'lang'percent-encoded
    if (const auto extended = parameter(header, "filename*")) {
        const QList<QByteArray> parts = extended->split('\'');
        if (parts.size() == 3) {
            const QString name = decodeBytes(QByteArray::fromPercentEncoding(parts[2]), parts[0]);
            if (!name.isEmpty())
                return name;
        }
    }
    if (const auto plain = parameter(header, "filename"))
        return decodeBytes(*plain, "utf-8");
    return QString();
}

QString downloadFileName(const QByteArray& contentDisposition, const QUrl& url) {
    const QString fallback = QStringLiteral("download");
    const QString name = safeFileName(contentDispositionName(contentDisposition), QString());
    if (!name.isEmpty())
        return name;
    // The segment is cut out before it is decoded, so an encoded "/" stays in the name (as "_").
    const QString segment = url.path(QUrl::FullyEncoded).section(u'/', -1);
    return safeFileName(decodeBytes(QByteArray::fromPercentEncoding(segment.toUtf8()), "utf-8"),
                        fallback);
}

QString uniqueFileName(const QString& name, const std::function<bool(const QString&)>& taken) {
    if (!taken(name))
        return name;
    const qsizetype dot = extensionDot(name);
    const QString stem = dot >= 0 ? name.left(dot) : name;
    const QString ext = dot >= 0 ? name.mid(dot) : QString();
    for (int n = 1;; ++n) {
        const QString candidate = QStringLiteral("%1 (%2)%3").arg(stem).arg(n).arg(ext);
        if (!taken(candidate))
            return candidate;
    }
}

} // namespace ed::web
