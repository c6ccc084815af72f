#pragma once
// An edit control without a widget: the document's model bytes (UTF-8, CR LF) and a selection,
// with the clipping rules of the window's control. The batch runner and the tests use it. The
// text commands take the bytes as they are; text() decodes them for the few that want UTF-16.

#include "app/Ports.h"

namespace ed {

class TextBuffer : public EditControl {
public:
    explicit TextBuffer(const QString& text = QString()) : bytes_(toModelUtf8(text)) {}
    static TextBuffer fromUtf8(QByteArray bytes) {
        TextBuffer b;
        b.bytes_ = std::move(bytes);
        return b;
    }

    QString text() const override { return fromModelUtf8(bytes_); }
    void setText(const QString& text) override { setUtf8(toModelUtf8(text)); }
    QByteArray utf8() const override { return bytes_; }
    void setUtf8(const QByteArray& text) override {
        bytes_ = text;
        units_ = -1;
        start_ = 0;
        length_ = 0;
        ++assignments_;
        changed_ = true;
    }
    int textLength() const override {
        if (units_ < 0)
            units_ = utf16Length(bytes_);
        return int(units_);
    }
    int selStart() const override { return start_; }
    void setSelStart(int start) override {
        start_ = qBound(0, start, textLength());
        length_ = 0;
    }
    int selLength() const override { return length_; }
    void setSelLength(int length) override { length_ = qBound(0, length, textLength() - start_); }
    QString selText() const override {
        const qsizetype b = byteOffsetOf(bytes_, start_);
        const QByteArrayView rest = QByteArrayView(bytes_).sliced(b);
        return fromModelUtf8(rest.first(byteOffsetOf(rest, length_)));
    }
    void replaceRange(int start, int length, const QString& replacement) override {
        const qsizetype b = byteOffsetOf(bytes_, start);
        const qsizetype e = b + byteOffsetOf(QByteArrayView(bytes_).sliced(b), length);
        if (utf16Length(QByteArrayView(bytes_).first(b)) == start &&
            utf16Length(QByteArrayView(bytes_).sliced(b, e - b)) == length) {
            bytes_.replace(b, e - b, toModelUtf8(replacement));
        } else {
            // An end inside a surrogate pair: only the UTF-16 text can be cut there.
            QString t = text();
            t.replace(start, length, replacement);
            bytes_ = toModelUtf8(t);
        }
        units_ = -1;
        changed_ = true;
        start_ = qBound(0, start_, textLength());
        length_ = qBound(0, length_, textLength() - start_);
    }

    // How many whole-text assignments were made (tests check "one final assignment").
    int assignments() const { return assignments_; }
    // False while the bytes are still those the buffer was made with.
    bool changed() const { return changed_; }

private:
    QByteArray bytes_;
    mutable qsizetype units_ = -1;
    int start_ = 0;
    int length_ = 0;
    int assignments_ = 0;
    bool changed_ = false;
};

} // namespace ed
