#include "editor/StatusFields.h"

#include "editor/ScintillaEditControl.h"

#include <QLabel>
#include <QStatusBar>

#include <Qsci/qsciscintillabase.h>

namespace ed {

namespace {
QLabel* addField(QStatusBar* bar, const char* name) {
    auto* label = new QLabel(bar);
    label->setObjectName(QString::fromLatin1(name));
    bar->addPermanentWidget(label);
    return label;
}
} // namespace

StatusFields::StatusFields(QStatusBar* bar, ScintillaEditControl& edit)
    : QObject(bar), edit_(edit), position_(addField(bar, "lblPosition")),
      selection_(addField(bar, "lblSelection")), encoding_(addField(bar, "lblEncoding")),
      lineBreak_(addField(bar, "lblLineBreak")) {
    connect(&edit, &ScintillaEditControl::caretMoved, this, [this] { showCaret(); });
    showCaret();
}

void StatusFields::showCaret() {
    // Lines and columns of the text as it reads, counted from 1; a line break selected counts one.
    using Sci = QsciScintillaBase;
    QsciScintillaBase* view = edit_.view();
    const ScintillaEditControl::Selection sel = edit_.selectionBytes();
    const long caret = long(sel.caret);
    const long line = view->SendScintilla(Sci::SCI_LINEFROMPOSITION, caret);
    const long lineStart = view->SendScintilla(Sci::SCI_POSITIONFROMLINE, line);
    const long column = view->SendScintilla(Sci::SCI_COUNTCODEUNITS, lineStart, caret);
    const long from = long(sel.start());
    const long to = long(sel.end());
    const long breaks = view->SendScintilla(Sci::SCI_LINEFROMPOSITION, to) -
                        view->SendScintilla(Sci::SCI_LINEFROMPOSITION, from);
    // Before anything maps positions the view has no line index: a small selection is counted
    // as it is, so that moving the caret never builds the index of a large document.
    long units;
    if (!edit_.hasIndex() && to - from < (1 << 20))
        units = view->SendScintilla(Sci::SCI_COUNTCODEUNITS, from, to);
    else
        units = long(edit_.modelPosition(to) - edit_.modelPosition(from));
    const long selected = units - breaks;
    position_->setText(tr("Ln %1, Col %2").arg(line + 1).arg(column + 1));
    selection_->setText(tr("Sel %1").arg(selected));
}

void StatusFields::showFormat(const TextFormat& format, bool rtf) {
    encoding_->setText(rtf ? QStringLiteral("RTF")
                           : QString::fromLatin1(encodingName(format.encoding)));
    lineBreak_->setText(QString::fromLatin1(lineBreakName(format.lineBreak)));
    lineBreak_->setVisible(!rtf);
}

} // namespace ed
