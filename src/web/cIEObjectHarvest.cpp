// The harvesting operations of cIEObject: e-mail addresses and phone and fax numbers of the page
// and of every frame in it, frames of other sites included.

#include "web/cIEObject.h"

#include "app/Trap.h"
#include "web/EmailFinder.h"
#include "web/PhoneFinder.h"

namespace ed::web {

namespace {
constexpr const char* kModule = "cIEObject";
} // namespace

template <class T, class Read> QList<T> cIEObject::readEveryDocument(Read read) {
    BrowserPage& p = page();
    const QList<DocumentRef> documents = p.allDocuments();
    QList<T> out;
    for (const DocumentRef& document : documents) {
        try {
            out << read(p, document);
        } catch (const RuntimeError&) {
            if (document == p.topDocument())
                throw;
            // a frame that went away or navigated meanwhile
        }
    }
    return out;
}

QStringList cIEObject::CollectEmail() {
    if (!initialized_)
        return {};
    return trappedValue(services_.log, kModule, QStringLiteral("Function CollectEmail"),
                        QStringList(), [&] {
                            struct Read {
                                QStringList links;
                                QString text;
                            };
                            const QList<Read> documents =
                                readEveryDocument<Read>([](BrowserPage& p, const DocumentRef& d) {
                                    return Read{p.documentLinks(d), p.documentText(d)};
                                });
                            EmailCollector found;
                            for (const Read& document : documents) {
                                for (const QString& href : document.links)
                                    found.add(emailsInMailto(href));
                            }
                            for (const Read& document : documents)
                                found.add(emailsInText(document.text));
                            return found.addresses();
                        });
}

QStringList cIEObject::CollectPhoneNumbers(bool fax) {
    if (!initialized_)
        return {};
    return trappedValue(
        services_.log, kModule, QStringLiteral("Function CollectPhoneNumbers"), QStringList(), [&] {
            const QList<QString> texts = readEveryDocument<QString>(
                [](BrowserPage& p, const DocumentRef& d) { return p.documentText(d); });
            return phoneNumberLines(texts, fax);
        });
}

} // namespace ed::web
