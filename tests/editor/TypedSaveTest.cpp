// A file with every kind of line break and character the edit widget treats specially, opened in
// the real window, typed into and saved: only the typed character and Save's final line break
// differ from the bytes of the file.

#include "WindowFixture.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

class TypedSave : public WindowFixture {};

TEST_F(TypedSave, EveryOtherByteOfTheFileStays) {
    // U+2028, U+2029, U+FDD0, U+FDD1, the CR symbol U+240D, U+E00D and U+F00D, NUL.
    const QByteArray special = QByteArray("\xE2\x80\xA8ls\xE2\x80\xA9ps\xEF\xB7\x90"
                                          "fdd0\xEF\xB7\x91"
                                          "fdd1\xE2\x90\x8D"
                                          "crsym\xEE\x80\x8D\xEF\x80\x8D") +
                               QByteArray("\0nul\0", 5);
    // Characters the widget might hold for others, inserted by a command.
    const QString symbols = QString::fromUtf16(u"\u240D\uE000\uE001\uE002");
    const struct {
        const char* name;
        QByteArray bytes;
        QByteArray eol;   // the line break Save adds
        QString inserted; // by a command after the typed character
    } cases[] = {
        {"UTF-8, lone CRs and LFs", "lone\rcr\nlf\r\ncrlf" + special + "\rend\n", "\n", symbols},
        {"UTF-8, CR LF and lone CRs", "crlf\r\nlone\rcr" + special + "\r\n", "\r\n", symbols},
        {"Latin-1 (not UTF-8)", QByteArray("caf\xE9\r\x80\x81\xFE\xFF\n\xA0z\r", 13), "\n", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        writeFile(path("doc.txt"), c.bytes);
        open(path("doc.txt"));
        window_->show();
        window_->editControl().setSelStart(0);
        type("x");
        window_->editControl().replaceRange(1, 0, c.inserted);
        window_->trigger("mnuSave");
        EXPECT_TRUE(dialogs_.messages.empty());
        EXPECT_EQ(readFile(path("doc.txt")).toHex(' ').toStdString(),
                  ("x" + c.inserted.toUtf8() + c.bytes + c.eol).toHex(' ').toStdString());
    }
}

} // namespace
