// Where the window opens: the remembered place, or centred, and always on the screen.

#include "editor/Placement.h"
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
    void setTopmost(bool, int, int, int, int) override {}
};

TEST(Placement, RestoresOrCentresAndKeepsTheWindowOnScreen) {
    const int cl = kScreenW / 2 - 2500, ct = kScreenH / 2 - 2000; // the default size, centred
    const struct {
        std::vector<std::pair<const char*, const char*>> saved;
        std::vector<int> placed; // left, top, width, height; empty: maximized
    } cases[] = {
        {{}, {cl, ct, 5000, 4000}},
        {{{"NSWE_W", "6000"}, {"NSWE_H", "3000"}, {"NSWE_L", "300"}, {"NSWE_T", "450"}},
         {300, 450, 6000, 3000}},
        {{{"NSWE_L", "40000"}}, {kScreenW - 5000, ct, 5000, 4000}}, // beyond a smaller screen
        {{{"NSWE_T", "-900"}}, {cl, 0, 5000, 4000}},
        {{{"NSWE_T", "99999"}}, {cl, kScreenH - 4000, 5000, 4000}},
        {{{"NSWE_W", "wide"}}, {cl, ct, 5000, 4000}},
        {{{"NSWE_W", "99999"}, {"NSWE_H", "99999"}}, {}},
    };
    for (const auto& c : cases) {
        Harness h;
        for (const auto& [key, value] : c.saved)
            h.setSetting("frmEdit", key, value);
        FakeGeometry g;
        Placement(h.ctx.settings, h.log).AlignFF(g, 0, 0, 5000, 4000, true, true);
        const std::vector<int> placed{g.l, g.t, g.w, g.h};
        EXPECT_EQ(g.maximized ? std::vector<int>() : placed, c.placed)
            << (c.saved.empty() ? "first run" : c.saved[0].first);
    }
}

} // namespace
