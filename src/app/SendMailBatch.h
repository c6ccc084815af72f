#pragma once
// The command line's form of Send Email:
//   Editor --apply SendAsEmail --field NAME=VALUE... [--report] [FILE]
// sends FILE (or standard input) as the body of one message per delivery address.

#include <QStringList>

#include <cstdio>

namespace ed {

namespace mail {
class MailTransport;
}

// Runs it. Exit status: 0 every address sent or skipped, 1 any address failed, 2 a usage error
// or a problem found before sending (nothing was sent).
int runSendMailBatch(const QStringList& args, mail::MailTransport& transport, FILE* err);

} // namespace ed
