#include "web/SiteList.h"

#include "app/Trap.h"
#include "web/ActiveSession.h"
#include "web/BrowserPort.h"
#include "web/WebText.h"
#include "web/cIEObject.h"

#include <QLocale>
#include <QTimer>

#include <cmath>
#include <optional>

namespace ed {

namespace {

constexpr const char* kModule = "frmEdit";
const QString kPause = QStringLiteral("mnuPause");
const QString kNextItem = QStringLiteral("mnuNextItem");
const QString kChangeTiming = QStringLiteral("mnuChangeTiming");

[[noreturn]] void fail(const QString& message) {
    throw RuntimeError(message.toStdString());
}

SiteListState& siteList(CommandContext& ctx) {
    if (!ctx.siteList)
        fail(QStringLiteral("The site list works only in the editor window."));
    return *ctx.siteList;
}

// The line without leading and trailing blanks (spaces only, as the list was typed).
QString withoutBlanks(const QString& line) {
    qsizetype begin = 0;
    qsizetype end = line.size();
    while (begin < end && line[begin] == u' ')
        ++begin;
    while (end > begin && line[end - 1] == u' ')
        --end;
    return line.mid(begin, end - begin);
}

// The value of a numeric answer: a decimal number (with sign, fraction, exponent or thousands
// separators) or "&H" hexadecimal / "&O" octal, blanks around it allowed. Nothing otherwise.
std::optional<double> numericValue(const QString& answer) {
    const QString text = answer.trimmed();
    if (text.isEmpty())
        return std::nullopt;
    bool ok = false;
    if (text.startsWith(u'&') && text.size() > 2) {
        const QChar base = text[1].toUpper();
        const int radix = base == u'H' ? 16 : base == u'O' ? 8 : 0;
        if (radix) {
            const qint64 v = text.mid(2).toLongLong(&ok, radix);
            return ok ? std::optional<double>(double(v)) : std::nullopt;
        }
    }
    const QLocale us(QLocale::English, QLocale::UnitedStates);
    const double v = us.toDouble(text, &ok);
    if (!ok || !std::isfinite(v))
        return std::nullopt;
    return v;
}

// Sets a flag for the time of one tick.
class TickScope {
public:
    explicit TickScope(bool& flag) : flag_(flag) { flag_ = true; }
    ~TickScope() { flag_ = false; }
    TickScope(const TickScope&) = delete;
    TickScope& operator=(const TickScope&) = delete;

private:
    bool& flag_;
};

void endWalk(CommandContext& ctx, SiteListState& s) {
    s.mlSiteIndex = 0;
    s.tmrSiteList->setEnabled(false);
    ctx.menu.setEnabled(kNextItem, false);
    ctx.menu.setEnabled(kPause, false);
    ctx.menu.setEnabled(kChangeTiming, false);
}

} // namespace

void showInBrowser(CommandContext& ctx, const QString& address) {
    if (!ctx.browser) {
        ctx.window.showStatus(noConnectionMessage());
        return;
    }
    const std::unique_ptr<web::cIEObject> ie = ctx.browser->createSession();
    const web::BrowserHandle active = ie->GetActiveBrowser(false);
    if (!active.isEmpty()) {
        ie->InitializeObject(active);
        ie->Navigate(address);
        return;
    }
    const QString program = ie->InternetExplorerPath();
    if (program.isEmpty())
        fail(QStringLiteral("%1, and no browser to start was found: set \"Browser Path\" to a "
                            "Chromium, Chrome or Edge program.")
                 .arg(noBrowserMessage(*ctx.browser)));
    // The address is one argument of its own after the switches that make the browser answer
    // at the endpoint, so the next command finds it there. It gets its protocol first, as it would
    // on the way through Navigate, so a line can never reach the browser as a switch.
    const QString target = web::browserAddress(address);
    if (!ctx.launcher.startDetached(program, ie->BrowserLaunchArguments(), {target}))
        fail(QStringLiteral("The browser \"%1\" could not be started with \"%2\".")
                 .arg(program, target));
    ctx.window.showStatus(QStringLiteral("no browser answered at %1; started %2 with %3")
                              .arg(ctx.browser->endpointDescription(), program, target));
}

void SiteTimer::setInterval(qint64 ms) {
    if (ms < 0 || ms > kLongestInterval)
        fail(QStringLiteral("Invalid property value: the timer takes 0 to %1 milliseconds, not %2.")
                 .arg(kLongestInterval)
                 .arg(ms));
    applyInterval(int(ms));
}

QtSiteTimer::QtSiteTimer() : timer_(new QTimer(this)) {
    QObject::connect(timer_, &QTimer::timeout, this, [this] { fire(); });
}

QtSiteTimer::~QtSiteTimer() = default;

void QtSiteTimer::setEnabled(bool enabled) {
    enabled_ = enabled;
    update();
}

int QtSiteTimer::interval() const {
    return timer_->interval();
}

void QtSiteTimer::applyInterval(int ms) {
    timer_->setInterval(ms);
    update();
}

void QtSiteTimer::update() {
    // An interval of 0 would tick without pause; the walk's timer then does not tick at all.
    if (enabled_ && timer_->interval() > 0)
        timer_->start(); // starts the interval afresh, as enabling the timer does
    else
        timer_->stop();
}

SiteListState::SiteListState(std::unique_ptr<SiteTimer> timer) : tmrSiteList(std::move(timer)) {
    tmrSiteList->setEnabled(false);
    tmrSiteList->setInterval(kStartInterval);
}

void SiteListTick(CommandContext& ctx) {
    SiteListState& s = siteList(ctx);
    // A tick that comes while another waits for the browser would visit a line twice.
    if (s.ticking)
        return;
    const TickScope scope(s.ticking);
    const qint32 upper = qint32(s.msSiteList.size()) - 1;
    if (s.mlSiteIndex < 0 || s.mlSiteIndex > upper) {
        // Past the end, as after the one line of a one-line document.
        endWalk(ctx, s);
        return;
    }
    const QString address = withoutBlanks(s.msSiteList[s.mlSiteIndex]);
    const qsizetype found = ctx.edit.text().indexOf(address);
    if (found >= 0) {
        ctx.edit.setSelStart(qint32(found));
        ctx.edit.setSelLength(qint32(address.size()) + 1);
    }
    // A blank line is visited too: the browser shows an empty page for it.
    showInBrowser(ctx, address);
    ++s.mlSiteIndex;
    if (s.mlSiteIndex != upper)
        ctx.menu.setEnabled(kNextItem, true);
    if (s.mlSiteIndex == upper)
        endWalk(ctx, s);
}

void tmrSiteList_Timer(CommandContext& ctx) {
    const bool ok =
        trapped(ctx.log, kModule, QStringLiteral("tmrSiteList_Timer"), [&] { SiteListTick(ctx); });
    if (!ok && ctx.siteList)
        ctx.siteList->tmrSiteList->setEnabled(false);
}

void mnuNavigateSiteList_Click(CommandContext& ctx) {
    SiteListState& s = siteList(ctx);
    const QString text = ctx.edit.text();
    if (text.isEmpty())
        return;
    s.msSiteList = text.split(QStringLiteral("\r\n"));
    s.tmrSiteList->setEnabled(true);
    ctx.menu.setEnabled(kPause, true);
    ctx.menu.setEnabled(kChangeTiming, true);
    SiteListTick(ctx);
}

void mnuNextItem_Click(CommandContext& ctx) {
    SiteListTick(ctx);
}

void mnuPause_Click(CommandContext& ctx) {
    SiteListState& s = siteList(ctx);
    if (ctx.menu.isChecked(kPause)) {
        ctx.menu.setChecked(kPause, false);
    } else if (s.mlSiteIndex < 1) {
        ctx.menu.setChecked(kPause, false);
        ctx.menu.setEnabled(kPause, false);
        ctx.menu.setEnabled(kChangeTiming, false);
    } else {
        ctx.menu.setChecked(kPause, true);
    }
    s.tmrSiteList->setEnabled(false);
}

void mnuChangeTiming_Click(CommandContext& ctx) {
    SiteListState& s = siteList(ctx);
    const QString answer = ctx.dialogs.inputBox(
        QStringLiteral("Enter new timing in millisceonds, 65000 max"), QStringLiteral("New Timing"),
        QString::number(s.tmrSiteList->interval()));
    if (answer.isEmpty())
        return;
    const std::optional<double> value = numericValue(answer);
    if (!value)
        return;
    // To the nearest whole number, halves to the even one; a number too big for that fails in
    // the timer.
    const double whole = std::nearbyint(*value);
    if (whole < -9.2e18 || whole > 9.2e18)
        fail(QStringLiteral("Overflow: %1 is too big for a timer interval.").arg(answer.trimmed()));
    s.tmrSiteList->setInterval(qint64(whole));
}

} // namespace ed
