// Text typed into a rich document has the format of the text before it by the time the view next
// paints, not one frame later.

#include "WindowFixture.h"
#include "editor/ScintillaEditControl.h"

#include <QApplication>
#include <QKeyEvent>

#include <Qsci/qsciscintillabase.h>
#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

class TypingFormat : public WindowFixture {};

TEST_F(TypingFormat, TypedCharacterTakesItsNeighboursStyleAtOnce) {
    writeFile(path("b.rtf"), "{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}}\\f0\\fs24 plain \\b bold\\b0}");
    open();
    // File > Open keeps the file's formats (a start-up gives everything the saved font).
    files_.openAnswers.push_back({path("b.rtf"), 1});
    window_->trigger("mnuOpen");
    ScintillaEditControl& edit = window_->editControl();
    QsciScintillaBase* view = edit.view();
    const long bold = view->SendScintilla(QsciScintillaBase::SCI_GETSTYLEAT, 7);
    ASSERT_NE(bold, view->SendScintilla(QsciScintillaBase::SCI_GETSTYLEAT, 0));
    edit.setCaretByte(8); // after "plain bo"
    edit.flushSelection();
    for (QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent key(type, Qt::Key_X, Qt::NoModifier, QStringLiteral("x"));
        QApplication::sendEvent(window_->textWidget(), &key);
    }
    ASSERT_EQ(edit.text(), "plain boxld");
    // No event has run since the key: what the view paints next.
    EXPECT_EQ(view->SendScintilla(QsciScintillaBase::SCI_GETSTYLEAT, 8), bold);
}

} // namespace
