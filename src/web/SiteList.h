#pragma once
// The site-list navigator: the browser walks the addresses written one a line in the document,
// one line per tick of the timer tmrSiteList, and each visited line is selected in the document.
// Navigate Site List starts (or continues) the walk, Pause List Nav stops the timer, Next Item
// does one tick at once and Change timing sets the interval.

#include "app/Command.h"

#include <QObject>
#include <QStringList>

#include <functional>
#include <memory>

class QTimer;

namespace ed {

// The walk's timer. Whoever owns it calls fire() when the interval has passed while it is
// enabled; tests call fire() themselves to step the walk.
class SiteTimer {
public:
    static constexpr int kLongestInterval = 65535;

    virtual ~SiteTimer() = default;
    virtual bool enabled() const = 0;
    virtual void setEnabled(bool enabled) = 0;
    virtual int interval() const = 0;
    // Milliseconds between ticks. A value the timer cannot keep (below 0 or above 65535) is a
    // run-time error and leaves the interval as it was. 0 never ticks.
    void setInterval(qint64 ms);

    // What runs at each tick.
    void onTick(std::function<void()> tick) { tick_ = std::move(tick); }
    // Runs the tick now.
    void fire() {
        if (tick_)
            tick_();
    }

protected:
    virtual void applyInterval(int ms) = 0;

private:
    std::function<void()> tick_;
};

// The window's timer.
class QtSiteTimer : public QObject, public SiteTimer {
public:
    QtSiteTimer();
    ~QtSiteTimer() override;
    bool enabled() const override { return enabled_; }
    void setEnabled(bool enabled) override;
    int interval() const override;

protected:
    void applyInterval(int ms) override;

private:
    void update();
    QTimer* timer_; // owned as a child
    bool enabled_ = false;
};

// The walk's state, kept by the window for its life.
class SiteListState {
public:
    static constexpr int kStartInterval = 32235;

    // The timer starts disabled with an interval of 32235 ms.
    explicit SiteListState(std::unique_ptr<SiteTimer> timer);

    QStringList msSiteList; // the document split at each CR LF when the walk was started
    qint32 mlSiteIndex = 0; // the next line to visit; 0 when no walk is under way
    const std::unique_ptr<SiteTimer> tmrSiteList;
    bool ticking = false; // a tick is under way (it may wait for the browser)
};

void mnuNavigateSiteList_Click(CommandContext& ctx);
void mnuNextItem_Click(CommandContext& ctx);
void mnuPause_Click(CommandContext& ctx);
void mnuChangeTiming_Click(CommandContext& ctx);

// One tick: selects the line at mlSiteIndex where its address first occurs in the document,
// sends the browser there (or starts one with the address) and moves on; past the last line
// that is visited the walk ends. Has no error trap of its own: its caller's catches a failure.
void SiteListTick(CommandContext& ctx);

// Shows `address` in the active browser window without waiting for the page, or starts the
// browser with it as its first page when none answers. The address always goes to the browser
// (never to the mail program) with its protocol ("http://" put in front of a bare host name,
// about:blank for a blank one), so it can never reach the browser as a switch.
void showInBrowser(CommandContext& ctx, const QString& address);

// The timer event: the tick under the error trap "tmrSiteList_Timer". A tick that fails stops
// the timer, so that a fault is not repeated at every interval; Next Item or Navigate Site List
// go on from the same line.
void tmrSiteList_Timer(CommandContext& ctx);

} // namespace ed
