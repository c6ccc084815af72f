#include "textcmds/Case.h"

#include "textcmds/Framework.h"

namespace ed {

namespace {

// Writes f(character, position) for every character of `src` to `out` (room for src.size()
// units). A mapping that would change the number of UTF-16 units keeps the character as it is;
// a lone surrogate is copied unchanged.
template <class F> void mapCharacters(QStringView src, QChar* out, F&& f) {
    const qsizetype n = src.size();
    const QChar* in = src.data();
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = in[i];
        if (c.isHighSurrogate() && i + 1 < n && in[i + 1].isLowSurrogate()) {
            const char32_t cp = QChar::surrogateToUcs4(c, in[i + 1]);
            const char32_t m = f(cp, i);
            if (QChar::requiresSurrogates(m)) {
                out[i] = QChar(QChar::highSurrogate(m));
                out[i + 1] = QChar(QChar::lowSurrogate(m));
            } else {
                out[i] = c;
                out[i + 1] = in[i + 1];
            }
            ++i;
        } else if (c.isSurrogate()) {
            out[i] = c;
        } else {
            const char32_t m = f(char32_t(c.unicode()), i);
            out[i] = QChar::requiresSurrogates(m) ? c : QChar(char16_t(m));
        }
    }
}

char32_t lowerOf(char32_t c) {
    if (c < 0x80)
        return c >= u'A' && c <= u'Z' ? c + 32 : c;
    return QChar::toLower(c);
}

char32_t upperOf(char32_t c) {
    if (c < 0x80)
        return c >= u'a' && c <= u'z' ? c - 32 : c;
    return QChar::toUpper(c);
}

char32_t titleOf(char32_t c) {
    return c < 0x80 ? upperOf(c) : QChar::toTitleCase(c);
}

bool isWordBoundary(char32_t c) {
    if (c < 0x80)
        return c == u' ' || (c >= 0x09 && c <= 0x0D) || c == 0;
    return QChar::isSpace(c);
}

QString lowered(QStringView s) {
    return s.toString().toLower();
}
QString uppered(QStringView s) {
    return s.toString().toUpper();
}

} // namespace

void lowerSameLength(QStringView src, QString& dst) {
    dst.resize(src.size());
    mapCharacters(src, dst.data(), [](char32_t c, qsizetype) { return lowerOf(c); });
}

QString properCase(QStringView s) {
    QString out(s.size(), Qt::Uninitialized);
    bool wordStart = true;
    mapCharacters(s, out.data(), [&](char32_t c, qsizetype) {
        if (isWordBoundary(c)) {
            wordStart = true;
            return c;
        }
        const char32_t m = wordStart ? titleOf(c) : lowerOf(c);
        wordStart = false;
        return m;
    });
    return out;
}

QString crippledCase(QStringView s) {
    QString out(s.size(), Qt::Uninitialized);
    // Position i + 1 (1-based) is even when the 0-based index i is odd.
    mapCharacters(s, out.data(),
                  [](char32_t c, qsizetype i) { return i % 2 ? upperOf(lowerOf(c)) : lowerOf(c); });
    return out;
}

void mnuConvertToLowerCase_Click(CommandContext& ctx) {
    selectionOrWhole(ctx, !ctx.edit.selText().isEmpty(), lowered);
}

void mnuConvertToUpperCase_Click(CommandContext& ctx) {
    selectionOrWhole(ctx, !ctx.edit.selText().isEmpty(), uppered);
}

void mnuConvertToProperCase_Click(CommandContext& ctx) {
    // A selection of spaces only counts as none: the whole text is converted.
    const QString sel = ctx.edit.selText();
    selectionOrWhole(ctx, !trimSpaces(sel).isEmpty(), properCase);
}

void mnuCapitalizeEachWord_Click(CommandContext& ctx) {
    // Each space-separated piece (empty ones included) in proper case and followed by one space.
    // A space is a word boundary of properCase, so converting the stretch in one go and adding
    // the final space gives the same text as converting piece by piece.
    selectionOrWhole(ctx, !ctx.edit.selText().isEmpty(), [](QStringView s) {
        QString out = properCase(s);
        out.append(u' ');
        return out;
    });
}

void mnuConvertToCrippledText_Click(CommandContext& ctx) {
    // The stretch is trimmed of spaces before it goes back, and the caret is left where the new
    // text puts it.
    selectionOrWhole(
        ctx, ctx.edit.selLength() != 0, [](QStringView s) { return crippledCase(trimSpaces(s)); },
        false);
}

} // namespace ed
