#include "web/WebText.h"

#include "app/LaunchTarget.h"
#include "web/TopLevelDomains.h"

namespace ed::web {

const std::array<QString, 5>& protocolTypes() {
    return protocolPrefixes();
}

NavigationTarget navigationTarget(const QString& url) {
    const QString lower = url.toLower();
    for (const QString& protocol : protocolTypes()) {
        if (lower.left(protocol.size()) == protocol)
            return {false, url};
    }
    if (url.contains(u'@'))
        return {true, protocolTypes()[4] + url + QStringLiteral("?Subject=Hello")};
    return {false, protocolTypes()[0] + url};
}

QString browserAddress(const QString& url) {
    if (url.trimmed().isEmpty())
        return QStringLiteral("about:blank");
    const QString lower = url.toLower();
    for (const QString& protocol : protocolTypes()) {
        if (lower.startsWith(protocol))
            return url;
    }
    return protocolTypes()[0] + url;
}

QString stripHtml(const QString& text) {
    QString out;
    out.reserve(text.size());
    bool inTag = false;
    bool justClosed = false;
    for (QChar c : text) {
        if (c == u'<') {
            inTag = true;
        } else if (c == u'>') {
            inTag = false;
            justClosed = true;
        }
        if (inTag)
            justClosed = false;
        else if (justClosed)
            justClosed = false;
        else
            out += c;
    }
    return out;
}

namespace {

bool isLabelChar(QChar c) {
    return c.isLetterOrNumber() || c == u'-';
}

// host.tld with labels of letters, digits and inner hyphens; the last label a real top-level
// domain.
bool isDomainName(QStringView host) {
    if (host.endsWith(u'.'))
        host.chop(1);
    const auto labels = host.split(u'.');
    if (labels.size() < 2)
        return false;
    for (QStringView label : labels) {
        if (label.isEmpty() || label.size() > 63 || label.startsWith(u'-') || label.endsWith(u'-'))
            return false;
        for (QChar c : label) {
            if (!isLabelChar(c))
                return false;
        }
    }
    return isTopLevelDomain(labels.back());
}

bool isDottedIPv4(QStringView host) {
    const auto parts = host.split(u'.');
    if (parts.size() != 4)
        return false;
    for (QStringView part : parts) {
        bool ok = false;
        const int n = part.toInt(&ok);
        if (!ok || part.isEmpty() || part.size() > 3 || n < 0 || n > 255 || part.startsWith(u'+'))
            return false;
    }
    return true;
}

bool isLocalPartChar(QChar c) {
    static const QString extra = QStringLiteral(".!#$%&'*+/=?^_`{|}~-");
    return c.isLetterOrNumber() || extra.contains(c);
}

// A URL scheme: a letter, then letters, digits, "+", "-" or ".", then ":".
qsizetype schemeLength(const QString& text) {
    if (text.isEmpty() || !text[0].isLetter() || text[0].unicode() > 127)
        return -1;
    for (qsizetype i = 1; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c == u':')
            return i;
        if (!(c.isLetterOrNumber() && c.unicode() < 128) && c != u'+' && c != u'-' && c != u'.')
            return -1;
    }
    return -1;
}

} // namespace

bool isEmailAddress(const QString& text) {
    const qsizetype at = text.indexOf(u'@');
    if (at <= 0 || text.indexOf(u'@', at + 1) >= 0)
        return false;
    const QStringView local = QStringView(text).left(at);
    if (local.startsWith(u'.') || local.endsWith(u'.') || local.contains(u".."))
        return false;
    for (QChar c : local) {
        if (!isLocalPartChar(c))
            return false;
    }
    return isDomainName(QStringView(text).mid(at + 1));
}

bool isBareWebAddress(const QString& text) {
    if (text.isEmpty())
        return false;
    for (QChar c : text) {
        if (c.isSpace())
            return false;
    }
    qsizetype end = text.size();
    for (QChar stop : {u'/', u'?', u'#'}) {
        const qsizetype i = text.indexOf(stop);
        if (i >= 0 && i < end)
            end = i;
    }
    QStringView host = QStringView(text).left(end);
    if (host.contains(u'@'))
        return false;
    const qsizetype colon = host.indexOf(u':');
    if (colon >= 0) {
        const QStringView port = host.mid(colon + 1);
        bool ok = false;
        const int n = port.toInt(&ok);
        if (!ok || port.isEmpty() || n < 1 || n > 65535 || port.startsWith(u'+'))
            return false;
        host = host.left(colon);
    }
    return host.compare(u"localhost", Qt::CaseInsensitive) == 0 || isDottedIPv4(host) ||
           isDomainName(host);
}

int isThisEmailOrLink(const QString& text, bool checkProtocol) {
    const QString t = text.trimmed();
    if (t.isEmpty())
        return NotALink;
    if (checkProtocol) {
        const QString lower = t.toLower();
        if (lower.startsWith(u"mailto:")) {
            QString address = t.mid(7);
            address.truncate(address.indexOf(u'?') >= 0 ? address.indexOf(u'?') : address.size());
            return isEmailAddress(address) ? EmailAddress : NotALink;
        }
        for (const char16_t* web : {u"http://", u"https://", u"ftp://", u"file://"}) {
            const QString prefix = QString::fromUtf16(web);
            if (lower.startsWith(prefix))
                return t.size() > prefix.size() ? WebLink : NotALink;
        }
        const qsizetype scheme = schemeLength(t);
        // "host:8080/path" is a bare address with a port, not a scheme.
        if (scheme > 0 && !isBareWebAddress(t))
            return NotALink;
    }
    if (isEmailAddress(t))
        return EmailAddress;
    if (isBareWebAddress(t))
        return WebLink;
    return NotALink;
}

QString toCrLf(const QString& text) {
    QString out;
    out.reserve(text.size() + text.size() / 16);
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c == u'\r') {
            out += QStringLiteral("\r\n");
            if (i + 1 < text.size() && text[i + 1] == u'\n')
                ++i;
        } else if (c == u'\n') {
            out += QStringLiteral("\r\n");
        } else {
            out += c;
        }
    }
    return out;
}

} // namespace ed::web
