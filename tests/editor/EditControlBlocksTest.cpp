// The edit control holds a whole-text assignment in blocks of several lines. Positions, text and
// the user's edits must read as if every line were a block of its own.

#include "editor/BusyWork.h"
#include "editor/PlainTextEditControl.h"
#include "editor/RtfDocument.h"
#include "editor/RtfReader.h"
#include "editor/RtfWriter.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTextCursor>
#include <QThread>

#include <gtest/gtest.h>

#include <vector>

using namespace ed;

namespace {

QString lines(int count, const QString& filler = QStringLiteral("line")) {
    QString s;
    for (int i = 0; i < count; ++i)
        s += QStringLiteral("%1 %2\r\n").arg(filler).arg(i);
    return s;
}

// The widget position of every model position, worked out from the model text alone: a CR LF is
// one widget position, and a position between its CR and LF lands after the break.
std::vector<int> expectedWidgetPositions(const QString& model) {
    std::vector<int> out;
    int w = 0;
    for (qsizetype m = 0; m < model.size(); ++m) {
        out.push_back(w);
        if (model[m] == u'\r' && m + 1 < model.size() && model[m + 1] == u'\n') {
            out.push_back(w + 1);
            ++m;
        }
        ++w;
    }
    out.push_back(w);
    return out;
}

struct Fixture {
    QPlainTextEdit widget;
    PlainTextEditControl edit{&widget};
    Fixture() {
        widget.resize(400, 300);
        widget.setLineWrapMode(QPlainTextEdit::NoWrap);
        widget.show();
        QApplication::processEvents();
    }
    // Every model position maps to the expected widget position and back.
    void expectPositionsMatch(const QString& model) {
        const std::vector<int> expected = expectedWidgetPositions(model);
        for (int m = 0; m <= int(model.size()); ++m) {
            ASSERT_EQ(edit.toWidget(m), expected[size_t(m)]) << "model position " << m;
            const bool insideBreak =
                m > 0 && model[m - 1] == u'\r' && m < model.size() && model[m] == u'\n';
            ASSERT_EQ(edit.toModel(expected[size_t(m)]), insideBreak ? m + 1 : m)
                << "model position " << m;
        }
    }
};

struct Document {
    const char* name;
    QString text;
};

class EditControlBlocks : public ::testing::TestWithParam<Document> {};

TEST_P(EditControlBlocks, TextPositionsAndSelectionsReadAsLines) {
    Fixture f;
    const QString text = GetParam().text;
    f.edit.setText(text);
    EXPECT_EQ(f.edit.text(), text);
    f.expectPositionsMatch(text);
    for (int start : {0, 3, 17, int(text.size() / 2), int(text.size()) - 2}) {
        if (start < 0)
            continue;
        f.edit.setSelStart(start);
        f.edit.setSelLength(40);
        EXPECT_EQ(f.edit.selText(), text.mid(f.edit.selStart(), f.edit.selLength()));
        EXPECT_LE(f.edit.selStart(), start + 1);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Documents, EditControlBlocks,
    ::testing::Values(Document{"ManyLines", lines(50)},
                      Document{"NoFinalBreak", lines(40) + "tail"},
                      Document{"EmptyLines", QString("\r\n").repeated(35) + "x"},
                      Document{"LoneCrAndLf", lines(20) + "a\rb\r\nc\r\n" + lines(20)},
                      Document{"LongLines", lines(30, QString(700, u'w'))},
                      Document{"OwnCrSymbol", lines(20) + QChar(0x240D) + "a\rb" + lines(20)},
                      Document{"OwnLineSeparators",
                               lines(20) + QChar(QChar::LineSeparator) + lines(20)},
                      Document{"Empty", QString()}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(EditControlBlocksEdits, UserEditsKeepTextAndPositionsRight) {
    Fixture f;
    QString model = lines(60);
    f.edit.setText(model);
    struct Edit {
        int modelStart, modelLength;
        QString typed; // as the user types it: a line break is a paragraph break
    };
    const Edit edits[] = {
        {12, 0, "X"},             // inside the first block
        {200, 30, ""},            // across the end of a block
        {100, 0, "new\nlines\n"}, // breaks typed into a block
        {0, 400, "short"},        // several blocks at once
        {-1, 0, "end"},           // at the very end
    };
    for (Edit e : edits) {
        if (e.modelStart < 0)
            e.modelStart = int(model.size());
        QTextCursor c(f.widget.document());
        c.setPosition(f.edit.toWidget(e.modelStart));
        c.setPosition(f.edit.toWidget(e.modelStart + e.modelLength), QTextCursor::KeepAnchor);
        c.insertText(e.typed);
        QString typed = e.typed;
        model.replace(e.modelStart, e.modelLength, typed.replace("\n", "\r\n"));
        ASSERT_EQ(f.edit.text(), model) << e.typed.toStdString();
        f.expectPositionsMatch(model);
    }
    EXPECT_TRUE(f.edit.takeUserEdited());
}

TEST(EditControlBlocksEdits, ReplaceRangeInsideAndAcrossBlocks) {
    Fixture f;
    QString model = lines(80);
    f.edit.setText(model);
    for (auto [start, length, with] :
         {std::tuple{5, 3, QString("a\r\nb")}, std::tuple{300, 250, QString()},
          std::tuple{20, 0, QString("\r\n\r\n")}}) {
        f.edit.replaceRange(start, length, with);
        model.replace(start, length, with);
        ASSERT_EQ(f.edit.text(), model);
    }
    f.expectPositionsMatch(model);
}

TEST(EditControlBlocksEdits, ScrollBarCountsLinesAfterLoadAndResize) {
    Fixture f;
    f.edit.setText(lines(1600));
    QApplication::processEvents();
    const int afterLoad = f.widget.verticalScrollBar()->maximum();
    EXPECT_GT(afterLoad, 1500);
    f.widget.resize(500, 350);
    QApplication::processEvents();
    QApplication::processEvents();
    EXPECT_NEAR(f.widget.verticalScrollBar()->maximum(), afterLoad, 10);
}

TEST(EditControlBlocksEdits, RtfOfABlockDocumentHasOneParagraphPerLine) {
    Fixture f;
    f.edit.setText(lines(40));
    const RtfContent content = parseRtf(writeRtf(*f.widget.document()), nullptr);
    ASSERT_EQ(content.paragraphs.size(), 41);
    EXPECT_EQ(content.paragraphs[17].runs.value(0).text, "line 17");
}

} // namespace

namespace {

TEST(EditControlBlocksEdits, TripleClickSelectsOneLine) {
    Fixture f;
    f.edit.setText(lines(40));
    QApplication::processEvents();
    QTextCursor line3(f.widget.document());
    line3.setPosition(f.edit.toWidget(int(lines(3).size()) + 2));
    const QPointF at = f.widget.cursorRect(line3).center();
    for (QEvent::Type type :
         {QEvent::MouseButtonPress, QEvent::MouseButtonRelease, QEvent::MouseButtonDblClick,
          QEvent::MouseButtonRelease, QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QMouseEvent e(type, at, f.widget.viewport()->mapToGlobal(at), Qt::LeftButton,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, {});
        QApplication::sendEvent(f.widget.viewport(), &e);
    }
    EXPECT_EQ(f.edit.selText(), "line 3\r\n");
}

} // namespace

namespace {

TEST(PreparedDocumentTest, ReportsProgressAndStopsWhenCancelled) {
    const QString text = lines(300000); // several slices
    BusyToken token;
    token.percent = 30;
    PreparedDocument whole(text, QThread::currentThread(), &token);
    EXPECT_EQ(token.percent, 100);
    Fixture f;
    f.edit.adopt(std::move(whole));
    EXPECT_EQ(f.edit.text(), text);
    f.expectPositionsMatch(text.left(2000));

    BusyToken cancelled;
    cancelled.cancelled = true;
    PreparedDocument stopped(text, QThread::currentThread(), &cancelled);
    EXPECT_EQ(cancelled.percent, -1);
}

} // namespace
