// Where the window opens and what is remembered of it; Keep On Top, No Word Wrap and the font.

#include "editor/Placement.h"
#include "editor/ViewCommands.h"
#include "support/Fakes.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

constexpr int kScreenW = 1024 * 15, kScreenH = 768 * 15; // twips

class FakeGeometry : public FormGeometry {
public:
    int w = 1200, h = 900, l = 0, t = 0;
    bool maximized = false;
    struct TopCall {
        bool on;
        int x, y, cx, cy;
    };
    std::vector<TopCall> topCalls;
    QString formName() const override { return "frmEdit"; }
    int width() const override { return w; }
    int height() const override { return h; }
    int left() const override { return l; }
    int top() const override { return t; }
    int screenWidth() const override { return kScreenW; }
    int screenHeight() const override { return kScreenH; }
    bool isMinimized() const override { return false; }
    void setGeometry(int nl, int nt, int nw, int nh) override { l = nl, t = nt, w = nw, h = nh; }
    void maximize() override { maximized = true; }
    void setTopmost(bool on, int x, int y, int cx, int cy) override {
        topCalls.push_back({on, x, y, cx, cy});
    }
};

TEST(Placement, RestoresOrCentresAndKeepsTheWindowOnScreen) {
    const int cl = kScreenW / 2 - 2500, ct = kScreenH / 2 - 2000; // the default size, centred
    struct Case {
        std::vector<std::pair<const char*, const char*>> saved;
        int l, t, w, h;
    } cases[] = {
        {{}, cl, ct, 5000, 4000},
        {{{"NSWE_W", "6000"}, {"NSWE_H", "3000"}, {"NSWE_L", "300"}, {"NSWE_T", "450"}},
         300,
         450,
         6000,
         3000},
        {{{"NSWE_L", "40000"}}, kScreenW - 5000, ct, 5000, 4000}, // beyond a smaller screen
        {{{"NSWE_T", "-900"}}, cl, 0, 5000, 4000},
        {{{"NSWE_T", "99999"}}, cl, kScreenH - 4000, 5000, 4000},
        {{{"NSWE_W", "wide"}}, cl, ct, 5000, 4000},
    };
    for (const Case& c : cases) {
        Harness h;
        for (const auto& [key, value] : c.saved)
            h.setSetting("frmEdit", key, value);
        FakeGeometry g;
        Placement(h.ctx.settings, h.log).AlignFF(g, 0, 0, 5000, 4000, true, true);
        EXPECT_EQ((std::vector<int>{g.l, g.t, g.w, g.h}), (std::vector<int>{c.l, c.t, c.w, c.h}))
            << (c.saved.empty() ? "first run" : c.saved[0].first);
    }
    Harness h;
    h.setSetting("frmEdit", "NSWE_W", "99999");
    h.setSetting("frmEdit", "NSWE_H", "99999");
    FakeGeometry g;
    Placement(h.ctx.settings, h.log).AlignFF(g, 0, 0, 5000, 4000, true, true);
    EXPECT_TRUE(g.maximized);
}

TEST(Placement, KeepOnTopTogglesAndSendsTwipsOverFifteen) {
    Harness h;
    FakeGeometry g;
    g.setGeometry(151, 299, 4500, 6010);
    h.ctx.geometry = &g;
    h.run("mnuKeepOnTop");
    EXPECT_TRUE(h.menu.isChecked("mnuKeepOnTop"));
    EXPECT_EQ(h.setting("Window Position", "frmEdit"), "1");
    ASSERT_EQ(g.topCalls.size(), 1u);
    const FakeGeometry::TopCall& on = g.topCalls[0];
    EXPECT_EQ((std::vector<int>{on.on, on.x, on.y, on.cx, on.cy}),
              (std::vector<int>{true, 10, 19, 300, 400}));
    h.run("mnuKeepOnTop");
    EXPECT_FALSE(h.menu.isChecked("mnuKeepOnTop"));
    EXPECT_EQ(h.setting("Window Position", "frmEdit"), "0");
    EXPECT_FALSE(g.topCalls.back().on);
    EXPECT_FALSE(Placement(h.ctx.settings, h.log).WasIOnTop(g));
}

TEST(ViewCommands, NoWordWrapTogglesAndFontStringsAreChecked) {
    Harness h("text");
    h.run("mnuNoWrap");
    EXPECT_EQ(h.setting("frmEdit", "Right Margin"), "True");
    h.run("mnuNoWrap");
    EXPECT_EQ(h.setting("frmEdit", "Right Margin"), "False");

    // A saved font with fewer than four pieces is an error of SetFont, logged; nothing else.
    h.setSetting("frmEdit", "Font", "Arial,9");
    SetFont(h.ctx);
    ASSERT_EQ(h.log.errors.size(), 1u);
    EXPECT_EQ(h.log.errors[0].location, "Sub SetFont");
    h.setSetting("frmEdit", "Font", "Courier New,11,True,False");
    SetFont(h.ctx);
    EXPECT_EQ(h.log.errors.size(), 1u);
    EXPECT_EQ(h.edit.selStart(), 0);
    EXPECT_EQ(h.edit.selLength(), 0);
}

} // namespace
