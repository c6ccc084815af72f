// Names of downloaded files: what the server proposes, what the address gives, and what
// survives being made safe.

#include "support/Fakes.h"

#include "web/DownloadNames.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::web;

namespace {

TEST(DownloadNames, TheNameComesFromTheResponseElseTheAddress) {
    struct Case {
        QByteArray disposition;
        QString url;
        QString name;
    };
    const Case cases[] = {
        {"", "http://h/dir/file.txt?x=1#y", "file.txt"},
        {"", "http://h/a%20b%2Fc.txt", "a b_c.txt"},
        {"", "http://h/", "download"},
        {"", "http://h/..", "download"},
        {"attachment", "http://h/f.bin", "f.bin"},
        {"attachment; filename=plain.txt", "http://h/f", "plain.txt"},
        {"attachment; filename=\"q \\\"x\\\".txt\"; size=3", "http://h/f", "q _x_.txt"},
        {"attachment; FILENAME*=utf-8'en'%E2%82%AC%20rates.pdf; filename=\"rates.pdf\"",
         "http://h/f", "€ rates.pdf"},
        {"attachment; filename*=UTF-8''%FF.txt", "http://h/f", "ÿ.txt"}, // not UTF-8: Latin-1
        {"attachment; filename=\"../../etc/passwd\"", "http://h/f", "_.._etc_passwd"},
        {"attachment; filename=\"C:\\\\Windows\\\\x.dll\"", "http://h/f", "C__Windows_x.dll"},
        {"attachment; filename=\"/\"", "http://h/f", "_"},
        {"attachment; filename=\"..\"", "http://h/f", "f"},
        {"attachment; filename=\" .hidden. \"", "http://h/f", "hidden"},
        {"attachment; filename=\"a\\tb\"", "http://h/f", "atb"}, // a quoted-pair is the character
        {"attachment; filename=\"NUL.txt\"", "http://h/f", "_NUL.txt"},
        {"attachment; filename=\"new\nline\"", "http://h/f", "new_line"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.disposition.toStdString() + " " + c.url.toStdString());
        EXPECT_EQ(downloadFileName(c.disposition, QUrl(c.url)), c.name);
    }
}

} // namespace
