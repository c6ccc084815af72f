#pragma once
// cUtility: the shared helper class. Every procedure traps its own errors and reports them to the
// logger under module "cUtility".

#include "app/Ports.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace ed {

struct FileSpecParts {
    QString folder;    // up to and including the last separator ("" when none)
    QString baseName;  // file name without its extension
    QString extension; // text after the last "." of the file name ("" when none)
};

class Utility {
public:
    explicit Utility(Logger& log) : log_(log) {}

    // Text up to the last occurrence of `ch` (kept unless `drop`); "" when `ch` is absent.
    QString InStrRevGetBeginning(QString text, QString ch, bool drop = false);
    // Text after the last occurrence of `ch`; the whole text when `ch` is absent.
    QString InStrRevGetEnding(QString text, QString ch);
    // Occurrences of `find` in `text`, overlapping ones included.
    qint32 CountChar(QString text, QString find, bool caseSensitive);

    bool TestForText(QString fileName);
    QString LoadTextFile(QString fileName);

    // A name that does not exist yet, made from `path` by counting up the number before its
    // extension ("Text-0.Txt", "Text-1.Txt", ...).
    QString GetFreeFile(QString path);
    FileSpecParts GetFileSpecParts(QString path);

    // The lines of a text (model bytes, split at CR LF), each distinct line once, first
    // occurrences in order, empty lines dropped: the lines kept, each followed by CR LF (one
    // CR LF when nothing is kept). Nothing when it failed (and logged why).
    std::optional<QByteArray> RemoveRepeatsFromLines(QByteArrayView text);

private:
    Logger& log_;
};

// True when `name` (the last path component) counts as a hidden file on this platform.
bool isHiddenName(const QString& path);

} // namespace ed
