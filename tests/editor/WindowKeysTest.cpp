// The window by keyboard and what its status bar shows: mnemonics and F10 open the menus, the
// menu's keys reach their items even while the text has the focus. Offscreen, with real key
// events (scripts/check-keys drives the same on a real display with a window manager).

#include "WindowFixture.h"
#include "editor/MenuKeys.h"
#include "editor/MenuTable.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QMenu>
#include <QStatusBar>

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

class WindowKeysTest : public WindowFixture {
protected:
    // The window as a person sees it: shown, active, the caret in the text.
    void openActive(const QByteArray& bytes = "first line\r\n") {
        writeFile(path("doc.txt"), bytes);
        open(path("doc.txt"));
        window_->show();
        window_->activateWindow();
        window_->textWidget()->setFocus();
        waitFor([this] { return QApplication::activeWindow() == window_.get(); });
    }
    template <class F> static void waitFor(F done) {
        QElapsedTimer t;
        t.start();
        while (!done() && t.elapsed() < 2000)
            QApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    // A key pressed and released where the keyboard focus is (the text, unless a test moved it).
    void press(int key, Qt::KeyboardModifiers mods = Qt::NoModifier, const QString& text = {}) {
        QWidget* target = QApplication::focusWidget() ? QApplication::focusWidget() : window_.get();
        QKeyEvent down(QEvent::KeyPress, key, mods, text);
        QKeyEvent up(QEvent::KeyRelease, key, mods, text);
        QApplication::sendEvent(target, &down);
        QApplication::sendEvent(target, &up);
    }
    QString field(const char* name) {
        auto* label = window_->findChild<QLabel*>(name);
        return label && label->isVisibleTo(window_.get()) ? label->text() : QString("<hidden>");
    }
};

// Every menu of the table: the captions read as declared ("&" marks the mnemonic, "&&" is an
// "&"), and each visible item has a letter of its own within its menu.
TEST(MenuKeys, EveryMenuReadsAsDeclaredWithLettersOfItsOwn) {
    const QHash<QString, QString> texts = menuTexts();
    QHash<QString, QSet<QKeySequence>> letters;
    for (const MenuItemDecl& d : menuItems()) {
        if (!isCommand(d) && !(d.flags & kMenu))
            continue;
        const QString text = texts.value(QString::fromLatin1(d.name));
        EXPECT_EQ(QString(text).replace("&&", "\x01").remove(u'&').replace(u'\x01', u'&'),
                  QString::fromUtf8(d.caption));
        const QKeySequence letter = QKeySequence::mnemonic(text);
        EXPECT_TRUE(!letter.isEmpty() || (d.flags & kHidden)) << d.name;
        QSet<QKeySequence>& taken = letters[QString::fromLatin1(d.parent ? d.parent : "")];
        EXPECT_FALSE(!letter.isEmpty() && taken.contains(letter)) << d.name;
        taken << letter;
    }
}

// The standard keys never take a key of the table, and no key runs two items.
TEST(MenuKeys, NoKeyIsGivenTwice) {
    QMap<QKeySequence, QString> owner;
    for (const MenuItemDecl& d : menuItems()) {
        QList<QKeySequence> keys = standardKeys(d.name);
        if (*d.shortcut)
            keys << QKeySequence(QString::fromLatin1(d.shortcut));
        for (const QKeySequence& k : keys) {
            EXPECT_FALSE(owner.contains(k)) << k.toString().toStdString() << " " << d.name << " "
                                            << owner.value(k).toStdString();
            owner.insert(k, d.name);
        }
    }
    EXPECT_EQ(owner.value(QKeySequence("Ctrl+Q")), "mnuExit");
    EXPECT_EQ(owner.value(QKeySequence("Ctrl+X")), "mnuExit");
}

TEST_F(WindowKeysTest, CloseKeysCloseTheWindowAfterTheQuestion) {
    const struct {
        const char* name;
        int key;
        bool modified;
        std::deque<Answer> answers;
        bool asked, closed;
    } cases[] = {
        {"unmodified", Qt::Key_X, false, {}, false, true},
        {"modified, Cancel", Qt::Key_X, true, {Answer::Cancel}, true, false},
        {"modified, No", Qt::Key_X, true, {Answer::No}, true, true},
        {"Ctrl+Q, unmodified", Qt::Key_Q, false, {}, false, true},
        {"Ctrl+Q, modified, Cancel", Qt::Key_Q, true, {Answer::Cancel}, true, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        dialogs_.messages.clear();
        openActive();
        window_->editControl().setSelStart(0);
        window_->editControl().setSelLength(5); // Cut would take "first"
        if (c.modified)
            window_->setModified(true);
        dialogs_.buttonAnswers = c.answers;
        press(c.key, Qt::ControlModifier);
        EXPECT_EQ(!dialogs_.messages.empty(), c.asked);
        EXPECT_EQ(!window_->isVisible(), c.closed);
        EXPECT_EQ(text(), "first line\r\n"); // never cut
    }
}

TEST_F(WindowKeysTest, AltLetterAndF10OpenTheMenus) {
    const struct {
        int key;
        Qt::KeyboardModifiers mods;
        const char* menu;
    } cases[] = {
        {Qt::Key_F, Qt::AltModifier, "mnuFile"},
        {Qt::Key_F10, Qt::NoModifier, "mnuFile"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.menu);
        openActive();
        auto* menu = window_->findChild<QMenu*>(c.menu);
        ASSERT_NE(menu, nullptr);
        press(c.key, c.mods,
              c.mods == Qt::AltModifier ? QKeySequence(c.key).toString().toLower() : QString());
        waitFor([menu] { return menu->isVisible(); });
        EXPECT_TRUE(menu->isVisible());
        EXPECT_EQ(text(), "first line\r\n"); // nothing typed into the document
        menu->hide();
    }
}

TEST_F(WindowKeysTest, StatusBarShowsCaretSelectionAndFormat) {
    const struct {
        const char* name;
        QByteArray bytes;
        QString encoding, lineBreak;
    } cases[] = {
        {"a.txt", "ab\r\ncd\r\n", "UTF-8", "CR LF"},
        {"b.txt", "ab\ncd\n", "UTF-8", "LF"},
        {"d.txt", "ab\n\xE9z\n", "Latin-1", "LF"},
        {"f.txt", QByteArray::fromHex("fffe 6100 6200 0a00 6300 6400"), "UTF-16 LE", "LF"},
        {"g.rtf", "{\\rtf1\\ansi ab\\par cd}", "RTF", "<hidden>"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        writeFile(path(c.name), c.bytes);
        open(path(c.name));
        window_->show();
        EXPECT_EQ(field("lblEncoding"), c.encoding);
        EXPECT_EQ(field("lblLineBreak"), c.lineBreak);
        EXPECT_EQ(field("lblPosition"), "Ln 1, Col 1");
        EditControl& edit = window_->editControl();
        edit.setSelStart(6); // after "d"; the model counts each break as two
        EXPECT_EQ(field("lblPosition"), "Ln 2, Col 3");
        EXPECT_EQ(field("lblSelection"), "Sel 0");
        edit.setSelStart(1);
        edit.setSelLength(4); // "b", the break, "c"
        EXPECT_EQ(field("lblPosition"), "Ln 2, Col 2");
        EXPECT_EQ(field("lblSelection"), "Sel 3");
    }
    // A message shows beside the fields, which stay.
    window_->showStatus("Reloaded");
    EXPECT_EQ(window_->statusBar()->currentMessage(), "Reloaded");
    EXPECT_EQ(field("lblSelection"), "Sel 3");
    EXPECT_EQ(field("lblEncoding"), "RTF");
    // Save As with the Text files filter writes text: the fields say what Save now writes.
    files_.saveAnswers.push_back({path("g.txt"), 2});
    window_->trigger("mnuSaveAs");
    EXPECT_EQ(window_->windowTitle(), path("g.txt"));
    EXPECT_EQ(field("lblEncoding"), "UTF-8");
    EXPECT_NE(field("lblLineBreak"), "<hidden>");
}

} // namespace
