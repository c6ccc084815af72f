#include "editor/MenuKeys.h"

#include "editor/MenuTable.h"

#include <QSet>

namespace ed {

namespace {

// The keys desktop programs give these commands, where the table names none.
const struct {
    const char* item;
    const char* key;
} kStandardKeys[] = {
    {"mnuNew", "Ctrl+N"},       {"mnuOpen", "Ctrl+O"}, {"mnuSaveAs", "Ctrl+Shift+S"},
    {"mnuExit", "Ctrl+Q"},      {"mnuCopy", "Ctrl+C"}, {"mnuPaste", "Ctrl+V"},
    {"mnuSelectAll", "Ctrl+A"},
};

// The first index of `caption` whose letter or digit is not taken; with `wordStart`, only where a
// word begins. -1 when there is none.
qsizetype freeLetter(const QString& caption, const QSet<QChar>& taken, bool wordStart) {
    for (qsizetype i = 0; i < caption.size(); ++i) {
        const QChar c = caption[i];
        if (wordStart && i > 0 && caption[i - 1].isLetterOrNumber())
            continue;
        if (c.isLetterOrNumber() && !taken.contains(c.toLower()))
            return i;
    }
    return -1;
}

qsizetype freeCount(const QString& caption, const QSet<QChar>& taken) {
    QSet<QChar> free;
    for (QChar c : caption)
        if (c.isLetterOrNumber() && !taken.contains(c.toLower()))
            free << c.toLower();
    return free.size();
}

} // namespace

QStringList withMnemonics(const QStringList& captions) {
    // First the start of a word, in menu order; then, for the items left, any letter, the item
    // with the fewest letters to choose from first, so that every item gets one where possible.
    QSet<QChar> taken;
    QList<qsizetype> at(captions.size(), -1);
    auto take = [&](qsizetype item, qsizetype index) {
        at[item] = index;
        taken << captions[item][index].toLower();
    };
    for (qsizetype n = 0; n < captions.size(); ++n) {
        const qsizetype i = freeLetter(captions[n], taken, true);
        if (i >= 0)
            take(n, i);
    }
    for (;;) {
        qsizetype best = -1, fewest = 0;
        for (qsizetype n = 0; n < captions.size(); ++n) {
            const qsizetype count = at[n] < 0 ? freeCount(captions[n], taken) : 0;
            if (count > 0 && (best < 0 || count < fewest)) {
                best = n;
                fewest = count;
            }
        }
        if (best < 0)
            break;
        take(best, freeLetter(captions[best], taken, false));
    }
    QStringList out;
    for (qsizetype n = 0; n < captions.size(); ++n) {
        QString text;
        for (qsizetype i = 0; i < captions[n].size(); ++i) {
            if (i == at[n])
                text += u'&';
            text += captions[n][i];
            if (captions[n][i] == u'&')
                text += u'&';
        }
        out << text;
    }
    return out;
}

QHash<QString, QString> menuTexts() {
    // The items of each menu (the bar's own menus under ""), in table order.
    QHash<QString, QStringList> names, captions;
    QStringList parents;
    for (const MenuItemDecl& d : menuItems()) {
        if (!isCommand(d) && !(d.flags & kMenu))
            continue; // separators and the recently used files
        const QString parent = d.parent ? QString::fromLatin1(d.parent) : QString();
        if (!names.contains(parent))
            parents << parent;
        names[parent] << QString::fromLatin1(d.name);
        captions[parent] << QString::fromUtf8(d.caption);
    }
    QHash<QString, QString> texts;
    for (const QString& parent : parents) {
        const QStringList shown = withMnemonics(captions[parent]);
        for (qsizetype i = 0; i < shown.size(); ++i)
            texts.insert(names[parent][i], shown[i]);
    }
    return texts;
}

QList<QKeySequence> standardKeys(const QString& item) {
    static const QSet<QKeySequence> declared = [] {
        QSet<QKeySequence> keys;
        for (const MenuItemDecl& d : menuItems())
            if (*d.shortcut)
                keys << QKeySequence(QString::fromLatin1(d.shortcut));
        return keys;
    }();
    QList<QKeySequence> keys;
    for (const auto& k : kStandardKeys) {
        const QKeySequence key(QString::fromLatin1(k.key));
        if (item == QLatin1String(k.item) && !declared.contains(key))
            keys << key;
    }
    return keys;
}

} // namespace ed
