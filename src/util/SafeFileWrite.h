#pragma once
// Writing a whole file without ever costing its old content. Where the folder allows it, a new
// file is written and flushed next to the old one and then takes its place in one step, with the
// old file's owner, group and mode. A file that cannot be replaced that way (a read-only folder,
// an owner this user cannot give, several hard links, not a regular file) is written in place,
// after a flushed copy of its old content was put aside in the user's state folder.

#include <QByteArray>
#include <QString>

namespace ed {

// All of `bytes` into `path`; through a symbolic link, into the file the link names (the link
// stays). False with a one-line reason that names `path` and the system's cause; the old content
// is then whole in the file, or, if even putting it back failed, in the copy the reason names.
bool writeFileSafely(const QString& path, const QByteArray& bytes, QString& error);

// The system's text for an error number; a full device reads "No space left on the device".
QString systemErrorText(int errorNumber);

// Where an in-place write keeps the old content while it writes: a folder under the user's
// state folder ($XDG_STATE_HOME, else ~/.local/state), else the temporary folder.
QString inPlaceBackupFolder();

} // namespace ed
