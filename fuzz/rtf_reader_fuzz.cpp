// libFuzzer target for the RTF reader: any bytes must parse without a crash, a hang or runaway
// memory, and what the reader recovers must survive a write and a second read unchanged.

#include "editor/RtfReader.h"
#include "editor/RtfWriter.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes =
        QByteArray::fromRawData(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    QString error;
    const ed::RtfContent content = ed::parseRtf(bytes, &error);
    (void)ed::rtfToPlainText(bytes);
    if (!error.isEmpty())
        return 0;
    const QByteArray written = ed::writeRtf(content);
    QString again;
    if (ed::parseRtf(written, &again) != content || !again.isEmpty()) {
        std::fprintf(stderr, "write and re-read changed the content\n");
        std::abort();
    }
    return 0;
}
