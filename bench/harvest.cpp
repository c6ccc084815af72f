// Harvesting a large page's text: e-mail addresses and phone numbers found in text of the kinds
// a page holds (a directory of contacts, one long line of figures, prose without either).
//   bench_harvest [COUNT]   (default 10000 contacts)

#include "web/EmailFinder.h"
#include "web/PhoneFinder.h"

#include <QElapsedTimer>
#include <QString>

#include <cstdio>
#include <cstdlib>

using namespace ed::web;

namespace {

void time(const char* what, qsizetype chars, const std::function<qsizetype()>& run) {
    QElapsedTimer clock;
    clock.start();
    const qsizetype found = run();
    std::printf("%-34s %9lld chars %7lld found %8.3f s\n", what, static_cast<long long>(chars),
                static_cast<long long>(found), double(clock.nsecsElapsed()) / 1e9);
}

} // namespace

int main(int argc, char** argv) {
    const int count = argc > 1 ? std::atoi(argv[1]) : 10000;
    QString contacts;
    for (int i = 0; i < count; ++i)
        contacts += QStringLiteral("Jane Roe %1, jane.roe%1@example.com, phone (212) 555-%2, "
                                   "fax 415 555 %2\r\n")
                        .arg(i)
                        .arg(1000 + i % 9000);
    QString figures;
    for (int i = 0; i < count * 10; ++i)
        figures += QString::number(i * 7919 % 100000) + u' ';
    QString oneLine = contacts; // the same contacts in one paragraph
    oneLine.replace(QStringLiteral("\r\n"), QStringLiteral("; "));
    QString prose;
    while (prose.size() < contacts.size())
        prose += QStringLiteral("Nothing to find here at all, just words and @ signs @ and dots. ");

    for (const auto& [what, text] :
         {std::pair{"contacts", &contacts}, std::pair{"figures", &figures},
          std::pair{"contacts in one line", &oneLine}, std::pair{"prose", &prose}}) {
        const QString name = QString::fromLatin1(what);
        time(qPrintable(name + QStringLiteral(": e-mail")), text->size(),
             [&] { return emailsInText(*text).size(); });
        time(qPrintable(name + QStringLiteral(": phone numbers")), text->size(),
             [&] { return phoneNumberLines({*text}, false).size(); });
    }
    return 0;
}
