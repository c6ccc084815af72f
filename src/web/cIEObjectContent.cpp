// The page-reading operations of cIEObject.

#include "web/cIEObject.h"

#include "app/Trap.h"
#include "util/TagContent.h"
#include "web/WebText.h"

namespace ed::web {

namespace {

constexpr const char* kModule = "cIEObject";

[[noreturn]] void fail(const QString& message) {
    throw RuntimeError(message.toStdString());
}

} // namespace

qint32 cIEObject::IsThisEmailOrLink(const QString& text, bool checkProtocol) {
    return trappedValue(services_.log, kModule, QStringLiteral("Function IsThisEmailOrLink"), 0,
                        [&] { return qint32(isThisEmailOrLink(text, checkProtocol)); });
}

QStringList cIEObject::GetLinksOnWebPage(const DocumentRef& document) {
    if (!initialized_)
        return {};
    return trappedValue(services_.log, kModule, QStringLiteral("Function GetLinksOnWebPage"),
                        QStringList(), [&] {
                            QStringList list{QString()};
                            BrowserPage& p = page();
                            const QStringList links =
                                p.documentLinks(document.isEmpty() ? p.topDocument() : document);
                            for (qsizetype j = 0; j < links.size(); ++j) {
                                if (IsThisEmailOrLink(links[j], true) == WebLink) {
                                    if (list.size() < j + 1)
                                        list.resize(j + 1);
                                    list[j] = links[j];
                                }
                            }
                            return list;
                        });
}

QString cIEObject::GetBrowserText(const DocumentRef& document) {
    if (!initialized_)
        return QString();
    return trappedValue(services_.log, kModule, QStringLiteral("Function GetBrowserText"),
                        QString(), [&] {
                            BrowserPage& p = page();
                            return p.documentText(document.isEmpty() ? p.topDocument() : document);
                        });
}

QString cIEObject::GetBrowserHTML(const DocumentRef& document) {
    if (!initialized_)
        return QString();
    return trappedValue(services_.log, kModule, QStringLiteral("Function GetBrowserHTML"),
                        QString(), [&] {
                            BrowserPage& p = page();
                            return p.documentHtml(document.isEmpty() ? p.topDocument() : document);
                        });
}

QString cIEObject::GetSiteUrl() {
    if (!initialized_)
        return QString();
    return trappedValue(services_.log, kModule, QStringLiteral("Function GetSiteUrl"), QString(),
                        [&] { return page().locationUrl(); });
}

QString cIEObject::GetSiteTitle(bool fromHtml) {
    if (!initialized_)
        return QString();
    return trappedValue(services_.log, kModule, QStringLiteral("Function GetSiteTitle"), QString(),
                        [&] {
                            if (!fromHtml)
                                return page().locationName();
                            const QStringList titles = Get_HtmlTag_Content(
                                QStringLiteral("<title>"), QStringLiteral("</title>"), QString());
                            if (titles.isEmpty())
                                fail(QStringLiteral("Subscript out of range: the page's HTML is "
                                                    "too short to hold a title."));
                            return titles.front();
                        });
}

QString cIEObject::StripHtml(const QString& text) {
    return trappedValue(services_.log, kModule, QStringLiteral("Function StripHtml"), QString(),
                        [&] { return stripHtml(text); });
}

QString cIEObject::CopySelection() {
    if (!initialized_)
        return QString();
    return trappedValue(services_.log, kModule, QStringLiteral("Function CopySelection"), QString(),
                        [&] {
                            const QString selected = page().selectionText();
                            if (!selected.isEmpty()) {
                                services_.clipboard.clear();
                                services_.clipboard.setText(selected);
                            }
                            return services_.clipboard.text();
                        });
}

QByteArray cIEObject::PageSnapshot(bool archive) {
    if (!initialized_)
        fail(QStringLiteral("No browser window is attached to save."));
    return page().savedPage(archive);
}

QStringList cIEObject::Get_HtmlTag_Content(const QString& startTag, const QString& stopTag,
                                           const QString& html) {
    return trappedValue(services_.log, kModule, QStringLiteral("Function Get_HtmlTag_Content"),
                        QStringList(), [&] {
                            QString text = html;
                            if (text.isEmpty()) {
                                if (!initialized_)
                                    return QStringList();
                                text = GetBrowserHTML();
                                if (text.size() < 10)
                                    return QStringList();
                            }
                            return htmlTagContent(startTag, stopTag, text);
                        });
}

} // namespace ed::web
