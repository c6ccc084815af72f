#include "util/Utility.h"

#include "app/Trap.h"
#include "util/HugePages.h"
#include "util/LineHashSet.h"
#include "util/TextCodec.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>

namespace ed {

namespace {
constexpr const char* kModule = "cUtility";

QString lastComponent(const QString& path) {
    const qsizetype slash = path.lastIndexOf(u'/');
    return slash < 0 ? path : path.mid(slash + 1);
}
} // namespace

bool isHiddenName(const QString& path) { return lastComponent(path).startsWith(u'.'); }

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

void Utility::WriteTextToFile(QString fileName, QString text, bool append) {
    trapped(log_, kModule, QStringLiteral("Sub WriteTextToFile"), [&] {
        if (fileName.isEmpty())
            throw RuntimeError("Bad file name or number");
        TextFormat format = defaultTextFormat();
        if (append) {
            QFile existing(fileName);
            if (existing.exists() && existing.open(QIODevice::ReadOnly)) {
                decodeText(existing.readAll(), &format);
                if (existing.size() == 0)
                    format = defaultTextFormat();
            }
        }
        const QByteArray bytes = encodeText(text + QStringLiteral("\r\n"), format);
        if (append) {
            QFile f(fileName);
            if (!f.open(QIODevice::WriteOnly | QIODevice::Append))
                throw RuntimeError(
                    QStringLiteral("Cannot open %1: %2").arg(fileName, f.errorString()).toStdString());
            if (f.write(bytes) != bytes.size())
                throw RuntimeError(
                    QStringLiteral("Cannot write %1: %2").arg(fileName, f.errorString()).toStdString());
            return;
        }
        QSaveFile f(fileName);
        if (!f.open(QIODevice::WriteOnly))
            throw RuntimeError(
                QStringLiteral("Cannot open %1: %2").arg(fileName, f.errorString()).toStdString());
        f.write(bytes);
        if (!f.commit())
            throw RuntimeError(
                QStringLiteral("Cannot write %1: %2").arg(fileName, f.errorString()).toStdString());
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

std::vector<QStringView> Utility::RemoveRepeatsFromViews(const std::vector<QStringView>& lines) {
    return trappedValue(
        log_, kModule, QStringLiteral("RemoveRepeatsFromArray"), std::vector<QStringView>(), [&] {
            std::vector<QStringView> out;
            out.reserve(lines.size());
            adviseHugePages(out.data(), out.capacity() * sizeof(QStringView));
            LineHashSet seen(lines.size());
            // The hashes of the next few lines are computed ahead and their slots prefetched,
            // so that a big table costs hardly more than a small one.
            constexpr size_t kAhead = 16;
            uint64_t ahead[kAhead];
            const size_t n = lines.size();
            auto look = [&](size_t i) {
                ahead[i % kAhead] = LineHashSet::hashOf(lines[i]);
                seen.prefetch(ahead[i % kAhead]);
            };
            for (size_t i = 0; i < n && i < kAhead; ++i)
                look(i);
            for (size_t i = 0; i < n; ++i) {
                const uint64_t hash = ahead[i % kAhead];
                if (i + kAhead < n)
                    look(i + kAhead);
                if (i + kAhead / 2 < n)
                    seen.prefetchText(ahead[(i + kAhead / 2) % kAhead]);
                // The seen list starts out holding the empty string: empty lines never pass.
                if (!lines[i].isEmpty() && seen.insert(lines[i], hash))
                    out.push_back(lines[i]);
            }
            if (out.empty())
                out.push_back(QStringView(u""));
            return out;
        });
}

QStringList Utility::RemoveRepeatsFromArray(const QStringList& lines) {
    std::vector<QStringView> views;
    views.reserve(lines.size());
    for (const QString& l : lines)
        views.emplace_back(l);
    const std::vector<QStringView> kept = RemoveRepeatsFromViews(views);
    QStringList out;
    out.reserve(qsizetype(kept.size()));
    for (QStringView v : kept)
        out.push_back(v.toString());
    return out;
}

} // namespace ed
