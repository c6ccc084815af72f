// Character formats on a large document in the edit view (run offscreen): Float Font over the
// whole text, Change Font on half of it, Save RTF, loading that RTF back, and an undo snapshot
// taken and put back.
//   QT_QPA_PLATFORM=offscreen bench_styles [MEGABYTES]   (default 5)

#include "editor/RtfPlain.h"
#include "editor/RtfReader.h"
#include "editor/ViewStyles.h"

#include <Qsci/qsciscintillabase.h>

#include <QApplication>
#include <QElapsedTimer>

#include <cstdio>
#include <cstdlib>

using namespace ed;

namespace {

// Lines of words with accents and an emoji, CR LF breaks, about `bytes` bytes.
QByteArray makeDocument(qsizetype bytes) {
    static const char* const words[] = {"apple", "Banana", "café", "Ärger", "12345", "😀"};
    QByteArray doc;
    doc.reserve(bytes + 100);
    quint32 s = 12345;
    while (doc.size() < bytes) {
        for (int i = 0; i < 8; ++i) {
            s = s * 1103515245u + 12345u;
            doc += words[(s >> 16) % 6];
            doc += ' ';
        }
        doc += "\r\n";
    }
    return doc;
}

void row(const char* what, QElapsedTimer& t) {
    std::printf("  %-34s %9.1f ms\n", what, double(t.nsecsElapsed()) / 1e6);
    t.restart();
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const double megabytes = argc > 1 ? std::atof(argv[1]) : 5;
    const QByteArray doc = makeDocument(qsizetype(megabytes * 1024 * 1024));
    QsciScintillaBase view;
    auto* styles = new ViewStyles(&view);
    view.SendScintilla(QsciScintillaBase::SCI_APPENDTEXT, uintptr_t(doc.size()), doc.constData());
    const qsizetype n = doc.size();
    std::printf("%.1f MB\n", double(n) / (1024 * 1024));

    QList<double> wave;
    for (int size = 9; size < 40; ++size)
        wave.append(size);
    for (int size = 40; size > 9; --size)
        wave.append(size);
    QElapsedTimer t;
    t.start();
    const StyleSnapshot before = styles->snapshot(0, n);
    row("snapshot of the whole text", t);
    styles->setSizeCycle(0, n, wave);
    row("Float Font 9..40 on the whole text", t);
    styles->setFont(0, n / 2, FontSpec{QStringLiteral("Courier New"), 0, true, false});
    row("Change Font on half", t);
    const QByteArray rtf = styles->saveRtf();
    row("Save RTF", t);
    const RtfContent content = parseRtf(rtf);
    row("  of which reading the RTF", t);
    const RtfText laid = rtfTextOf(content);
    row("  of which laying out its text", t);
    QString error, notice;
    styles->loadRtf(rtf, &error, &notice);
    row("load that RTF", t);
    styles->restore(before);
    row("put the snapshot back", t);
    std::printf("  RTF %.1f MB%s%s\n", double(rtf.size()) / (1024 * 1024),
                notice.isEmpty() ? "" : ", ", qPrintable(notice));
    return 0;
}
