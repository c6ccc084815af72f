#pragma once
// The real window on the offscreen platform, started as the program starts it, with scripted
// dialogs and a temporary folder for its files.

#include "editor/EditorWindow.h"
#include "editor/ScintillaEditControl.h"
#include "support/Fakes.h"

#include <QApplication>
#include <QDir>
#include <QKeyEvent>
#include <QTemporaryDir>

#include <Qsci/qsciscintillabase.h>

#include <gtest/gtest.h>

#include <memory>

namespace ed::test {

class WindowFixture : public ::testing::Test {
protected:
    // Starts the window with `commandLine` as the program's command line.
    void open(const QString& commandLine = QString()) {
        QDir().mkpath(dir_.path() + "/bin");
        runStartUp(startUp_, dir_.path() + "/bin/Editor", {});
        startUp_.CommandLine = commandLine;
        window_ = std::make_unique<EditorWindow>(startUp_);
        window_->setDialogs(&dialogs_);
        window_->setFileDialogs(&files_);
        window_->load();
    }
    QString path(const QString& name) const { return dir_.path() + "/" + name; }
    QString text() const { return window_->editControl().text(); }
    // Keys pressed and released in the text widget, as a person types them.
    void type(const QString& keys) {
        for (QChar c : keys) {
            const int key = c >= u'a' && c <= u'z' ? Qt::Key_A + (c.unicode() - u'a') : 0;
            for (QEvent::Type t : {QEvent::KeyPress, QEvent::KeyRelease}) {
                QKeyEvent event(t, key, Qt::NoModifier, QString(c));
                QApplication::sendEvent(window_->textWidget(), &event);
            }
        }
    }

    QTemporaryDir dir_;
    StartUpState startUp_;
    FakeDialogs dialogs_;
    FakeFileDialogs files_;
    std::unique_ptr<EditorWindow> window_;
};

} // namespace ed::test
