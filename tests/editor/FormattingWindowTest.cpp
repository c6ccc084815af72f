// Float Font and Remove Formatting in the window: the sizes show in the document, Save RTF
// writes them and opening the file shows them again.

#include "WindowFixture.h"
#include "editor/RtfReader.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

class FormattingWindowTest : public WindowFixture {
protected:
    // The point size of each character the window shows, line by line.
    std::vector<std::vector<double>> shownSizes() {
        std::vector<std::vector<double>> lines;
        const RtfContent content = parseRtf(window_->editControl().saveRtf());
        for (const RtfParagraph& p : content.paragraphs) {
            lines.emplace_back();
            for (const RtfRun& run : p.runs)
                for (qsizetype i = 0; i < run.text.size(); ++i)
                    if (!run.text[i].isLowSurrogate())
                        lines.back().push_back(run.format.pointSize);
        }
        return lines;
    }
    void run(const QString& item) { window_->trigger(item); }
};

TEST_F(FormattingWindowTest, FloatFontSurvivesSaveRtfAndReopen) {
    writeFile(path("wave.txt"), "Hello\r\nW\xf0\x9f\x98\x80rld\r\n");
    open(path("wave.txt"));
    EditControl& edit = window_->editControl();
    ASSERT_EQ(window_->editControl().documentFont().size, 9); // the saved font's
    edit.setSelStart(1);
    edit.setSelLength(10); // "ello", the line break, "W", the emoji (two units), "r"
    dialogs_.answers = {"11"};
    run("mnuFloatFont");
    ASSERT_TRUE(dialogs_.messages.empty());
    const std::vector<std::vector<double>> expected = {{9, 9, 10, 11, 10}, {10, 11, 10, 9, 9}, {}};
    EXPECT_EQ(shownSizes(), expected);
    EXPECT_EQ(edit.text(), QString::fromUtf8("Hello\r\nW\xf0\x9f\x98\x80rld\r\n"));
    EXPECT_EQ(edit.selStart(), 1);
    EXPECT_EQ(edit.selLength(), 10);

    // One undo step takes the sizes back, redo brings them again; the text never changes.
    const std::vector<std::vector<double>> plain = {{9, 9, 9, 9, 9}, {9, 9, 9, 9, 9}, {}};
    run("mnuUndo");
    EXPECT_EQ(shownSizes(), plain);
    run("mnuRedo");
    EXPECT_EQ(shownSizes(), expected);
    EXPECT_EQ(edit.text(), QString::fromUtf8("Hello\r\nW\xf0\x9f\x98\x80rld\r\n"));

    run("mnuSaveAsRTF");
    ASSERT_EQ(window_->windowTitle(), path("wave.rtf"));
    // File > Open keeps the file's formats (a start-up applies the saved font to everything).
    files_.openAnswers.push_back({path("wave.rtf"), 1});
    run("mnuOpen");
    ASSERT_EQ(window_->windowTitle(), path("wave.rtf"));
    EXPECT_EQ(shownSizes(), expected);

    run("mnuRemoveFormatting");
    EXPECT_EQ(shownSizes(), plain);
    EXPECT_EQ(edit.text(), QString::fromUtf8("Hello\r\nW\xf0\x9f\x98\x80rld\r\n"));
    EXPECT_EQ(edit.selStart(), 0);
    EXPECT_EQ(edit.selLength(), 0);
    run("mnuUndo");
    EXPECT_EQ(shownSizes(), expected);
}

} // namespace
