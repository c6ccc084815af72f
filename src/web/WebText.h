#pragma once
// Text rules of the browser session that need no browser: the protocol table, where an address
// goes, tag stripping and e-mail/web-link recognition.

#include <QString>
#include <QStringList>

#include <array>

namespace ed::web {

// "http://", "https://", "ftp://", "file:///", "mailto:" at indices 0 to 4.
const std::array<QString, 5>& protocolTypes();

// Where NavigateToUrl sends an address: to the browser (as given, or with "http://" put in
// front) or, for a prefix-less text holding "@", to the desktop's mail handler.
struct NavigationTarget {
    bool mail = false; // true: hand `text` to the desktop, do not navigate
    QString text;
};
NavigationTarget navigationTarget(const QString& url);
// An address as the browser's own Navigate takes it: as given when it has a protocol,
// "about:blank" for a blank one, else with "http://" put in front. It never goes to the mail
// program, whatever it holds.
QString browserAddress(const QString& url);

// The text without anything from a "<" up to and including the next ">"; a ">" outside a tag
// is dropped too, character references stay as they are.
QString stripHtml(const QString& text);

enum LinkClass { NotALink = 0, EmailAddress = 1, WebLink = 2 };
// Classifies an address. With `checkProtocol` a protocol prefix decides first ("mailto:" an
// e-mail address, http/https/ftp/file a web link, any other scheme neither); without one, or
// with `checkProtocol` false, the bare text is judged: local@domain.tld is an e-mail address,
// host.tld[:port][/path], localhost or a dotted IPv4 address a web link. The local part holds
// letters, digits and .!#$%&'*+/=?^_`{|}~- (no leading, trailing or double dot); tld is a real
// top-level domain of the public suffix list.
int isThisEmailOrLink(const QString& text, bool checkProtocol);
bool isEmailAddress(const QString& text);
bool isBareWebAddress(const QString& text);

// Every line break (CR LF, lone LF, lone CR) as CR LF, the document's own line break.
QString toCrLf(const QString& text);

} // namespace ed::web
