#include "app/LaunchTarget.h"

#include <QFileInfo>

namespace ed {

const std::array<QString, 5>& protocolPrefixes() {
    static const std::array<QString, 5> table = {
        QStringLiteral("http://"), QStringLiteral("https://"), QStringLiteral("ftp://"),
        QStringLiteral("file:///"), QStringLiteral("mailto:")};
    return table;
}

bool isProtocolAddress(const QString& text) {
    for (const QString& prefix : protocolPrefixes()) {
        if (text.startsWith(prefix, Qt::CaseInsensitive))
            return true;
    }
    return false;
}

QUrl desktopAddress(const QString& target) {
    if (target.isEmpty())
        return QUrl();
    if (isProtocolAddress(target)) {
        const QUrl url(target, QUrl::TolerantMode);
        return url.isValid() ? url : QUrl();
    }
    const QFileInfo info(target);
    if (!info.exists())
        return QUrl();
    return QUrl::fromLocalFile(info.absoluteFilePath());
}

} // namespace ed
