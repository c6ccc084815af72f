// The page-reading operations of cIEObject.

#include "web/cIEObject.h"

#include "app/Trap.h"
#include "util/TagContent.h"
#include "web/WebText.h"

#include <QFileInfo>
#include <QSaveFile>

namespace ed::web {

namespace {

constexpr const char* kModule = "cIEObject";

[[noreturn]] void fail(const QString& message) {
    throw RuntimeError(message.toStdString());
}

// Puts `links` at indices 0, 1, ... of `list`, setting its length to each index + 1 in turn:
// the list ends at the last link, and is left alone when there are none.
void overwriteFromStart(QStringList& list, const QStringList& links) {
    for (qsizetype j = 0; j < links.size(); ++j) {
        list.resize(j + 1);
        list[j] = links[j];
    }
}

// A file name made of the page title, without characters that file systems refuse.
QString fileNameFromTitle(QString title) {
    static const QString bad = QStringLiteral("\\/:*?\"<>|");
    for (QChar& c : title) {
        if (bad.contains(c) || c.unicode() < 32)
            c = u'_';
    }
    title = title.trimmed();
    return title.isEmpty() ? QStringLiteral("page") : title.left(120);
}

} // namespace

qint32 cIEObject::IsThisEmailOrLink(const QString& text, bool checkProtocol) {
    return trappedValue(services_.log, kModule, QStringLiteral("Function IsThisEmailOrLink"), 0,
                        [&] { return qint32(isThisEmailOrLink(text, checkProtocol)); });
}

qint32 cIEObject::FrameCount() {
    if (!initialized_)
        return 0;
    return trappedValue(services_.log, kModule, QStringLiteral("Function FrameCount"), 0,
                        [&] { return qint32(page().frameCount() - 1); });
}

DocumentRef cIEObject::GetFrame(qint32 index) {
    if (!initialized_)
        return {};
    return trappedValue(services_.log, kModule, QStringLiteral("Function Frame"), DocumentRef(),
                        [&] {
                            if (index < FrameCount())
                                return page().frameDocument(index);
                            return DocumentRef();
                        });
}

QString cIEObject::propertyFromAllFrames(const char* label, bool html) {
    if (!initialized_)
        return QString();
    return trappedValue(services_.log, kModule, QString::fromLatin1(label), QString(), [&] {
        BrowserPage& p = page();
        auto read = [&](const DocumentRef& document) {
            return html ? p.documentHtml(document) : p.documentText(document);
        };
        const qint32 n = FrameCount();
        if (n < 1)
            return read(p.topDocument());
        QString all;
        for (qint32 i = 0; i <= n; ++i)
            all += read(p.frameDocument(i));
        return all;
    });
}

QString cIEObject::GetHTMLFromAllFrames() {
    return propertyFromAllFrames("Function GetHTMLFromAllFrames", true);
}

QString cIEObject::GetTextFromAllFrames() {
    return propertyFromAllFrames("Function GetTextFromAllFrames", false);
}

QStringList cIEObject::GetLinksOnAllFrames(bool topDocumentOnly) {
    if (!initialized_)
        return {};
    const QString label = QStringLiteral("Function GetLinksOnAllFrames");
    // This procedure carries on after an error: a frame that cannot be read ends the walk over
    // the frames, and the top document's links are read instead.
    QStringList list;
    const qint32 n = FrameCount();
    bool failed = false;
    if (n >= 1 && !topDocumentOnly) {
        failed = !trapped(services_.log, kModule, label, [&] {
            for (qint32 i = 0; i <= n; ++i)
                overwriteFromStart(list, page().documentLinks(page().frameDocument(i)));
        });
    }
    if (n < 1 || topDocumentOnly || failed) {
        trapped(services_.log, kModule, label,
                [&] { overwriteFromStart(list, page().documentLinks(page().topDocument())); });
    }
    return list;
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

void cIEObject::SaveWebPage() {
    if (!initialized_)
        return;
    trapped(services_.log, kModule, QStringLiteral("Sub SaveWebPage"), [&] {
        if (!services_.fileDialogs)
            fail(QStringLiteral("Saving the web page needs the window's Save As dialog."));
        FileDialogRequest request;
        request.title = QStringLiteral("Save Web Page");
        request.filter = QStringLiteral("Web Archive, single file *.mhtml|*.mhtml|Web Page, HTML "
                                        "only *.htm;*.html|*.htm;*.html");
        request.filterIndex = 1;
        request.fileName = fileNameFromTitle(page().locationName()) + QStringLiteral(".mhtml");
        request.defaultExtension = QStringLiteral("mhtml");
        const FileDialogResult chosen = services_.fileDialogs->showSave(request);
        if (chosen.fileName.isEmpty())
            return;
        const QString suffix = QFileInfo(chosen.fileName).suffix().toLower();
        const bool archive =
            suffix == u"htm" || suffix == u"html"
                ? false
                : (suffix == u"mhtml" || suffix == u"mht" || chosen.filterIndex != 2);
        const QByteArray data = page().savedPage(archive);
        QSaveFile file(chosen.fileName);
        if (!file.open(QIODevice::WriteOnly) || file.write(data) != data.size() || !file.commit())
            fail(QStringLiteral("Could not save the web page to \"%1\": %2")
                     .arg(chosen.fileName, file.errorString()));
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
