#pragma once
// Scripted ports of the batch runner: answers from the command line, events to a report.

#include "app/Command.h"
#include "app/Ports.h"

#include <QHash>
#include <QStringList>

#include <functional>

namespace ed {

using ReportFn = std::function<void(const QString& line)>;

class ScriptedDialogs : public Dialogs {
public:
    explicit ScriptedDialogs(ReportFn report) : report_(std::move(report)) {}
    void setAnswers(QStringList answers) { answers_ = std::move(answers); }
    QString inputBox(const QString& prompt, const QString& title,
                     const QString& defaultAnswer) override;
    Answer messageBox(const QString& text, const QString& title, Buttons buttons,
                      Icon icon) override;
    // Set when an answer to a question box was not yes, no or cancel.
    QString error() const { return error_; }
    // The next answer of the command line, or "" (cancelled) when none is left.
    QString takeAnswer();

private:
    ReportFn report_;
    QStringList answers_;
    QString error_;
};

// File and folder dialogs of the batch runner: each takes the next --answer as the file or
// folder chosen (none left: cancelled). The font dialog keeps the font.
class ScriptedFileDialogs : public FileDialogs {
public:
    ScriptedFileDialogs(ScriptedDialogs& answers, ReportFn report)
        : answers_(answers), report_(std::move(report)) {}
    FileDialogResult showOpen(const FileDialogRequest& request) override;
    FileDialogResult showSave(const FileDialogRequest& request) override;
    FontSpec showFont(const FontSpec& current) override { return current; }
    QString showFolder(const QString& title, const QString& initialDir) override;

private:
    FileDialogResult file(const QString& kind, const FileDialogRequest& request);
    ScriptedDialogs& answers_;
    ReportFn report_;
};

class MemoryClipboard : public Clipboard {
public:
    QString text() const override { return text_; }
    void clear() override { text_.clear(); }
    void setText(const QString& text) override { text_ = text; }

private:
    QString text_;
};

// Menu states as declared in the menu table, changed by the commands.
class DeclaredMenuState : public MenuState {
public:
    DeclaredMenuState();
    bool isEnabled(const QString& item) const override;
    void setEnabled(const QString& item, bool enabled) override;
    bool isChecked(const QString& item) const override;
    void setChecked(const QString& item, bool checked) override;

private:
    QHash<QString, bool> enabled_;
    QHash<QString, bool> checked_;
};

class QuietWindow : public FormWindow {
public:
    // Status lines go to the report with --report, else straight to stderr.
    QuietWindow(ReportFn report, bool reporting)
        : report_(std::move(report)), reporting_(reporting) {}
    void setCaption(const QString& caption) override { caption_ = caption; }
    QString caption() const override { return caption_; }
    void showStatus(const QString& text) override;
    void close() override {}

private:
    ReportFn report_;
    bool reporting_;
    QString caption_;
};

} // namespace ed
