#pragma once
// Finding e-mail addresses in the text of a page and in its mailto: links. An address is what
// isThisEmailOrLink calls one: local@domain.tld with a real top-level domain.

#include <QSet>
#include <QString>
#include <QStringList>
#include <QStringView>

namespace ed::web {

// The addresses in `text`, in order of appearance, repeats kept. An address is cut out of the
// words around it: it starts after the last quote, brace, bar, slash, "=" or "?" before its
// "@" (and after leading dots), dots or hyphens after it are not part of it, and a domain running
// on into the next word ("a@b.com.Next") ends at its last real top-level domain. Linear in the
// length of the text.
QStringList emailsInText(QStringView text);

// The addresses of a link: for "mailto:" the part before any "?", percent-decoded, each of
// its comma-separated addresses; nothing for any other link.
QStringList emailsInMailto(const QString& href);

// Addresses once each, case ignored, the first spelling kept, in the order first added.
class EmailCollector {
public:
    void add(const QStringList& addresses);
    const QStringList& addresses() const { return list_; }

private:
    QSet<QString> seen_;
    QStringList list_;
};

} // namespace ed::web
