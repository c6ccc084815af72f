#pragma once
// The window's progress display: a dialog over the window with a bar, a line of text and
// Cancel, shown while long network work runs in a nested event loop.

#include "app/Ports.h"

#include <QPointer>

class QProgressDialog;
class QWidget;

namespace ed {

class ProgressDialog : public Progress {
public:
    explicit ProgressDialog(QWidget* parent) : parent_(parent) {}
    ~ProgressDialog() override;
    ProgressDialog(const ProgressDialog&) = delete;
    ProgressDialog& operator=(const ProgressDialog&) = delete;

    void begin(const QString& title, std::function<void()> cancel) override;
    void update(const QString& text, int done, int total) override;
    void end() override;

    // The dialog while it is shown (tests press its Cancel).
    QProgressDialog* dialog() const;

private:
    QWidget* parent_;
    QPointer<QProgressDialog> dialog_;
};

} // namespace ed
