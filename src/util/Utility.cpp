#include "util/Utility.h"

#include "app/Trap.h"
#include "util/ByteWriter.h"
#include "util/LineHashSet.h"
#include "util/ModelText.h"
#include "util/TextCodec.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

namespace ed {

namespace {
constexpr const char* kModule = "cUtility";

QString lastComponent(const QString& path) {
    const qsizetype slash = path.lastIndexOf(u'/');
    return slash < 0 ? path : path.mid(slash + 1);
}
} // namespace

bool isHiddenName(const QString& path) {
    return lastComponent(path).startsWith(u'.');
}

QString Utility::InStrRevGetBeginning(QString text, QString ch, bool drop) {
    return trappedValue(log_, kModule, QStringLiteral("InStrRevGetBeginning"), QString(), [&] {
        if (!text.contains(ch, Qt::CaseSensitive))
            return QString();
        for (qsizetype i = text.size(); i >= 1; --i) {
            if (QStringView(text).mid(i - 1, 1) == ch)
                return text.left(drop ? i - 1 : i);
        }
        return QString();
    });
}

QString Utility::InStrRevGetEnding(QString text, QString ch) {
    return trappedValue(log_, kModule, QStringLiteral("InStrRevGetEnding"), QString(), [&] {
        if (!text.contains(ch, Qt::CaseSensitive))
            return text;
        for (qsizetype i = text.size(); i >= 1; --i) {
            if (QStringView(text).mid(i - 1, 1) == ch)
                return text.right(text.size() - i);
        }
        return QString();
    });
}

qint32 Utility::CountChar(QString text, QString find, bool caseSensitive) {
    qint64 count = 0;
    trapped(log_, kModule, QStringLiteral("CountChar"), [&] {
        if (text.isEmpty() || find.isEmpty())
            return;
        const Qt::CaseSensitivity cs = caseSensitive ? Qt::CaseSensitive : Qt::CaseInsensitive;
        qsizetype pos = 0;
        while ((pos = text.indexOf(find, pos, cs)) >= 0) {
            if (count == std::numeric_limits<qint32>::max())
                throw RuntimeError("Overflow");
            ++count;
            ++pos;
        }
    });
    return qint32(count);
}

bool Utility::TestForText(QString fileName) {
    return trappedValue(log_, kModule, QStringLiteral("Function TestForText"), false, [&] {
        if (!fileName.isEmpty()) {
            // The look-up finds ordinary files only: no folders, no hidden files. A name with
            // wildcards passes when it matches a file, and then fails to open below.
            bool found = false;
            if (fileName.contains(u'*') || fileName.contains(u'?')) {
                const QFileInfo fi(fileName);
                const QStringList hits =
                    QDir(fi.path()).entryList({fi.fileName()}, QDir::Files | QDir::System);
                found = !hits.isEmpty();
            } else {
                const QFileInfo fi(fileName);
                found = fi.exists() && !fi.isDir() && !isHiddenName(fileName);
            }
            if (!found)
                return false;
        }
        QFile f(fileName);
        if (!f.open(QIODevice::ReadOnly))
            throw RuntimeError(QStringLiteral("File not found or unreadable: %1 (%2)")
                                   .arg(fileName, f.errorString())
                                   .toStdString());
        f.readAll();
        return true;
    });
}

QString Utility::LoadTextFile(QString fileName) {
    return trappedValue(log_, kModule, QStringLiteral("Function LoadTextFile"), QString(), [&] {
        if (!TestForText(fileName))
            return QString();
        QFile f(fileName);
        if (!f.open(QIODevice::ReadOnly))
            throw RuntimeError(
                QStringLiteral("Cannot read %1: %2").arg(fileName, f.errorString()).toStdString());
        return decodeText(f.readAll(), nullptr);
    });
}

QString Utility::GetFreeFile(QString path) {
    return trappedValue(log_, kModule, QStringLiteral("Function GetFreeFile"), QString(), [&] {
        const FileSpecParts parts = GetFileSpecParts(path);
        if (parts.baseName.isEmpty() && parts.extension.isEmpty())
            throw RuntimeError("Bad file name");
        // Split the base name into a stem and the number it ends with.
        static const QRegularExpression trailingDigits(QStringLiteral("^(.*?)(\\d*)$"));
        const auto m = trailingDigits.match(parts.baseName);
        const QString stem = m.captured(1);
        bool ok = true;
        qint64 n = m.captured(2).isEmpty() ? 0 : m.captured(2).toLongLong(&ok);
        if (!ok)
            throw RuntimeError("Overflow");
        const QString ext = parts.extension.isEmpty() ? QString() : u'.' + parts.extension;
        QString candidate = path;
        while (QFileInfo::exists(candidate)) {
            if (++n > std::numeric_limits<qint32>::max())
                throw RuntimeError("Overflow");
            candidate = parts.folder + stem + QString::number(n) + ext;
        }
        return candidate;
    });
}

FileSpecParts Utility::GetFileSpecParts(QString path) {
    return trappedValue(log_, kModule, QStringLiteral("Sub GetFileSpecParts"), FileSpecParts(),
                        [&] {
                            FileSpecParts p;
                            p.folder = InStrRevGetBeginning(path, QStringLiteral("/"));
                            const QString file = path.mid(p.folder.size());
                            const qsizetype dot = file.lastIndexOf(u'.');
                            if (dot <= 0) {
                                p.baseName = file;
                            } else {
                                p.baseName = file.left(dot);
                                p.extension = file.mid(dot + 1);
                            }
                            return p;
                        });
}

std::optional<QByteArray> Utility::RemoveRepeatsFromLines(QByteArrayView text) {
    return trappedValue(
        log_, kModule, QStringLiteral("RemoveRepeatsFromArray"), std::optional<QByteArray>(), [&] {
            LineHashSet seen(text, countModelLines(text));
            ByteWriter out(text.size() + 2);
            // Kept lines that follow each other in the text are copied as one run.
            qsizetype runStart = -1, runEnd = -1;
            auto flush = [&] {
                if (runStart >= 0) {
                    out.append(text.sliced(runStart, runEnd - runStart));
                    out.append("\r\n");
                }
            };
            // The hashes of the next few lines are computed ahead and their slots prefetched,
            // so that a big table costs hardly more than a small one.
            struct Line {
                qsizetype start, size;
                uint64_t hash;
            };
            constexpr size_t kAhead = 16;
            Line ahead[kAhead];
            size_t first = 0, count = 0;
            auto handle = [&](const Line& l) {
                // Empty lines never pass: the seen list starts out holding the empty string.
                if (l.size == 0 || !seen.insert(l.start, l.size, l.hash))
                    return;
                if (runStart >= 0 && l.start == runEnd + 2) {
                    runEnd = l.start + l.size;
                    return;
                }
                flush();
                runStart = l.start;
                runEnd = l.start + l.size;
            };
            auto takeFirst = [&] {
                seen.prefetchText(ahead[(first + kAhead / 2) % kAhead].hash);
                handle(ahead[first]);
                first = (first + 1) % kAhead;
                --count;
            };
            forEachModelLine(text, [&](QByteArrayView line) {
                if (count == kAhead)
                    takeFirst();
                const uint64_t hash = LineHashSet::hashOf(line);
                seen.prefetch(hash);
                ahead[(first + count++) % kAhead] = {line.data() - text.data(), line.size(), hash};
            });
            for (; count > 0; --count) {
                handle(ahead[first]);
                first = (first + 1) % kAhead;
            }
            flush();
            QByteArray result = std::move(out).finish();
            if (result.isEmpty())
                result = "\r\n"; // nothing kept: one empty line
            return std::optional<QByteArray>(std::move(result));
        });
}

} // namespace ed
