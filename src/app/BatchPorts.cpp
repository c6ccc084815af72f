#include "app/BatchPorts.h"

#include "app/BatchRunner.h"
#include "editor/MenuTable.h"

#include <cstdio>

namespace ed {

namespace {
// Characters that steer a terminal or the direction of text rather than show: C0, DEL, the C1
// block, and the format characters (bidi marks and embeddings among them).
bool isControl(char32_t c) {
    if (c < 0x20 || c == 0x7F || (c >= 0x80 && c <= 0x9F))
        return true;
    const QChar::Category cat = QChar::category(c);
    return cat == QChar::Other_Format || cat == QChar::Separator_Line ||
           cat == QChar::Separator_Paragraph;
}

QString hex(char32_t c, int digits) {
    return QString::number(uint(c), 16).toUpper().rightJustified(digits, u'0');
}
} // namespace

QString escapeReport(const QString& text) {
    QString out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        char32_t c = text[i].unicode();
        if (QChar::isHighSurrogate(c) && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            c = QChar::surrogateToUcs4(text[i], text[i + 1]);
            ++i;
        }
        if (c == u'\\')
            out += QStringLiteral("\\\\");
        else if (c == u'\r')
            out += QStringLiteral("\\r");
        else if (c == u'\n')
            out += QStringLiteral("\\n");
        else if (c < 0x20 || c == 0x7F)
            out += QStringLiteral("\\x") + hex(c, 2);
        else if (isControl(c) || QChar::isSurrogate(c))
            out += QStringLiteral("\\u{") + hex(c, 4) + u'}';
        else
            out += QString::fromUcs4(&c, 1);
    }
    return out;
}

QString ScriptedDialogs::inputBox(const QString& prompt, const QString& title,
                                  const QString& defaultAnswer) {
    report_(QStringLiteral("prompt: %1 | %2 | %3")
                .arg(escapeReport(prompt), escapeReport(title), escapeReport(defaultAnswer)));
    if (answers_.isEmpty())
        return QString();
    return answers_.takeFirst();
}

QString ScriptedDialogs::takeAnswer() {
    return answers_.isEmpty() ? QString() : answers_.takeFirst();
}

FileDialogResult ScriptedFileDialogs::file(const QString& kind, const FileDialogRequest& request) {
    report_(QStringLiteral("%1: %2 | %3")
                .arg(kind, escapeReport(request.title), escapeReport(request.fileName)));
    FileDialogResult result;
    result.fileName = answers_.takeAnswer();
    result.filterIndex = request.filterIndex > 0 ? request.filterIndex : 1;
    return result;
}

FileDialogResult ScriptedFileDialogs::showOpen(const FileDialogRequest& request) {
    return file(QStringLiteral("open"), request);
}

FileDialogResult ScriptedFileDialogs::showSave(const FileDialogRequest& request) {
    return file(QStringLiteral("save"), request);
}

QString ScriptedFileDialogs::showFolder(const QString& title, const QString& initialDir) {
    report_(QStringLiteral("folder: %1 | %2").arg(escapeReport(title), escapeReport(initialDir)));
    return answers_.takeAnswer();
}

Answer ScriptedDialogs::messageBox(const QString& text, const QString& title, Buttons buttons,
                                   Icon) {
    report_(QStringLiteral("message: %1 | %2").arg(escapeReport(text), escapeReport(title)));
    if (buttons == Buttons::Ok)
        return Answer::Ok;
    const Answer none = buttons == Buttons::YesNo ? Answer::No : Answer::Cancel;
    if (answers_.isEmpty())
        return none;
    const QString a = answers_.takeFirst().trimmed().toLower();
    if (a == u"yes" || a == u"y")
        return Answer::Yes;
    if (a == u"no" || a == u"n")
        return Answer::No;
    if (a == u"cancel" || a == u"c")
        return Answer::Cancel;
    if (a == u"ok")
        return Answer::Ok;
    if (error_.isEmpty())
        error_ = QStringLiteral("answer \"%1\" to a question box is not yes, no or cancel").arg(a);
    return none;
}

DeclaredMenuState::DeclaredMenuState() {
    for (const MenuItemDecl& d : menuItems()) {
        const QString name = QString::fromLatin1(d.name);
        enabled_.insert(name, !(d.flags & kDisabled));
        checked_.insert(name, false);
    }
}

bool DeclaredMenuState::isEnabled(const QString& item) const {
    return enabled_.value(item, true);
}
void DeclaredMenuState::setEnabled(const QString& item, bool enabled) {
    enabled_[item] = enabled;
}
bool DeclaredMenuState::isChecked(const QString& item) const {
    return checked_.value(item, false);
}
void DeclaredMenuState::setChecked(const QString& item, bool checked) {
    checked_[item] = checked;
}

void QuietWindow::showStatus(const QString& text) {
    report_(QStringLiteral("status: ") + escapeReport(text));
    if (!reporting_)
        std::fprintf(stderr, "Editor: %s\n", text.toLocal8Bit().constData());
}

} // namespace ed
