// A file with every kind of line break and character the edit widget treats specially, opened in
// the real window, typed into and saved: only the typed character and Save's final line break
// differ from the bytes of the file.

#include "editor/EditorWindow.h"
#include "editor/ScintillaEditControl.h"
#include "support/Fakes.h"

#include <QApplication>
#include <QKeyEvent>
#include <QTemporaryDir>

#include <Qsci/qsciscintillabase.h>
#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

TEST(TypedSave, EveryOtherByteOfTheFileStays) {
    struct Case {
        const char* name;
        QByteArray bytes;
        QByteArray eol;   // the line break Save adds
        QString inserted; // by a command after the typed character
    };
    // U+2028, U+2029, U+FDD0, U+FDD1, the CR symbol U+240D, U+E00D and U+F00D, NUL.
    const QByteArray special = QByteArray("\xE2\x80\xA8ls\xE2\x80\xA9ps\xEF\xB7\x90"
                                          "fdd0\xEF\xB7\x91"
                                          "fdd1\xE2\x90\x8D"
                                          "crsym\xEE\x80\x8D\xEF\x80\x8D") +
                               QByteArray("\0nul\0", 5);
    // Characters the widget might hold for others, inserted by a command.
    const QString kSymbols = QString::fromUtf16(u"\u240D\uE000\uE001\uE002");
    for (const Case& c : std::vector<Case>{
             {"UTF-8, lone CRs and LFs", "lone\rcr\nlf\r\ncrlf" + special + "\rend\n", "\n",
              kSymbols},
             {"UTF-8, CR LF and lone CRs", "crlf\r\nlone\rcr" + special + "\r\n", "\r\n", kSymbols},
             {"Latin-1 (not UTF-8)", QByteArray("caf\xE9\r\x80\x81\xFE\xFF\n\xA0z\r", 13), "\n",
              ""},
         }) {
        SCOPED_TRACE(c.name);
        QTemporaryDir dir;
        const QString file = dir.path() + "/doc.txt";
        writeFile(file, c.bytes);
        StartUpState startUp;
        runStartUp(startUp, dir.path() + "/bin/Editor", {});
        startUp.CommandLine = file;
        FakeDialogs dialogs;
        FakeFileDialogs files;
        EditorWindow window(startUp);
        window.setDialogs(&dialogs);
        window.setFileDialogs(&files);
        window.load();
        window.show();
        QWidget* text = window.textWidget();
        window.editControl().setSelStart(0);
        // A key press and release as the keyboard gives them.
        for (QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent key(type, Qt::Key_X, Qt::NoModifier, QStringLiteral("x"));
            QApplication::sendEvent(text, &key);
        }
        window.editControl().replaceRange(1, 0, c.inserted);
        window.trigger("mnuSave");
        EXPECT_TRUE(dialogs.messages.empty());
        EXPECT_EQ(readFile(file).toHex(' ').toStdString(),
                  ("x" + c.inserted.toUtf8() + c.bytes + c.eol).toHex(' ').toStdString());
    }
}

} // namespace
