#include "editor/PlainTextEditControl.h"

#include <QPlainTextEdit>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

namespace ed {

// The widget would take a lone CR for a line break; it holds this stand-in instead, shown as a
// visible CR symbol, so that a CR that is not part of a line break survives a round trip.
constexpr char16_t kLoneCr = 0x240D;

QString modelToWidgetText(const QString& model) {
    QString out(model.size(), Qt::Uninitialized);
    char16_t* d = reinterpret_cast<char16_t*>(out.data());
    const char16_t* s = reinterpret_cast<const char16_t*>(model.constData());
    const char16_t* end = s + model.size();
    while (s < end) {
        if (*s == u'\r') {
            if (s + 1 < end && s[1] == u'\n') {
                *d++ = u'\n';
                s += 2;
            } else {
                *d++ = kLoneCr;
                ++s;
            }
        } else {
            *d++ = *s++;
        }
    }
    out.truncate(d - reinterpret_cast<char16_t*>(out.data()));
    return out;
}

QString widgetToModelText(const QString& raw) {
    qsizetype breaks = 0;
    for (QChar c : raw)
        if (c == QChar::ParagraphSeparator || c == u'\n')
            ++breaks;
    QString out(raw.size() + breaks, Qt::Uninitialized);
    char16_t* d = reinterpret_cast<char16_t*>(out.data());
    for (QChar c : raw) {
        if (c == QChar::ParagraphSeparator || c == u'\n') {
            *d++ = u'\r';
            *d++ = u'\n';
        } else {
            *d++ = c.unicode() == kLoneCr ? u'\r' : c.unicode();
        }
    }
    return out;
}

PlainTextEditControl::PlainTextEditControl(QPlainTextEdit* widget)
    : QObject(widget), widget_(widget) {
    // The widget keeps no undo stack of its own: the window's history covers every change.
    widget_->setUndoRedoEnabled(false);
    connect(widget_->document(), &QTextDocument::contentsChanged, this, [this] {
        if (!ownEdit_) {
            cacheValid_ = false;
            userEdited_ = true;
        }
    });
}

QString PlainTextEditControl::text() const {
    if (!cacheValid_) {
        cache_ = widgetToModelText(widget_->document()->toRawText());
        cacheValid_ = true;
    }
    return cache_;
}

namespace {
// Lines longer than this are laid out without complex shaping: the widget lays out a line as a
// whole, and shaping a line of megabytes would hold the window for many seconds.
constexpr qsizetype kLongLine = 100000;

qsizetype longestLine(const QString& text) {
    qsizetype longest = 0, start = 0;
    const qsizetype n = text.size();
    for (qsizetype i = text.indexOf(u'\n'); i >= 0; i = text.indexOf(u'\n', i + 1)) {
        longest = qMax(longest, i - start);
        start = i + 1;
    }
    return qMax(longest, n - start);
}
} // namespace

void PlainTextEditControl::applyShaping(bool longLines) {
    QFont f = widget_->font();
    const auto strategy = longLines ? QFont::PreferNoShaping : QFont::PreferDefault;
    if (f.styleStrategy() != strategy) {
        f.setStyleStrategy(strategy);
        widget_->setFont(f);
    }
}

void PlainTextEditControl::setText(const QString& text) {
    applyShaping(longestLine(text) > kLongLine);
    // A whole-text assignment replaces the content in one undoable step and drops formatting.
    ownEdit_ = true;
    widget_->document()->setPlainText(modelToWidgetText(text));
    ownEdit_ = false;
    rich_ = false;
    cache_ = text;
    cacheValid_ = true;
    QTextCursor caret(widget_->document());
    widget_->setTextCursor(caret);
}

void PlainTextEditControl::replaceRange(int start, int length, const QString& replacement) {
    const QString before = text();
    if (qsizetype(length) * 2 > before.size()) {
        // Most of the document changes: taking the whole new text is faster than editing it.
        QString after = before;
        after.replace(start, length, replacement);
        setText(after);
        return;
    }
    QTextCursor c(widget_->document());
    c.setPosition(toWidget(start));
    c.setPosition(toWidget(start + length), QTextCursor::KeepAnchor);
    ownEdit_ = true;
    c.insertText(modelToWidgetText(replacement));
    ownEdit_ = false;
    cache_ = before;
    cache_.replace(start, length, replacement);
    cacheValid_ = true;
}

bool PlainTextEditControl::takeUserEdited() {
    const bool edited = userEdited_;
    userEdited_ = false;
    return edited;
}

int PlainTextEditControl::textLength() const { return int(text().size()); }

int PlainTextEditControl::toModel(int w) const {
    const QTextBlock b = widget_->document()->findBlock(w);
    return w + (b.isValid() ? b.blockNumber() : widget_->document()->blockCount() - 1);
}

int PlainTextEditControl::toWidget(int m) const {
    QTextDocument* doc = widget_->document();
    if (m <= 0)
        return 0;
    // The last block whose model start is at or before m.
    int lo = 0, hi = doc->blockCount() - 1;
    while (lo < hi) {
        const int mid = (lo + hi + 1) / 2;
        const QTextBlock b = doc->findBlockByNumber(mid);
        if (b.position() + mid <= m)
            lo = mid;
        else
            hi = mid - 1;
    }
    const QTextBlock b = doc->findBlockByNumber(lo);
    const int inBlock = m - (b.position() + lo);
    return b.position() + qMin(inBlock, b.length() - 1 + (b.next().isValid() ? 1 : 0));
}

int PlainTextEditControl::selStart() const {
    return toModel(widget_->textCursor().selectionStart());
}

void PlainTextEditControl::setSelStart(int start) {
    QTextCursor c = widget_->textCursor();
    const int len = textLength();
    c.setPosition(toWidget(qBound(0, start, len)));
    widget_->setTextCursor(c);
}

int PlainTextEditControl::selLength() const {
    const QTextCursor c = widget_->textCursor();
    return toModel(c.selectionEnd()) - toModel(c.selectionStart());
}

void PlainTextEditControl::setSelLength(int length) {
    QTextCursor c = widget_->textCursor();
    const int start = toModel(c.selectionStart());
    const int end = qBound(start, start + qMax(0, length), textLength());
    c.setPosition(c.selectionStart());
    c.setPosition(toWidget(end), QTextCursor::KeepAnchor);
    widget_->setTextCursor(c);
}

QString PlainTextEditControl::selText() const {
    const int s = selStart();
    return text().mid(s, selLength());
}

void PlainTextEditControl::setSelectionFont(const FontSpec& font) {
    QTextCursor c = widget_->textCursor();
    const bool whole = c.selectionStart() == 0 &&
                       c.selectionEnd() >= widget_->document()->characterCount() - 1;
    if (whole && !rich_) {
        // The whole of a plain document: one font for the widget, no character formats.
        QFont f(font.name);
        if (font.size > 0)
            f.setPointSizeF(font.size);
        f.setBold(font.bold);
        f.setItalic(font.italic);
        f.setStyleStrategy(widget_->font().styleStrategy());
        if (f != widget_->font())
            widget_->setFont(f);
        return;
    }
    QTextCharFormat f;
    f.setFontFamilies({font.name});
    if (font.size > 0)
        f.setFontPointSize(font.size);
    f.setFontWeight(font.bold ? QFont::Bold : QFont::Normal);
    f.setFontItalic(font.italic);
    ownEdit_ = true;
    if (c.hasSelection())
        c.mergeCharFormat(f);
    else
        widget_->mergeCurrentCharFormat(f);
    ownEdit_ = false;
    rich_ = true;
}

FontSpec PlainTextEditControl::selectionFont() const {
    const QTextCharFormat f = widget_->textCursor().charFormat();
    FontSpec s;
    const QStringList fam = f.fontFamilies().toStringList();
    s.name = fam.isEmpty() ? widget_->font().family() : fam.first();
    s.size = f.fontPointSize() > 0 ? f.fontPointSize() : widget_->font().pointSizeF();
    s.bold = f.fontWeight() >= QFont::Bold;
    s.italic = f.fontItalic();
    return s;
}

void PlainTextEditControl::setRightMargin(int twips) {
    widget_->setLineWrapMode(twips == 0 ? QPlainTextEdit::WidgetWidth : QPlainTextEdit::NoWrap);
}

} // namespace ed
