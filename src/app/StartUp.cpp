#include "app/StartUp.h"

#include <QFileInfo>
#include <QStringList>

namespace ed {

void fillRegNames(RegNamesRecord& n) {
    n.AppPath = QStringLiteral("AppPath");
    n.ModuleName = QStringLiteral("mStartUp");
    n.InFilePath = QStringLiteral("InFilePath");
    n.OutFilePath = QStringLiteral("OutFilePath");
    n.RegKeyfrmEdit = QStringLiteral("Reg Key frmEdit");
    n.Ruler = QStringLiteral("Ruler");
    n.Font = QStringLiteral("Font");
    n.PrvValue = QStringLiteral("PrvValue");
    n.EmailSettings = QStringLiteral("EmailSettings");
    n.QuickDir = QStringLiteral("QuickDir");
    n.UserName = QStringLiteral("UserName");
    n.Password = QStringLiteral("Password");
    n.Attachment = QStringLiteral("Attachment");
    n.Subject = QStringLiteral("Subject");
    n.IncludeAttachment = QStringLiteral("IncludeAttachment");
    n.PreviousDir = QStringLiteral("PreviousDir");
    n.ViewDnDTB = QStringLiteral("ViewDnDTB");
}

QString buildRegKeyAppName(const QString& exeName, const QString& user, const QString& folder) {
    QString p = folder;
    p.replace(u'/', u'.');
    p.replace(u'\\', u'.');
    return u'(' + exeName + QStringLiteral(" - ") + user + QStringLiteral(")/") + p;
}

QString currentUserName() {
    // USERNAME is set on some systems only; on this one the login name is in USER.
    const QByteArray name = qgetenv("USERNAME");
    return QString::fromLocal8Bit(name.isEmpty() ? qgetenv("USER") : name);
}

void runStartUp(StartUpState& s, const QString& exePath, const QStringList& arguments) {
    const QFileInfo exe(exePath);
    s.programFolder = exe.absolutePath();
    s.exeName = exe.completeBaseName();
    s.RegKeyAppName = buildRegKeyAppName(s.exeName, currentUserName(), s.programFolder);
    s.CommandLine = arguments.join(u' ').remove(u'"');
    fillRegNames(s.RegNames);
    s.StartUpComplete = true;
}

} // namespace ed
