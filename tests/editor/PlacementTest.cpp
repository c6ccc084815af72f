#include "editor/Placement.h"
#include "editor/ViewCommands.h"
#include "support/Fakes.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

class FakeGeometry : public FormGeometry {
public:
    int w = 1200, h = 900, l = 0, t = 0;
    int sw = 1024 * 15, sh = 768 * 15;
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
    int screenWidth() const override { return sw; }
    int screenHeight() const override { return sh; }
    bool isMinimized() const override { return false; }
    void setGeometry(int nl, int nt, int nw, int nh) override {
        l = nl;
        t = nt;
        w = nw;
        h = nh;
    }
    void maximize() override { maximized = true; }
    void setTopmost(bool on, int x, int y, int cx, int cy) override {
        topCalls.push_back({on, x, y, cx, cy});
    }
};

TEST(Placement, RestoresOrCentresAndKeepsTheWindowOnScreen) {
    struct Case {
        const char* what;
        std::vector<std::pair<const char*, const char*>> saved;
        int l, t, w, h;
    };
    const int sw = 1024 * 15, sh = 768 * 15;
    const std::vector<Case> cases = {
        {"first run: default size, centred", {}, sw / 2 - 2500, sh / 2 - 2000, 5000, 4000},
        {"saved placement",
         {{"NSWE_W", "6000"}, {"NSWE_H", "3000"}, {"NSWE_L", "300"}, {"NSWE_T", "450"}},
         300,
         450,
         6000,
         3000},
        {"left beyond a smaller screen",
         {{"NSWE_L", "40000"}},
         sw - 5000,
         sh / 2 - 2000,
         5000,
         4000},
        {"top above the screen", {{"NSWE_T", "-900"}}, sw / 2 - 2500, 0, 5000, 4000},
        {"top below the screen", {{"NSWE_T", "99999"}}, sw / 2 - 2500, sh - 4000, 5000, 4000},
        {"garbage values", {{"NSWE_W", "wide"}}, sw / 2 - 2500, sh / 2 - 2000, 5000, 4000},
    };
    for (const Case& c : cases) {
        Harness h;
        for (const auto& [key, value] : c.saved)
            h.setSetting("frmEdit", key, value);
        FakeGeometry g;
        Placement(h.ctx.settings, h.log).AlignFF(g, 0, 0, 5000, 4000, true, true);
        EXPECT_EQ(g.l, c.l) << c.what;
        EXPECT_EQ(g.t, c.t) << c.what;
        EXPECT_EQ(g.w, c.w) << c.what;
        EXPECT_EQ(g.h, c.h) << c.what;
    }
    Harness h;
    h.setSetting("frmEdit", "NSWE_W", "99999");
    h.setSetting("frmEdit", "NSWE_H", "99999");
    FakeGeometry g;
    Placement(h.ctx.settings, h.log).AlignFF(g, 0, 0, 5000, 4000, true, true);
    EXPECT_TRUE(g.maximized);
}

TEST(Placement, SaveWritesTwipsToTheFormsSection) {
    Harness h;
    FakeGeometry g;
    g.setGeometry(150, 300, 4500, 6000);
    Placement(h.ctx.settings, h.log).SaveFF(g);
    EXPECT_EQ(h.setting("frmEdit", "NSWE_W"), "4500");
    EXPECT_EQ(h.setting("frmEdit", "NSWE_H"), "6000");
    EXPECT_EQ(h.setting("frmEdit", "NSWE_L"), "150");
    EXPECT_EQ(h.setting("frmEdit", "NSWE_T"), "300");
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
    EXPECT_TRUE(g.topCalls[0].on);
    EXPECT_EQ(g.topCalls[0].x, 10);
    EXPECT_EQ(g.topCalls[0].y, 19);
    EXPECT_EQ(g.topCalls[0].cx, 300);
    EXPECT_EQ(g.topCalls[0].cy, 400);
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
