// The site-list walk over a scripted browser and a timer that ticks when the test says so.

#include "FakeBrowser.h"
#include "SteppedSiteTimer.h"
#include "support/Fakes.h"

#include "web/SiteList.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

struct Walk {
    explicit Walk(const QString& text) : h(text) {
        h.ctx.browser = &port;
        h.ctx.siteList = &state;
        timer->onTick([this] { tmrSiteList_Timer(h.ctx); });
    }
    Harness h;
    FakeBrowserPort port{h.log, h.clipboard, h.launcher};
    SiteListState state{std::make_unique<SteppedSiteTimer>()};
    SiteTimer* timer = state.tmrSiteList.get();

    QStringList& visited() { return port.connector->window->navigations; }
    bool enabled(const char* item) const { return h.menu.isEnabled(item); }
    QString selected() const { return h.edit.selText(); }
};

// Each line in turn (a blank one as about:blank, a mail address to the browser too), selected
// where it first occurs; a last piece without a line break is never visited.
TEST(SiteList, EachLineIsVisitedInTurnAndSelectedWhereItFirstOccurs) {
    const struct {
        QString text;
        QStringList visits, selections; // selections as "start|text"; none: not checked
    } cases[] = {
        {"http://a.example/\r\nhttp://b.example/\r\nhttp://c.example/\r\n",
         {"http://a.example/", "http://b.example/", "http://c.example/"},
         {"0|http://a.example/\r", "19|http://b.example/\r", "38|http://c.example/\r"}},
        {"http://a.example/\r\nhttp://b.example/\r\nhttp://c.example/",
         {"http://a.example/", "http://b.example/"},
         {"0|http://a.example/\r", "19|http://b.example/\r"}},
        {"http://only.example/", {"http://only.example/"}, {"0|http://only.example/"}},
        // Blanks around a line are not part of it; this one also stands inside line one.
        {"see b.example here\r\n  b.example  \r\n",
         {"http://see b.example here", "http://b.example"},
         {"0|see b.example here\r", "4|b.example "}},
        {"someone@example.com\r\n\r\n  \r\nz.example\r\n",
         {"http://someone@example.com", "about:blank", "about:blank", "http://z.example"},
         {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text.toStdString());
        Walk w(c.text);
        w.h.run("mnuNavigateSiteList");
        EXPECT_TRUE(w.enabled("mnuPause") && w.enabled("mnuChangeTiming") &&
                    w.enabled("mnuNextItem"));
        auto selection = [&] { return QString::number(w.h.edit.selStart()) + "|" + w.selected(); };
        QStringList selected{selection()};
        for (int tick = 0; tick < 6 && w.timer->enabled(); ++tick) {
            w.timer->fire();
            if (w.visited().size() > selected.size())
                selected << selection();
        }
        EXPECT_EQ(w.visited(), c.visits);
        if (!c.selections.isEmpty()) {
            EXPECT_EQ(selected, c.selections);
        }
        EXPECT_EQ(w.state.mlSiteIndex, 0);
        EXPECT_FALSE(w.timer->enabled() || w.enabled("mnuPause") || w.enabled("mnuChangeTiming") ||
                     w.enabled("mnuNextItem"));
        EXPECT_TRUE(w.h.launcher.opened.isEmpty());
        EXPECT_TRUE(w.h.log.errors.empty());
    }
}

TEST(SiteList, PauseStopsTheTimerNextItemStillStepsAndTheWalkGoesOn) {
    Walk w("a.example\r\nb.example\r\nc.example\r\nd.example\r\n");
    w.h.run("mnuNavigateSiteList");
    w.h.run("mnuPause");
    EXPECT_TRUE(w.h.menu.isChecked("mnuPause"));
    w.h.run("mnuPause"); // a second Pause does not start the timer again
    EXPECT_FALSE(w.h.menu.isChecked("mnuPause"));
    EXPECT_TRUE(w.enabled("mnuPause"));
    EXPECT_FALSE(w.timer->enabled());
    w.h.run("mnuNextItem");
    w.h.run("mnuNextItem");
    EXPECT_EQ(w.visited(),
              (QStringList{"http://a.example", "http://b.example", "http://c.example"}));
    EXPECT_FALSE(w.timer->enabled());
    w.h.run("mnuNavigateSiteList"); // goes on where the walk stopped
    EXPECT_EQ(w.visited().last(), "http://d.example");
    EXPECT_EQ(w.state.mlSiteIndex, 0);

    // An empty document starts nothing; without a walk, Pause disables itself.
    Walk idle("");
    idle.h.run("mnuNavigateSiteList");
    EXPECT_FALSE(idle.timer->enabled() || idle.enabled("mnuPause"));
    idle.h.menu.setEnabled("mnuPause", true);
    idle.h.run("mnuPause");
    EXPECT_FALSE(idle.enabled("mnuPause") || idle.timer->enabled());
    EXPECT_EQ(idle.port.sessionsCreated, 0);
}

TEST(SiteList, ChangeTimingTakesOnlyNumbers) {
    const struct {
        QString answer; // "" = Cancel
        int interval;
        bool logged;
    } cases[] = {
        {" 2500 ", 2500, false}, {"2500.5", 2500, false}, {"&H10", 16, false},
        {"", 32235, false},      {"12abc", 32235, false}, {"70000", 32235, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.answer.toStdString());
        Walk w("a");
        if (!c.answer.isEmpty())
            w.h.dialogs.answers = {c.answer};
        w.h.run("mnuChangeTiming");
        EXPECT_EQ(w.h.dialogs.shown(),
                  QStringList{"Enter new timing in millisceonds, 65000 max|New Timing|32235"});
        EXPECT_EQ(w.timer->interval(), c.interval);
        EXPECT_EQ(w.h.log.errors.size(), c.logged ? 1u : 0u);
    }
}

TEST(SiteList, ABrowserThatCannotBeStartedIsLoggedAndTheTimerStops) {
    Walk w("a.example\r\nb.example\r\nc.example\r\n");
    w.port.connector->browserOpen = false; // and no program to start
    w.h.run("mnuNavigateSiteList");
    ASSERT_EQ(w.h.log.errors.size(), 1u);
    EXPECT_EQ(w.h.log.errors[0].location, "mnuNavigateSiteList_Click");
    EXPECT_TRUE(w.h.log.errors[0].detail.contains("Browser Path"));
    EXPECT_EQ(w.state.mlSiteIndex, 0);
    EXPECT_TRUE(w.timer->enabled());
    w.timer->fire();
    ASSERT_EQ(w.h.log.errors.size(), 2u);
    EXPECT_EQ(w.h.log.errors[1].location, "tmrSiteList_Timer");
    EXPECT_FALSE(w.timer->enabled());
    // Once a browser answers, Next Item goes on from the same line.
    w.port.connector->browserOpen = true;
    w.h.run("mnuNextItem");
    EXPECT_EQ(w.visited(), QStringList{"http://a.example"});
}

} // namespace
