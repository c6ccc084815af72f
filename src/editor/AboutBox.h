#pragma once
#include <QString>

class QWidget;

namespace ed {
// The About box: title, version, and links to the settings file and the error log.
QWidget* makeAboutBox(QWidget* parent, const QString& settingsFile, const QString& logFile);
} // namespace ed
