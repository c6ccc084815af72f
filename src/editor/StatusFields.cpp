#include "editor/StatusFields.h"

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

StatusFields::StatusFields(QStatusBar* bar, QPlainTextEdit* text)
    : QObject(bar), text_(text), position_(addField(bar, "lblPosition")),
      selection_(addField(bar, "lblSelection")), encoding_(addField(bar, "lblEncoding")),
      lineBreak_(addField(bar, "lblLineBreak")) {
    connect(text, &QPlainTextEdit::cursorPositionChanged, this, [this] { showCaret(); });
    connect(text, &QPlainTextEdit::selectionChanged, this, [this] { showCaret(); });
    showCaret();
}

void StatusFields::showCaret() {
    // Lines and columns as the text shows them, counted from 1; a line break selected counts one.
    const QTextCursor c = text_->textCursor();
    position_->setText(tr("Ln %1, Col %2").arg(c.blockNumber() + 1).arg(c.positionInBlock() + 1));
    selection_->setText(tr("Sel %1").arg(c.selectionEnd() - c.selectionStart()));
}

void StatusFields::showFormat(const TextFormat& format, bool rtf) {
    encoding_->setText(rtf ? QStringLiteral("RTF")
                           : QString::fromLatin1(encodingName(format.encoding)));
    lineBreak_->setText(QString::fromLatin1(lineBreakName(format.lineBreak)));
    lineBreak_->setVisible(!rtf);
}

} // namespace ed
