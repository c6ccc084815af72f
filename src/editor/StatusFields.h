#pragma once
// The status bar's permanent fields: where the caret stands, how much is selected, and the
// encoding and line-break style the document is saved with. Messages show beside them.

#include "util/TextCodec.h"

#include <QObject>

class QLabel;
class QStatusBar;

namespace ed {

class ScintillaEditControl;

class StatusFields : public QObject {
public:
    // Adds the fields to `bar` (after its permanent widgets so far); the caret fields follow the
    // widget of `edit`.
    StatusFields(QStatusBar* bar, ScintillaEditControl& edit);
    // The format Save writes: an RTF document has no encoding or line-break style of its own.
    void showFormat(const TextFormat& format, bool rtf);

private:
    void showCaret();

    ScintillaEditControl& edit_;
    QLabel* position_;
    QLabel* selection_;
    QLabel* encoding_;
    QLabel* lineBreak_;
};

} // namespace ed
