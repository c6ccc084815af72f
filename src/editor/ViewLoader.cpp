#include "editor/ViewLoader.h"

#include <Qsci/qsciscintillabase.h>

#include <cstddef>

namespace ed {

// The loader interface the view hands out (not among the installed headers). Lengths travel in
// a register, so the width of the length parameter does not matter for chunks below 2 GB.
struct ViewLoader::Loader {
    virtual int Release() = 0;
    virtual int AddData(const char* data, std::ptrdiff_t length) = 0;
    virtual void* ConvertToDocument() = 0;

protected:
    ~Loader() = default;
};

namespace {
constexpr qsizetype kChunk = qsizetype(1) << 20;
constexpr int kStatusOk = 0; // SC_STATUS_OK
} // namespace

ViewLoader::ViewLoader(QsciScintillaBase* view, qsizetype sizeHint, bool withStyles)
    : view_(view), sizeHint_(sizeHint), withStyles_(withStyles) {}

ViewLoader::ViewLoader(ViewLoader&& other) noexcept
    : view_(other.view_), sizeHint_(other.sizeHint_), withStyles_(other.withStyles_),
      loader_(other.loader_), failed_(other.failed_) {
    other.loader_ = nullptr;
}

bool ViewLoader::make() {
    if (loader_ || failed_)
        return !failed_;
    const long options = withStyles_ ? QsciScintillaBase::SC_DOCUMENTOPTION_DEFAULT
                                     : QsciScintillaBase::SC_DOCUMENTOPTION_STYLES_NONE;
    loader_ = reinterpret_cast<Loader*>(view_->SendScintilla(
        QsciScintillaBase::SCI_CREATELOADER, static_cast<unsigned long>(sizeHint_), options));
    failed_ = loader_ == nullptr;
    return !failed_;
}

ViewLoader::~ViewLoader() {
    if (loader_)
        loader_->Release();
}

bool ViewLoader::add(QByteArrayView bytes, const std::atomic<bool>* cancelled,
                     std::atomic<int>* percent, int from, int to) {
    if (!make())
        return false;
    const qsizetype n = bytes.size();
    for (qsizetype at = 0; at < n; at += kChunk) {
        if (cancelled && *cancelled)
            return false;
        const qsizetype len = qMin(kChunk, n - at);
        if (loader_->AddData(bytes.data() + at, len) != kStatusOk) {
            failed_ = true;
            return false;
        }
        if (percent && n > 0)
            *percent = from + int((to - from) * double(at + len) / double(n));
    }
    return true;
}

void* ViewLoader::takeDocument() {
    if (!make())
        return nullptr;
    void* doc = loader_->ConvertToDocument();
    loader_ = nullptr; // converting released the loader
    return doc;
}

} // namespace ed
