#pragma once
// Names of downloaded files: taken from the server's Content-Disposition, else from the address,
// made safe for a file name (so no name can reach outside the chosen folder), and made unique.

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <functional>

namespace ed::web {

// `name` with every character a file name cannot hold on any common system (path separators,
// `:*?"<>|`, control characters) turned into "_", surrounding blanks and dots removed,
// a device name (CON, NUL, COM1...) prefixed with "_", and at most 200 characters (the extension
// kept). `fallback` when nothing is left: "." and ".." never come out.
QString safeFileName(QString name, const QString& fallback);

// The file name a Content-Disposition header proposes ("filename*=" in its charset before
// "filename="), as sent: not made safe yet. "" when it names none.
QString contentDispositionName(const QByteArray& header);

// The name of a download: from `contentDisposition`, else the last path segment of `url`
// (percent-decoded), else "download"; made safe.
QString downloadFileName(const QByteArray& contentDisposition, const QUrl& url);

// `name` when `taken(name)` is false, else "stem (1).ext", "stem (2).ext"... the first not taken.
QString uniqueFileName(const QString& name, const std::function<bool(const QString&)>& taken);

} // namespace ed::web
