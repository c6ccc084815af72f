// The downloader and Download Files against loopback HTTP and FTP servers: hostile names kept
// inside the folder, names taken, redirects, refused, stalled and endless responses, a full disk,
// four files at a time, Cancel, and the batch runner.
// Only complete files may be left behind.

#include "TestHttpServer.h"
#include "support/Fakes.h"

#include "web/Downloader.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTimer>

#include <csignal>
#include <sys/resource.h>

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::web;
using Served = test::TestHttpServer::Answer;

namespace {

QStringList filesIn(const QString& folder) {
    return QDir(folder).entryList(
        QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System, QDir::Name);
}

Served file(const QByteArray& body, const QByteArray& disposition = {}) {
    Served a;
    a.body = body;
    a.contentType = "application/octet-stream";
    if (!disposition.isEmpty())
        a.headers = {{"Content-Disposition", disposition}};
    return a;
}

Served redirect(const QByteArray& to) {
    Served a;
    a.status = 302;
    a.headers = {{"Location", to}};
    return a;
}

Served stalled(const QByteArray& body, qsizetype sent, qint64 declared = -1) {
    Served a = file(body);
    a.stallAfter = sent;
    a.declaredLength = declared;
    return a;
}

// Calls `poll` with the display's Cancel every 20 ms while the downloads run.
class PollingProgress : public Progress {
public:
    explicit PollingProgress(std::function<void(const std::function<void()>&)> poll) {
        QObject::connect(&timer_, &QTimer::timeout, [this, poll] { poll(cancel_); });
    }
    void begin(const QString&, std::function<void()> cancel) override {
        cancel_ = std::move(cancel);
        timer_.start(20);
    }
    void update(const QString& text, int, int) override { last = text; }
    void end() override { timer_.stop(); }
    QString last;

private:
    std::function<void()> cancel_;
    QTimer timer_;
};

class Downloads : public ::testing::Test {
protected:
    void SetUp() override {
        root = test::makeTempDir();
        folder = root + "/into";
        QDir().mkpath(folder);
    }
    QString address(const QString& path) const {
        return path.contains(u':') ? path : server.url(path);
    }
    std::vector<DownloadResult> run(const QStringList& paths, Progress* progress = nullptr,
                                    DownloadOptions options = {}) {
        QStringList urls;
        for (const QString& p : paths)
            urls << address(p);
        Downloader downloader(folder, options);
        return downloader.run(urls, progress);
    }

    test::TestHttpServer server;
    QString root, folder;
};

// A failed file, also one the disk has no room for, leaves nothing and stops no other.
TEST_F(Downloads, EachFileGetsItsNameAndAFailedOneLeavesNothing) {
    struct Case {
        QString path;
        std::optional<Served> served; // nothing: not served (404), or served elsewhere
        QString name;                 // the file it becomes; "" when it fails
        QString error;                // part of the reason it fails
    };
    server.serve("/files/target.bin", file("redirected"));
    test::writeFile(folder + "/taken.txt", "old");
    const Case cases[] = {
        {"/files/plain.txt", file("plain"), "plain.txt", ""},
        {"/up", file("up", "attachment; filename=\"../../escape.txt\""), "_.._escape.txt", ""},
        {"/files/taken.txt", file("new"), "taken (1).txt", ""},
        {"/go", redirect("/files/target.bin"), "target.bin", ""},
        {"/loop", redirect("/loop"), "", "redirect"},
        {"/missing", std::nullopt, "", "HTTP 404 Not Found"},
        {"/slow", stalled(QByteArray(100, 'x'), 5), "", "no data came for 0.3 s"},
        {"/huge", stalled("x", 0, 1'000'000'000'000'000), "", "the disk has room for"},
        {"/big", file(QByteArray(3 << 20, 'b')), "", "cannot write " + folder + "/big.part"},
        {"http://127.0.0.1:1/refused", std::nullopt, "", "refused"},
    };
    QStringList paths;
    QStringList expected{"taken.txt"};
    for (const Case& c : cases) {
        if (c.served)
            server.serve(c.path, *c.served);
        paths << c.path;
        if (!c.name.isEmpty())
            expected << c.name;
    }
    DownloadOptions options;
    options.stallTimeoutMs = 300;
    // The system refuses to write more than 1 MB to a file, as a full disk would.
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit old{};
    getrlimit(RLIMIT_FSIZE, &old);
    rlimit limited = old;
    limited.rlim_cur = 1 << 20;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limited), 0);
    const std::vector<DownloadResult> results = run(paths, nullptr, options);
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, oldHandler);
    ASSERT_EQ(results.size(), std::size(cases));
    for (size_t i = 0; i < results.size(); ++i) {
        const Case& c = cases[i];
        SCOPED_TRACE(c.path.toStdString());
        EXPECT_EQ(results[i].url, address(c.path));
        EXPECT_EQ(results[i].fileName, c.name);
        if (c.error.isEmpty()) {
            EXPECT_EQ(results[i].error, "");
            const QByteArray body = c.path == u"/go" ? "redirected" : c.served->body;
            EXPECT_EQ(test::readFile(folder + "/" + c.name), body);
            EXPECT_EQ(results[i].bytes, body.size());
        } else {
            EXPECT_TRUE(results[i].error.contains(c.error, Qt::CaseInsensitive))
                << results[i].error.toStdString();
        }
    }
    expected.sort();
    EXPECT_EQ(filesIn(folder), expected);
    EXPECT_EQ(filesIn(root), QStringList{"into"}) << "a name reached outside the folder";
}

TEST_F(Downloads, FtpAddressesAreFetchedToo) {
    const QString served = test::makeTempDir();
    test::writeFile(served + "/notes.txt", "ftp notes");
    QProcess ftp;
    ftp.start("/usr/bin/python3", {FTP_TEST_SERVER, served});
    const int port = ftp.waitForReadyRead(10000) ? ftp.readLine().trimmed().toInt() : 0;
    if (port == 0)
        GTEST_SKIP() << "no FTP server: " << ftp.readAllStandardError().toStdString();
    const QString base = QStringLiteral("ftp://127.0.0.1:%1/").arg(port);
    const std::vector<DownloadResult> results = run({base + "notes.txt", base + "missing.txt"});
    ftp.kill();
    ftp.waitForFinished();
    ASSERT_EQ(results.size(), 2u);
    EXPECT_TRUE(results[0].ok()) << results[0].error.toStdString();
    EXPECT_EQ(test::readFile(folder + "/notes.txt"), "ftp notes");
    EXPECT_FALSE(results[1].ok());
    EXPECT_EQ(filesIn(folder), QStringList{"notes.txt"});
}

TEST_F(Downloads, FourAtATimeAndCancelKeepsOnlyCompleteFiles) {
    server.serve("/done.txt", file("done"));
    QStringList paths{"/done.txt"};
    for (int i = 1; i <= 5; ++i) {
        paths << QStringLiteral("/hang%1").arg(i);
        server.serve(paths.last(), stalled(QByteArray(1000, 'h'), 10));
    }
    auto parts = [&] { return filesIn(folder).filter(".part").size(); };
    int mostParts = 0;
    QElapsedTimer steady;
    PollingProgress progress([&](const std::function<void()>& cancel) {
        mostParts = std::max(mostParts, int(parts()));
        // done.txt, then four hanging files; the fifth waits for a free place.
        if (server.requests() < 5 || parts() < 4) {
            steady.invalidate();
            return;
        }
        if (!steady.isValid())
            steady.start();
        else if (steady.elapsed() > 300)
            cancel();
    });
    QElapsedTimer clock;
    clock.start();
    const std::vector<DownloadResult> results = run(paths, &progress);
    EXPECT_LT(clock.elapsed(), 15000);
    EXPECT_EQ(mostParts, 4);
    EXPECT_EQ(server.requestsFor("/hang5"), 0);
    ASSERT_EQ(results.size(), 6u);
    EXPECT_TRUE(results[0].ok());
    for (size_t i = 1; i < results.size(); ++i)
        EXPECT_EQ(results[i].error, "cancelled");
    EXPECT_EQ(filesIn(folder), QStringList{"done.txt"});
    EXPECT_TRUE(progress.last.startsWith("6 of 6 files")) << progress.last.toStdString();
}

TEST(DownloadFilesCommand, ListFolderAndSummary) {
    test::TestHttpServer server;
    server.serve("/a.txt", file("A"));
    const QString dir = test::makeTempDir();
    const QString a = server.url("/a.txt"), gone = server.url("/gone");
    const struct {
        QString text;
        int selStart, selLength;
        QString remembered;            // "Download Dir" before
        std::optional<QString> folder; // the folder answered; nothing: Cancel
        QString initial;               // where the folder dialog starts; "": not shown
        QString message;               // the box at the end
        bool failed;
    } cases[] = {
        // Addresses of the whole text, trimmed; other lines skipped; remembered folder first.
        {"list\r\n  " + a + " \r\nFILE:///etc/passwd\r\n" + gone + "\r\n", 0, 0, "/remembered", dir,
         "/remembered", "Downloaded 1 of 2 files to " + dir + ".\n" + gone + ": HTTP 404 Not Found",
         true},
        // The selection alone; the document's folder when none is remembered.
        {gone + "\r\n" + a, int(gone.size()) + 2, int(a.size()), "", dir, "/doc/",
         "Downloaded 1 of 1 files to " + dir + ".", false},
        {a, 0, 0, "", std::nullopt, "/doc/", "", false},
        {"no addresses\r\nhere", 0, 0, "", dir, "",
         "There is nothing to download: no line of the document begins with http://, "
         "https:// or ftp://.",
         true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text.toStdString());
        test::Harness h(c.text);
        test::FakeFileDialogs dialogs;
        h.ctx.fileDialogs = &dialogs;
        h.form.LastDir = "/doc/";
        if (!c.remembered.isEmpty())
            h.setSetting("frmEdit", "Download Dir", c.remembered);
        if (c.folder)
            dialogs.folderAnswers.push_back(*c.folder);
        h.select(c.selStart, c.selLength);
        h.run("mnuDownloadFiles");
        EXPECT_EQ(h.edit.text(), c.text);
        EXPECT_EQ(h.ctx.commandFailed, c.failed);
        EXPECT_EQ(dialogs.folderRequests.size() == 1 ? dialogs.folderRequests[0].second : "",
                  c.initial);
        ASSERT_EQ(h.dialogs.messages.size(), c.message.isEmpty() ? 0u : 1u);
        if (c.message.isEmpty())
            continue;
        EXPECT_EQ(h.dialogs.messages[0].text, c.message);
        if (c.message.startsWith("Downloaded")) {
            EXPECT_EQ(h.setting("frmEdit", "Download Dir"), *c.folder);
        }
        EXPECT_TRUE(h.log.errors.empty());
    }
    EXPECT_EQ(filesIn(dir), (QStringList{"a (1).txt", "a.txt"}));
}

TEST(DownloadFilesBatch, TheFolderIsTheNextAnswerAndAFailureEndsWithStatusOne) {
    ASSERT_FALSE(qEnvironmentVariable("EDITOR_BIN").isEmpty());
    test::TestHttpServer server;
    server.serve("/cd", file("B", "attachment; filename=\"../b.csv\""));
    const QString dir = test::makeTempDir();
    const QByteArray document =
        (server.url("/cd") + "\r\n" + server.url("/gone") + "\r\n").toUtf8();
    const std::pair<QString, QString> cases[] = {
        // the folder answered, and a line of the report
        {dir, "message: Downloaded 1 of 2 files to " + dir + ".\\n" + server.url("/gone") +
                  ": HTTP 404 Not Found | Download Files"},
        {dir + "/none", "The folder"},
    };
    for (const auto& [folder, reported] : cases) {
        SCOPED_TRACE(folder.toStdString());
        const test::EditorRun run = test::runEditorBatch(
            {"--apply", "DownloadFiles", "--answer", folder, "--report"}, document);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_EQ(run.out, document);
        EXPECT_TRUE(run.report.join('\n').contains(reported)) << run.report.join('\n');
        EXPECT_EQ(filesIn(dir), QStringList{"_b.csv"});
    }
}

} // namespace
