#include "editor/AboutBox.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QLabel>
#include <QUrl>
#include <QVBoxLayout>

namespace ed {

namespace {
QString link(const QString& path) {
    const QString abs = QFileInfo(path).absoluteFilePath();
    return QStringLiteral("<a href=\"%1\">%2</a>")
        .arg(QUrl::fromLocalFile(abs).toString().toHtmlEscaped(), abs.toHtmlEscaped());
}
} // namespace

QWidget* makeAboutBox(QWidget* parent, const QString& settingsFile, const QString& logFile) {
    auto* dlg = new QDialog(parent);
    dlg->setObjectName(QStringLiteral("frmAbout"));
    dlg->setWindowTitle(QStringLiteral("About Editor"));
    auto* layout = new QVBoxLayout(dlg);
    auto* text = new QLabel(dlg);
    text->setTextFormat(Qt::RichText);
    text->setOpenExternalLinks(true);
    text->setTextInteractionFlags(Qt::TextBrowserInteraction);
    text->setText(QStringLiteral("<h3>Editor</h3><p>Version %1</p><p>A text workbench: line-wise "
                                 "transformations, search and replace, and page content from a "
                                 "running browser.</p><p>Settings: %2</p><p>Error log: %3</p>")
                      .arg(QStringLiteral(EDITOR_VERSION), link(settingsFile), link(logFile)));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, dlg);
    QObject::connect(buttons, &QDialogButtonBox::accepted, dlg, &QDialog::accept);
    layout->addWidget(text);
    layout->addWidget(buttons);
    return dlg;
}

} // namespace ed
