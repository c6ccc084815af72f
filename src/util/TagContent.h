#pragma once
// Cutting the content of one kind of HTML tag out of a text: plain text work, shared by the
// document's Get Html Tags and the browser session's tag harvest.

#include <QByteArrayView>
#include <QList>
#include <QString>
#include <QStringList>

namespace ed {

// Content between `startTag` and `stopTag` in `html`, searched with the letters A to Z in either
// case, cut out of `html` as given. Each entry begins with the rest of the start tag (its
// attributes and its ">"); an element that is not closed before the next start tag of its kind
// ends there. One "" entry when nothing was found or a tag is "". At most 10000 entries and
// 10000 passes. Linear in the text.
QStringList htmlTagContent(const QString& startTag, const QString& stopTag, const QString& html);
// The same on UTF-8 bytes: the entries are stretches of `html`.
QList<QByteArrayView> htmlTagContentUtf8(QByteArrayView startTag, QByteArrayView stopTag,
                                         QByteArrayView html);

} // namespace ed
