#include "web/DialUp.h"

#include <QProcess>
#include <QStandardPaths>

namespace ed::web {

namespace {

constexpr int kNmcliTimeoutMs = 5000;

class NoDialUp : public DialUpConnections {
public:
    std::optional<QStringList> activeConnections() override { return QStringList(); }
    void hangUp(const QString&) override {}
};

} // namespace

QStringList dialUpFromNmcli(const QString& output) {
    static const QStringList dialUpTypes = {QStringLiteral("gsm"), QStringLiteral("cdma"),
                                            QStringLiteral("pppoe")};
    QStringList out;
    for (const QString& line : output.split(u'\n', Qt::SkipEmptyParts)) {
        const qsizetype colon = line.lastIndexOf(u':');
        if (colon <= 0)
            continue;
        if (dialUpTypes.contains(line.mid(colon + 1).trimmed()))
            out << line.left(colon);
    }
    return out;
}

NetworkManagerDialUp::NetworkManagerDialUp(QString nmcli) : nmcli_(std::move(nmcli)) {}

std::optional<QStringList> NetworkManagerDialUp::activeConnections() {
    QProcess p;
    p.start(nmcli_,
            {QStringLiteral("-t"), QStringLiteral("-f"), QStringLiteral("UUID,TYPE"),
             QStringLiteral("connection"), QStringLiteral("show"), QStringLiteral("--active")});
    if (!p.waitForFinished(kNmcliTimeoutMs) || p.exitStatus() != QProcess::NormalExit ||
        p.exitCode() != 0) {
        p.kill();
        p.waitForFinished(1000);
        return std::nullopt;
    }
    return dialUpFromNmcli(QString::fromLocal8Bit(p.readAllStandardOutput()));
}

void NetworkManagerDialUp::hangUp(const QString& connection) {
    QProcess p;
    p.start(nmcli_, {QStringLiteral("connection"), QStringLiteral("down"), QStringLiteral("uuid"),
                     connection});
    if (!p.waitForFinished(kNmcliTimeoutMs)) {
        p.kill();
        p.waitForFinished(1000);
    }
}

std::unique_ptr<DialUpConnections> systemDialUp() {
    const QString nmcli = QStandardPaths::findExecutable(QStringLiteral("nmcli"));
    if (nmcli.isEmpty())
        return std::make_unique<NoDialUp>();
    return std::make_unique<NetworkManagerDialUp>(nmcli);
}

} // namespace ed::web
