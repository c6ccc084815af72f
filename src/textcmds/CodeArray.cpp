#include "textcmds/CodeArray.h"

#include "textcmds/Framework.h"

#include <cstring>

namespace ed {

namespace {

constexpr QByteArrayView kBreak("\r\n");

// The decimal digits of every index from 0 to `count` - 1 together.
qsizetype digitsUpTo(qsizetype count) {
    qsizetype total = 0;
    for (qsizetype width = 1, from = 0, to = 10; from < count; ++width, from = to, to *= 10)
        total += width * (qMin(count, to) - from);
    return total;
}

// A decimal number counted up in place, so that no index is ever divided into digits.
class Counter {
public:
    Counter() { digits_[kMax - 1] = '0'; }
    QByteArrayView digits() const { return QByteArrayView(digits_ + start_, kMax - start_); }
    void increment() {
        qsizetype k = kMax - 1;
        while (k >= start_ && digits_[k] == '9')
            digits_[k--] = '0';
        if (k < start_) {
            start_ = k;
            digits_[k] = '0';
        }
        ++digits_[k];
    }

private:
    static constexpr qsizetype kMax = 24;
    char digits_[kMax] = {};
    qsizetype start_ = kMax - 1;
};

} // namespace

QByteArray codeArray(QByteArrayView name, QByteArrayView text) {
    qsizetype elements = 0, wordBytes = 0;
    forEachModelLine(text, [&](QByteArrayView line) {
        elements += !line.isEmpty();
        wordBytes += line.size();
    });
    const QByteArray last = QByteArray::number(qint64(elements) - 1);

    // Each element: name "(" index ") = \"" word "\"" CR LF.
    ByteWriter out(3 * name.size() + 2 * last.size() + 64 + wordBytes + digitsUpTo(elements) +
                   elements * (name.size() + 9));
    out.append("Private Const ");
    out.append(name);
    out.append("Count As Long = ");
    out.append(last);
    out.append(kBreak);
    out.append("ReDim ");
    out.append(name);
    out.append("(");
    out.append(last);
    out.append(")\r\n");
    out.append("Private ");
    out.append(name);
    out.append("() As String\r\n");

    Counter index;
    forEachModelLine(text, [&](QByteArrayView line) {
        if (line.isEmpty())
            return;
        const QByteArrayView digits = index.digits();
        char* d = out.room(name.size() + digits.size() + line.size() + 9);
        std::memcpy(d, name.data(), size_t(name.size()));
        d += name.size();
        *d++ = '(';
        std::memcpy(d, digits.data(), size_t(digits.size()));
        d += digits.size();
        std::memcpy(d, ") = \"", 5);
        d += 5;
        std::memcpy(d, line.data(), size_t(line.size()));
        d += line.size();
        std::memcpy(d, "\"\r\n", 3);
        out.advance(d + 3);
        index.increment();
    });
    return std::move(out).finish();
}

void mnuCreateCodeArrayOfWordList_Click(CommandContext& ctx) {
    // The default is always the remembered name, never the selection.
    const QString key = QStringLiteral("Previous ArrayName");
    const QString section = QStringLiteral("frmEdit");
    const QString name =
        ctx.dialogs.inputBox(QStringLiteral("Enter Array name"), QStringLiteral("Array name"),
                             ctx.settings.get(section, key, QString()));
    if (name.isEmpty())
        return;
    ctx.settings.save(section, key, name);
    ctx.edit.setUtf8(codeArray(toModelUtf8(name), ctx.edit.utf8()));
}

} // namespace ed
