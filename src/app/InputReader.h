#pragma once
// Reads a whole input (a file, standard input, a device or a pipe) into memory with read(),
// never mapping it, so a file cut short meanwhile cannot bring the reader down, and stops with a
// clear error once the input outgrows what this machine can hold.

#include <QByteArray>
#include <QString>

namespace ed {

// The most bytes an input may have: a share of the memory available now, since a document is
// held several times over (bytes, decoded text, the result) while commands run.
qint64 inputByteLimit();

// The bytes of `fd` up to its end. `name` names the input in `error`.
bool readAllBounded(int fd, const QString& name, qint64 limit, QByteArray& bytes, QString& error);

} // namespace ed
