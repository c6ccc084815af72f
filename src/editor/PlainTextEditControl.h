#pragma once
// rtbEdit: the edit control adapter over a QPlainTextEdit. The widget counts a line break as one
// position; the model counts CR LF as two. This class maps between the two.

#include "app/Ports.h"

#include <QObject>

class QPlainTextEdit;

namespace ed {

class PlainTextEditControl : public QObject, public EditControl, public EditView {
    Q_OBJECT
public:
    explicit PlainTextEditControl(QPlainTextEdit* widget);

    QString text() const override;
    void setText(const QString& text) override;
    int textLength() const override;
    int selStart() const override;
    void setSelStart(int start) override;
    int selLength() const override;
    void setSelLength(int length) override;
    QString selText() const override;
    void replaceRange(int start, int length, const QString& replacement) override;
    // Typing by the user (not an assignment through this adapter) since the last call.
    bool takeUserEdited();
    // The document carries character formats of its own (RTF was loaded into it).
    void setRich(bool rich) { rich_ = rich; }

    void setSelectionFont(const FontSpec& font) override;
    FontSpec selectionFont() const override;
    void setRightMargin(int twips) override;

    QPlainTextEdit* widget() const { return widget_; }

    // Model position of a widget position and back.
    int toModel(int widgetPos) const;
    int toWidget(int modelPos) const;

private:
    void applyShaping(bool longLines);

    QPlainTextEdit* widget_;
    mutable QString cache_;
    mutable bool cacheValid_ = false;
    bool ownEdit_ = false;
    bool userEdited_ = false;
    bool rich_ = false;
};

// Model text (CR LF breaks) -> what the widget holds (one LF per break), and back.
QString modelToWidgetText(const QString& model);
QString widgetToModelText(const QString& raw);

} // namespace ed
