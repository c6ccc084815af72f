#pragma once
// cIEObject: the program's session with a browser window. It finds the active browser window
// (or starts a browser), navigates it, waits for pages, and reads what the page shows (HTML,
// text, links, address, title, the selection, e-mail addresses and phone numbers). Every procedure
// traps its own errors and reports them to the logger under module "cIEObject"; a caller sees an
// empty or false result, never an exception.
//
// Commands use one object per command: GetActiveBrowser(false), InitializeObject with the
// result, one operation, then the object is destroyed.

#include "app/Ports.h"
#include "web/BrowserPage.h"
#include "web/BrowserTypes.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>

namespace ed::web {

// The usual places of a Chromium-family browser on this platform, in the order they are tried.
QStringList defaultBrowserCandidates();
// The browser profile folder of the program's own, used when it starts the browser itself.
QString defaultProfileDir();
// The command-line arguments a started browser gets: the debugging port of the endpoint, the
// profile folder and the switches that keep a fresh profile quiet.
QStringList launchArguments(quint16 port, const QString& profileDir);

// What a session works with besides the browser.
struct BrowserServices {
    BrowserServices(Logger& log, Clipboard& clipboard, Launcher& launcher,
                    std::shared_ptr<BrowserConnector> connector)
        : log(log), clipboard(clipboard), launcher(launcher), connector(std::move(connector)) {}

    Logger& log;
    Clipboard& clipboard;
    Launcher& launcher; // starts the browser; hands "mailto:" texts to the desktop
    std::shared_ptr<BrowserConnector> connector;
    QString browserPath; // the "Browser Path" setting ("" = look around)
    QStringList browserCandidates = defaultBrowserCandidates();
    QString profileDir = defaultProfileDir();
    QStringList extraLaunchArguments; // put before the standard ones
    int navigateWaitMs = 60000;       // longest wait of NavigateToUrl for the page
    int launchWaitMs = 30000;         // longest wait for a started browser to answer
    int launchPollMs = 250;
};

class cIEObject : public QObject {
    Q_OBJECT
public:
    explicit cIEObject(BrowserServices services, QObject* parent = nullptr);
    ~cIEObject() override;

    // --- the session ---
    bool Initialized() const { return initialized_; }
    // Attaches to `browser`, or to GetActiveBrowser(false) when it is empty. Returns Initialized.
    bool InitializeObject(const BrowserHandle& browser = BrowserHandle());
    QString InternetExplorerPath() const;
    void setInternetExplorerPath(const QString& path) { msIEPath_ = path; }
    // What a browser started from InternetExplorerPath gets on its command line so that it
    // answers at the endpoint: the extra arguments, the debugging port and the profile folder
    // (created here). Throws RuntimeError when the endpoint setting is refused.
    QStringList BrowserLaunchArguments();
    // The endpoint's first browser window; with `launchIfNone` a browser is started when there
    // is none and waited for. Empty when there is no window.
    BrowserHandle GetActiveBrowser(bool launchIfNone = false);
    // Sends the browser to `url` ("http://" put in front of a bare host name); a prefix-less text
    // holding "@" goes to the mail program instead. With `wait`, returns when the page has
    // loaded or the wait cap passed; the window keeps working meanwhile.
    void NavigateToUrl(const QString& url, bool wait);
    // The browser's own Navigate: sends the attached window to `address` (see browserAddress)
    // without waiting and without a trap of its own, so a failure reaches the caller.
    void Navigate(const QString& address);

    // --- page content ---
    qint32 IsThisEmailOrLink(const QString& text, bool checkProtocol);
    QStringList GetLinksOnWebPage(const DocumentRef& document = DocumentRef());
    QString GetBrowserText(const DocumentRef& document = DocumentRef());
    QString GetBrowserHTML(const DocumentRef& document = DocumentRef());
    QString GetSiteUrl();
    QString GetSiteTitle(bool fromHtml);
    QString StripHtml(const QString& text);
    QString CopySelection();
    // The page as a single-file web archive with its frames and resources (MHTML), or the top
    // document's current HTML as UTF-8; without a trap of its own, so a failure reaches the
    // caller.
    QByteArray PageSnapshot(bool archive);
    QStringList Get_HtmlTag_Content(const QString& startTag, const QString& stopTag,
                                    const QString& html);
    // The e-mail addresses of the page and of every frame in it, whatever its site: those of
    // the mailto: links first, then those in the visible text, each once (case ignored).
    QStringList CollectEmail();
    // The numbers in the visible text of the page and of every frame in it, one line each
    // ("(212) 555-0142<TAB>New York, NY"): the fax numbers with `fax`, else the others.
    QStringList CollectPhoneNumbers(bool fax);
    qint32 ProtocolTypes_Count() const;
    QString ProtocolTypes_ListItem(qint32 index) const;

    // The attached window (empty when not attached).
    BrowserHandle browser() const;

signals:
    // A frame's document finished loading; `pDisp` is that document (the top document when
    // its frame id is the browser's own name). Connect directly: the arguments are references.
    void DocumentComplete(const ed::web::DocumentRef& pDisp, QString& URL);

private:
    void attach(const BrowserHandle& browser);
    void onDocumentComplete(const DocumentRef& frame, QString& url);
    BrowserHandle findFirstPage();
    void launchBrowser();
    // Reads every document of the page (frames at any depth) with `read`, in order; frames
    // that cannot be read are passed over.
    template <class T, class Read> QList<T> readEveryDocument(Read read);
    BrowserPage& page();

    BrowserServices services_;
    std::unique_ptr<BrowserPage> moIE_;
    bool initialized_ = false;
    bool mbCancelWait_ = false;
    bool mbWaiting_ = false;
    bool connectionLost_ = false;
    QString connectionLostReason_;
    QString msIEPath_;
};

} // namespace ed::web
