#include "web/EmailFinder.h"

#include "web/WebText.h"

#include <QUrl>

namespace ed::web {

namespace {

constexpr qsizetype kMaxLocalPart = 64;
constexpr qsizetype kMaxDomain = 253;

bool isLocalPartChar(QChar c) {
    static const QString extra = QStringLiteral(".!#$%&'*+/=?^_`{|}~-");
    return c.isLetterOrNumber() || extra.contains(c);
}

bool isDomainChar(QChar c) {
    return c.isLetterOrNumber() || c == u'-' || c == u'.';
}

// Characters a local part may hold that in running text are far more often the quote, bracket,
// path or query around an address: the address starts after the last of them.
bool isDelimiterInText(QChar c) {
    static const QString delimiters = QStringLiteral("'`{}|/=?");
    return delimiters.contains(c);
}

// The local part that ends at `at`, starting no earlier than `from`; empty when there is none.
QStringView localPartBefore(QStringView text, qsizetype from, qsizetype at) {
    qsizetype begin = at;
    while (begin > from && isLocalPartChar(text[begin - 1]) && !isDelimiterInText(text[begin - 1]))
        --begin;
    QStringView local = text.mid(begin, at - begin);
    const qsizetype doubleDot = local.lastIndexOf(u"..");
    if (doubleDot >= 0)
        local = local.mid(doubleDot + 2);
    while (local.startsWith(u'.'))
        local = local.mid(1);
    return local;
}

} // namespace

QStringList emailsInText(QStringView text) {
    QStringList found;
    qsizetype scanned = 0; // nothing before this belongs to a later address
    for (qsizetype at = text.indexOf(u'@'); at >= 0; at = text.indexOf(u'@', at + 1)) {
        const QStringView local = localPartBefore(text, scanned, at);
        qsizetype end = at + 1;
        while (end < text.size() && isDomainChar(text[end]))
            ++end;
        scanned = at + 1;
        if (local.isEmpty() || local.size() > kMaxLocalPart)
            continue;
        QStringView domain = text.mid(at + 1, std::min(end - at - 1, kMaxDomain));
        while (!domain.isEmpty() && (domain.back() == u'.' || domain.back() == u'-'))
            domain.chop(1);
        // The longest run of whole labels that ends in a real top-level domain.
        while (domain.contains(u'.')) {
            const QString address = local.toString() + u'@' + domain.toString();
            if (isEmailAddress(address)) {
                found << address;
                scanned = at + 1 + domain.size();
                break;
            }
            domain = domain.left(domain.lastIndexOf(u'.'));
        }
    }
    return found;
}

QStringList emailsInMailto(const QString& href) {
    const QString trimmed = href.trimmed();
    if (!trimmed.startsWith(QStringLiteral("mailto:"), Qt::CaseInsensitive))
        return {};
    QString addresses = trimmed.mid(7);
    const qsizetype query = addresses.indexOf(u'?');
    if (query >= 0)
        addresses.truncate(query);
    return emailsInText(QUrl::fromPercentEncoding(addresses.toUtf8()));
}

void EmailCollector::add(const QStringList& addresses) {
    for (const QString& address : addresses) {
        const QString key = address.toCaseFolded();
        if (seen_.contains(key))
            continue;
        seen_.insert(key);
        list_ << address;
    }
}

} // namespace ed::web
