// Names of downloaded files: what the server proposes, what the address gives, what survives
// being made safe, and how a taken name becomes unique.

#include "support/Fakes.h"

#include "web/DownloadCommand.h"
#include "web/DownloadNames.h"

#include <QSet>

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

TEST(DownloadNames, ATakenNameGetsTheFirstFreeNumber) {
    struct Case {
        QString name;
        QStringList taken;
        QString unique;
    };
    const Case cases[] = {
        {"a.txt", {}, "a.txt"},
        {"a.txt", {"a.txt"}, "a (1).txt"},
        {"a.txt", {"a.txt", "a (1).txt", "a (2).txt"}, "a (3).txt"},
        {"README", {"README"}, "README (1)"},
        {"a.tar.gz", {"a.tar.gz"}, "a.tar (1).gz"},
    };
    for (const Case& c : cases) {
        const QSet<QString> taken(c.taken.begin(), c.taken.end());
        EXPECT_EQ(uniqueFileName(c.name, [&](const QString& n) { return taken.contains(n); }),
                  c.unique);
    }
}

TEST(DownloadNames, OnlyLinesWithADownloadProtocolAreAddresses) {
    int skipped = -1;
    const QStringList urls = downloadAddresses(
        "  http://a/1 \r\nHTTPS://b/2\nftp://c/3\r\n\r\nfile:///etc/passwd\r\nwww.d.com\r\n   \r\n",
        skipped);
    EXPECT_EQ(urls, (QStringList{"http://a/1", "HTTPS://b/2", "ftp://c/3"}));
    EXPECT_EQ(skipped, 2);
}

} // namespace
