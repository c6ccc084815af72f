#include "editor/StatusFields.h"

#include "editor/PlainTextEditControl.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QStatusBar>
#include <QTextBlock>

namespace ed {

namespace {
QLabel* addField(QStatusBar* bar, const char* name) {
    auto* label = new QLabel(bar);
    label->setObjectName(QString::fromLatin1(name));
    bar->addPermanentWidget(label);
    return label;
}
} // namespace

StatusFields::StatusFields(QStatusBar* bar, PlainTextEditControl& edit)
    : QObject(bar), edit_(edit), position_(addField(bar, "lblPosition")),
      selection_(addField(bar, "lblSelection")), encoding_(addField(bar, "lblEncoding")),
      lineBreak_(addField(bar, "lblLineBreak")) {
    connect(edit.widget(), &QPlainTextEdit::cursorPositionChanged, this, [this] { showCaret(); });
    connect(edit.widget(), &QPlainTextEdit::selectionChanged, this, [this] { showCaret(); });
    showCaret();
}

void StatusFields::showCaret() {
    // Lines and columns of the text as it reads, counted from 1; a line break selected counts one.
    // A block of the widget may hold several lines: each model line break before the caret is one
    // widget position fewer than the model counts.
    const QTextCursor c = edit_.widget()->textCursor();
    const int pos = c.position();
    const int line = edit_.toModel(pos) - pos;
    int column = c.positionInBlock();
    const qsizetype sep =
        column > 0 ? c.block().text().lastIndexOf(QChar::LineSeparator, column - 1) : -1;
    if (sep >= 0) {
        const int after = c.block().position() + int(sep) + 1;
        if (edit_.toModel(after) - after > edit_.toModel(after - 1) - (after - 1))
            column -= int(sep) + 1; // that separator is a line break
    }
    position_->setText(tr("Ln %1, Col %2").arg(line + 1).arg(column + 1));
    selection_->setText(tr("Sel %1").arg(c.selectionEnd() - c.selectionStart()));
}

void StatusFields::showFormat(const TextFormat& format, bool rtf) {
    encoding_->setText(rtf ? QStringLiteral("RTF")
                           : QString::fromLatin1(encodingName(format.encoding)));
    lineBreak_->setText(QString::fromLatin1(lineBreakName(format.lineBreak)));
    lineBreak_->setVisible(!rtf);
}

} // namespace ed
