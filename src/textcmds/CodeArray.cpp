#include "textcmds/CodeArray.h"

#include "textcmds/Framework.h"

namespace ed {

namespace {

void appendNumber(QString& out, qint64 v) {
    char16_t buf[24];
    char16_t* end = buf + 24;
    char16_t* p = end;
    const bool negative = v < 0;
    quint64 u = negative ? quint64(-(v + 1)) + 1 : quint64(v);
    do {
        *--p = char16_t(u'0' + u % 10);
        u /= 10;
    } while (u);
    if (negative)
        *--p = u'-';
    out.append(QStringView(p, end - p));
}

} // namespace

QString codeArray(const QString& name, QStringView text) {
    qsizetype elements = 0;
    forEachLine(text, [&](QStringView line) { elements += !line.isEmpty(); });
    const qint64 last = qint64(elements) - 1;

    QString out;
    out.reserve(text.size() + elements * (name.size() + 20) + 3 * name.size() + 80);
    out.append(u"Private Const ").append(name).append(u"Count As Long = ");
    appendNumber(out, last);
    out.append(kCrLf).append(u"ReDim ").append(name).append(u'(');
    appendNumber(out, last);
    out.append(u')').append(kCrLf);
    out.append(u"Private ").append(name).append(u"() As String").append(kCrLf);

    qint64 k = 0;
    forEachLine(text, [&](QStringView line) {
        if (line.isEmpty())
            return;
        out.append(name).append(u'(');
        appendNumber(out, k++);
        out.append(u") = \"").append(line).append(u'"').append(kCrLf);
    });
    return out;
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
    ctx.edit.setText(codeArray(name, ctx.edit.text()));
}

} // namespace ed
