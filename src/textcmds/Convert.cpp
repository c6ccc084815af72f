#include "textcmds/Convert.h"

#include "textcmds/Framework.h"
#include "util/Utf8.h"

#include <array>

namespace ed {

namespace {

// What a byte of hex text is: a digit's value, a separator, or neither.
constexpr signed char kSeparator = -2;
constexpr signed char kOther = -1;
constexpr std::array<signed char, 256> kHexValue = [] {
    std::array<signed char, 256> t{};
    for (auto& v : t)
        v = kOther;
    for (int c = '0'; c <= '9'; ++c)
        t[size_t(c)] = static_cast<signed char>(c - '0');
    for (int c = 'a'; c <= 'f'; ++c) {
        t[size_t(c)] = static_cast<signed char>(c - 'a' + 10);
        t[size_t(c - 'a' + 'A')] = static_cast<signed char>(c - 'a' + 10);
    }
    for (char c : {' ', '\t', '\r', '\n'})
        t[size_t(static_cast<unsigned char>(c))] = kSeparator;
    return t;
}();

// The selection when there is one, else the whole text, converted by `convert`; a converted
// selection stays selected. Nothing changes when `convert` gives nothing.
template <class F> bool convertSelectionOrWhole(CommandContext& ctx, F&& convert) {
    const QByteArray text = ctx.edit.utf8();
    if (ctx.edit.selLength() <= 0) {
        std::optional<QByteArray> out = convert(QByteArrayView(text));
        if (!out)
            return false;
        ctx.edit.setUtf8(*out);
        return true;
    }
    const int start = ctx.edit.selStart();
    const ByteSpan sel = selectionBytes(ctx.edit, text);
    const std::optional<QByteArray> out =
        convert(QByteArrayView(text).sliced(sel.start, sel.length));
    if (!out)
        return false;
    QByteArray result;
    result.reserve(text.size() - sel.length + out->size());
    result.append(QByteArrayView(text).first(sel.start))
        .append(*out)
        .append(QByteArrayView(text).sliced(sel.start + sel.length));
    ctx.edit.setUtf8(result);
    ctx.edit.setSelStart(start);
    ctx.edit.setSelLength(int(utf16Length(*out)));
    return true;
}

// One line of the Char To ASCII box: `A = 65 (U+0041)`.
QString describeCodePoint(char32_t cp) {
    const QString shown = cp < 0x21 || cp == 0x7F ? QStringLiteral("<%1>").arg(quint32(cp))
                                                  : QString::fromUcs4(&cp, 1);
    return QStringLiteral("%1 = %2 (U+%3)")
        .arg(shown)
        .arg(quint32(cp))
        .arg(QString::number(quint32(cp), 16).toUpper().rightJustified(4, u'0'));
}

} // namespace

QByteArray bytesToHex(QByteArrayView bytes) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    const qsizetype n = bytes.size();
    if (n == 0)
        return QByteArray();
    QByteArray out(3 * n - 1, Qt::Uninitialized);
    char* d = out.data();
    const auto* s = reinterpret_cast<const unsigned char*>(bytes.data());
    for (qsizetype i = 0; i < n; ++i) {
        d[0] = kDigits[s[i] >> 4];
        d[1] = kDigits[s[i] & 0xF];
        d[2] = ' ';
        d += 3;
    }
    return out; // the space after the last byte was never part of `out`
}

std::optional<QByteArray> hexToBytes(QByteArrayView hex) {
    QByteArray out(hex.size() / 2, Qt::Uninitialized);
    char* d = out.data();
    const auto* s = reinterpret_cast<const unsigned char*>(hex.data());
    const qsizetype n = hex.size();
    int high = -1;       // the first digit of a pair, while its second is awaited
    bool prefix = false; // "0x" was read and its pair has not begun
    for (qsizetype i = 0; i < n; ++i) {
        const signed char v = kHexValue[s[i]];
        if (v == kSeparator)
            continue;
        if (v == kOther)
            return std::nullopt;
        if (high < 0) {
            if (s[i] == '0' && !prefix && i + 1 < n && (s[i + 1] | 0x20) == 'x') {
                prefix = true;
                ++i;
                continue;
            }
            high = v;
        } else {
            *d++ = char(high << 4 | v);
            high = -1;
            prefix = false;
        }
    }
    if (high >= 0 || prefix)
        return std::nullopt;
    out.truncate(d - out.constData());
    if (!isValidUtf8(out.constData(), out.size()))
        return std::nullopt;
    return out;
}

void mnuAsciiToHex_Click(CommandContext& ctx) {
    convertSelectionOrWhole(
        ctx, [](QByteArrayView text) { return std::optional<QByteArray>(bytesToHex(text)); });
}

void mnuHexToAscii_Click(CommandContext& ctx) {
    if (!convertSelectionOrWhole(ctx, hexToBytes))
        ctx.dialogs.messageBox(QStringLiteral("The text is not hexadecimal UTF-8 bytes."),
                               QStringLiteral("Hex To Ascii"), Buttons::Ok, Icon::Exclamation);
}

void mnuShowASCII_Click(CommandContext& ctx) {
    constexpr int kMaxShown = 32;
    const QByteArray text = ctx.edit.utf8();
    QByteArrayView chars;
    if (ctx.edit.selLength() > 0) {
        const ByteSpan sel = selectionBytes(ctx.edit, text);
        chars = QByteArrayView(text).sliced(sel.start, sel.length);
    } else {
        chars = QByteArrayView(text).sliced(byteOffsetOf(text, ctx.edit.selStart()));
        if (chars.isEmpty()) {
            ctx.dialogs.messageBox(QStringLiteral("No character at the caret."),
                                   QStringLiteral("Char To ASCII"), Buttons::Ok, Icon::Information);
            return;
        }
        int len = 1;
        decodeUtf8At(reinterpret_cast<const unsigned char*>(chars.data()), len);
        chars = chars.first(qMin(qsizetype(len), chars.size()));
    }
    QStringList lines;
    const auto* s = reinterpret_cast<const unsigned char*>(chars.data());
    for (qsizetype i = 0; i < chars.size();) {
        if (lines.size() == kMaxShown) {
            lines << QStringLiteral("...");
            break;
        }
        int len = 1;
        const char32_t cp = decodeUtf8At(s + i, len);
        if (len > chars.size() - i)
            break; // a sequence cut short is no character
        lines << describeCodePoint(cp);
        i += len;
    }
    ctx.dialogs.messageBox(lines.join(QStringLiteral("\r\n")), QStringLiteral("Char To ASCII"), Buttons::Ok,
                           Icon::Information);
}

} // namespace ed
