// Float Font and Remove Formatting against a recording view.
#include "textcmds/Formatting.h"
#include "support/Fakes.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

class RecordingView : public EditView {
public:
    FontSpec font; // the document's
    struct Cycle {
        int start, length;
        QList<double> sizes;
    };
    std::vector<Cycle> cycles;
    std::vector<FontSpec> cleared;

    void setSelectionFont(const FontSpec&) override {}
    FontSpec selectionFont() const override { return font; }
    void setRightMargin(int) override {}
    FontSpec documentFont() const override { return font; }
    void setSizeCycle(int start, int length, const QList<double>& sizes) override {
        cycles.push_back({start, length, sizes});
    }
    void clearFormatting(const FontSpec& f) override { cleared.push_back(f); }
};

TEST(Formatting, SizeWaveRisesAndFalls) {
    const std::pair<std::pair<double, double>, QList<double>> cases[] = {
        {{9, 12}, {9, 10, 11, 12, 11, 10}},
        {{9, 9}, {9}},
        {{12, 5}, {5}},
        {{9.5, 12}, {9.5, 10.5, 11.5, 10.5}},
    };
    for (const auto& [range, wave] : cases)
        EXPECT_EQ(sizeWave(range.first, range.second), wave) << range.first << " " << range.second;
}

TEST(Formatting, FloatFontSizesTheSelectionOrTheWhole) {
    struct Case {
        const char* answer;
        int selStart, selLength;
        bool applied; // else the message
        int start, length;
    };
    const Case cases[] = {
        {"12", 0, 0, true, 0, 8},   {" 1638 ", 2, 3, true, 2, 3}, {"1", 0, 0, true, 0, 8},
        {"0", 0, 0, false, 0, 0},   {"1639", 0, 0, false, 0, 0},  {"12.5", 0, 0, false, 0, 0},
        {"big", 0, 0, false, 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.answer);
        Harness h(QStringLiteral("😀ab\r\ncd"));
        RecordingView view;
        view.font.size = 10;
        h.ctx.view = &view;
        h.select(c.selStart, c.selLength);
        h.dialogs.answers.push_back(c.answer);
        h.run("mnuFloatFont");
        EXPECT_EQ(h.dialogs.prompts.at(0).defaultAnswer, "40"); // never the selection
        EXPECT_EQ(h.edit.assignments(), 0);
        EXPECT_EQ(h.edit.selStart(), c.selStart); // the selection stays
        EXPECT_EQ(h.edit.selLength(), c.selLength);
        if (!c.applied) {
            ASSERT_EQ(h.dialogs.messages.size(), 1u);
            EXPECT_EQ(h.dialogs.messages[0].text,
                      "The largest size must be a whole number from 1 to 1638.");
            EXPECT_EQ(h.settings.writes, 0);
            EXPECT_TRUE(view.cycles.empty());
            continue;
        }
        EXPECT_EQ(h.setting("frmEdit", "Max Size Font float"), c.answer);
        ASSERT_EQ(view.cycles.size(), 1u);
        EXPECT_EQ(view.cycles[0].start, c.start);
        EXPECT_EQ(view.cycles[0].length, c.length);
        EXPECT_EQ(view.cycles[0].sizes, sizeWave(10, QString(c.answer).trimmed().toDouble()));
    }
}

TEST(Formatting, RemoveFormattingGoesBackToTheSavedFont) {
    const std::pair<const char*, const char*> cases[] = {
        // the saved font, and the font the text gets ("": unreadable, logged)
        {nullptr, "Arial 9"},
        {"Courier New,12.5,True,False", "Courier New 12.5 b"},
        {" ,10,False,True", "Arial 10 i"},
        {"Arial,9", ""},
        {"Arial,big,False,False", ""},
    };
    for (const auto& [saved, font] : cases) {
        SCOPED_TRACE(saved ? saved : "none");
        Harness h("some text");
        RecordingView view;
        h.ctx.view = &view;
        if (saved)
            h.setSetting("frmEdit", "Font", saved);
        h.select(2, 3);
        h.run("mnuRemoveFormatting");
        EXPECT_EQ(h.edit.assignments(), 0);
        QStringList cleared;
        for (const FontSpec& f : view.cleared)
            cleared << f.name + ' ' + QString::number(f.size) + (f.bold ? " b" : "") +
                           (f.italic ? " i" : "");
        EXPECT_EQ(cleared.join('|'), font);
        EXPECT_EQ(h.log.errors.size(), *font ? 0u : 1u);
        EXPECT_EQ(h.edit.selLength(), *font ? 0 : 3); // a failure keeps the selection
    }
}

} // namespace
