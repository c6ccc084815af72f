#pragma once
// Keyboard access to the menu bar: the "&" mnemonics of the built menu texts (the table's
// captions stay as they are) and the standard keys people expect where the table gives none.

#include <QHash>
#include <QKeySequence>
#include <QList>
#include <QString>
#include <QStringList>

namespace ed {

// The captions of one menu with "&" before the letter that opens each item: the first letter of a
// word that no earlier item of the menu took, else any letter or digit not taken, else none. An
// "&" of the caption itself is doubled so that it shows as itself.
QStringList withMnemonics(const QStringList& captions);

// The text of every menu and item of the table, by item name, as the menu bar shows it.
QHash<QString, QString> menuTexts();

// The keys an item has besides the one the table declares (Ctrl+Q for Close, Ctrl+C for Copy...).
// Never a key the table gives any item.
QList<QKeySequence> standardKeys(const QString& item);

} // namespace ed
