#pragma once
// An edit control without a widget: the document text and a selection, with the clipping rules
// of the window's control. The batch runner and the tests use it.

#include "app/Ports.h"

namespace ed {

class TextBuffer : public EditControl {
public:
    explicit TextBuffer(QString text = QString()) : text_(std::move(text)) {}

    QString text() const override { return text_; }
    void setText(const QString& text) override {
        text_ = text;
        start_ = 0;
        length_ = 0;
        ++assignments_;
    }
    int textLength() const override { return int(text_.size()); }
    int selStart() const override { return start_; }
    void setSelStart(int start) override {
        start_ = qBound(0, start, int(text_.size()));
        length_ = 0;
    }
    int selLength() const override { return length_; }
    void setSelLength(int length) override {
        length_ = qBound(0, length, int(text_.size()) - start_);
    }
    QString selText() const override { return text_.mid(start_, length_); }
    void replaceRange(int start, int length, const QString& replacement) override {
        text_.replace(start, length, replacement);
        start_ = qBound(0, start_, int(text_.size()));
        length_ = qBound(0, length_, int(text_.size()) - start_);
    }

    // How many whole-text assignments were made (tests check "one final assignment").
    int assignments() const { return assignments_; }

private:
    QString text_;
    int start_ = 0;
    int length_ = 0;
    int assignments_ = 0;
};

} // namespace ed
