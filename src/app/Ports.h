#pragma once
// The small interfaces every command is written against. The window supplies Qt adapters,
// the batch runner and the tests supply scripted ones, so each handler runs without a display.

#include "app/LaunchTarget.h"
#include "util/ModelText.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <functional>

namespace ed {

// The document as the edit control holds it. Line breaks are always CR LF in this model and every
// position counts a CR LF as two characters. Setting the whole text puts the caret at 0.
class EditControl {
public:
    virtual ~EditControl() = default;
    virtual QString text() const = 0;
    virtual void setText(const QString& text) = 0;
    virtual int textLength() const { return int(text().size()); }
    // Caret position (selection start), 0-based. Setting it collapses the selection.
    virtual int selStart() const = 0;
    virtual void setSelStart(int start) = 0;
    virtual int selLength() const = 0;
    // Extends the selection from the current start; clipped at the end of the text.
    virtual void setSelLength(int length) = 0;
    virtual QString selText() const = 0;
    // Replaces `length` characters at `start` (both already within the text) by `replacement`.
    // Where the caret ends up is the caller's business. This default rebuilds the whole text.
    virtual void replaceRange(int start, int length, const QString& replacement) {
        QString t = text();
        t.replace(start, length, replacement);
        setText(t);
    }
    // The text as the commands work on it: UTF-8 bytes with CR LF line breaks. An edit control
    // that holds such bytes hands them over without a copy.
    virtual QByteArray utf8() const { return toModelUtf8(text()); }
    // The same bytes where the control keeps them, without a copy: valid, and readable from any
    // thread, until the control next changes. Null for a control that keeps no such bytes.
    virtual QByteArrayView utf8InPlace() const { return {}; }
    // Replaces the whole text by such bytes; the caret goes to 0.
    virtual void setUtf8(const QByteArray& text) { setText(fromModelUtf8(text)); }
};

struct FontSpec {
    QString name = QStringLiteral("Arial");
    double size = 9;
    bool bold = false;
    bool italic = false;
};

// Font and layout of the edit control, used only by the view commands.
class EditView {
public:
    virtual ~EditView() = default;
    virtual void setSelectionFont(const FontSpec& font) = 0;
    virtual FontSpec selectionFont() const = 0;
    // 0 wraps at the window edge, anything else (in twips) turns wrapping off.
    virtual void setRightMargin(int twips) = 0;
    // The font the document shows where a character has none of its own.
    virtual FontSpec documentFont() const = 0;
    // The characters from model position `start` on, `length` positions of them, get the point
    // sizes of `cycle` in turn, from its first again when it runs out. A line break and a
    // character outside the Basic Multilingual Plane take one size each.
    virtual void setSizeCycle(int start, int length, const QList<double>& cycle) = 0;
    // Every character gets `font`, with no size, colour or underline of its own.
    virtual void clearFormatting(const FontSpec& font) = 0;
};

enum class Buttons { Ok, OkCancel, YesNo, YesNoCancel, YesCancel };
enum class Icon { None, Critical, Question, Exclamation, Information };
enum class Answer { Ok, Cancel, Yes, No };

// The title the platform gives a prompt or message box that names none of its own.
inline QString defaultTitle() {
    return QStringLiteral("Editor");
}

class Dialogs {
public:
    virtual ~Dialogs() = default;
    // Returns "" when cancelled.
    virtual QString inputBox(const QString& prompt, const QString& title,
                             const QString& defaultAnswer) = 0;
    virtual Answer messageBox(const QString& text, const QString& title, Buttons buttons,
                              Icon icon) = 0;
    // A question whose `defaultButton` is the one Enter presses (No for anything that would
    // overwrite a file). Scripted dialogs answer it as any other message box.
    virtual Answer ask(const QString& text, const QString& title, Buttons buttons, Icon icon,
                       Answer defaultButton) {
        (void)defaultButton;
        return messageBox(text, title, buttons, icon);
    }
};

// Open, save and font dialogs of the window. The batch runner has none of them.
struct FileDialogRequest {
    QString title;
    QString filter;      // "All files *.*|*.*|Text files *.txt|*.txt|..."
    int filterIndex = 0; // 1-based as in the filter; 0 = first
    QString initialDir;
    QString fileName; // proposed name
    QString defaultExtension;
};
struct FileDialogResult {
    QString fileName;    // empty when cancelled
    int filterIndex = 1; // 1-based filter chosen
};
class FileDialogs {
public:
    virtual ~FileDialogs() = default;
    virtual FileDialogResult showOpen(const FileDialogRequest& request) = 0;
    virtual FileDialogResult showSave(const FileDialogRequest& request) = 0;
    virtual FontSpec showFont(const FontSpec& current) = 0;
    // A folder chooser; "" when cancelled.
    virtual QString showFolder(const QString& title, const QString& initialDir) = 0;
};

class Clipboard {
public:
    virtual ~Clipboard() = default;
    virtual QString text() const = 0;
    virtual void clear() = 0;
    virtual void setText(const QString& text) = 0;
};

// Per-user settings store addressed by application name, section and key.
class Settings {
public:
    virtual ~Settings() = default;
    virtual QString read(const QString& app, const QString& section, const QString& key,
                         const QString& defaultValue) = 0;
    virtual void write(const QString& app, const QString& section, const QString& key,
                       const QString& value) = 0;
};

// Every procedure's error trap ends here.
class Logger {
public:
    virtual ~Logger() = default;
    // `detail` never reaches the log record; it is shown where a person is watching (batch runs).
    virtual void logError(const QString& module, const QString& location,
                          const QString& detail = QString()) = 0;
};

class Clock {
public:
    virtual ~Clock() = default;
    virtual QDateTime now() const = 0;
};

// Starting processes and handing things to the desktop. Never goes through a shell.
class Launcher {
public:
    virtual ~Launcher() = default;
    // Starts `program` with `switches` (this program's own, never text from a document, a
    // prompt, a setting or a page) followed by `addresses`. An address that does not begin with
    // a protocol prefix is refused (false, nothing started), so none can arrive as a switch.
    bool startDetached(const QString& program, const QStringList& switches,
                       const QStringList& addresses = {}) {
        for (const QString& address : addresses) {
            if (!isProtocolAddress(address))
                return false;
        }
        return startProcess(program, switches + addresses);
    }
    // Desktop "Open": a file, a folder, a mailto: or web address, with its default handler.
    virtual bool open(const QString& target) = 0;
    // Desktop "Explore": a file manager on a folder.
    virtual bool explore(const QString& folder) = 0;

protected:
    virtual bool startProcess(const QString& program, const QStringList& arguments) = 0;
};

// Enabled/checked/visible state of menu items, addressed by the item's name ("mnuFindNext").
class MenuState {
public:
    virtual ~MenuState() = default;
    virtual bool isEnabled(const QString& item) const = 0;
    virtual void setEnabled(const QString& item, bool enabled) = 0;
    virtual bool isChecked(const QString& item) const = 0;
    virtual void setChecked(const QString& item, bool checked) = 0;
};

// A progress display with Cancel for work the user waits for: the window shows a dialog over
// itself; elsewhere there is none and the work runs to its end.
class Progress {
public:
    virtual ~Progress() = default;
    // Shows the display; pressing its Cancel calls `cancel` (the work then stops on its own).
    virtual void begin(const QString& title, std::function<void()> cancel) = 0;
    // `done` of `total` steps, described by `text`.
    virtual void update(const QString& text, int done, int total) = 0;
    virtual void end() = 0;
};

} // namespace ed
