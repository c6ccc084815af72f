#include "editor/MenuTable.h"

#include "app/Trap.h"
#include "editor/ClipboardCommands.h"
#include "editor/DocumentCommands.h"
#include "editor/SearchCommands.h"
#include "editor/ViewCommands.h"
#include "textcmds/Case.h"
#include "textcmds/CodeArray.h"
#include "textcmds/Convert.h"
#include "textcmds/CountsDates.h"
#include "textcmds/Formatting.h"
#include "textcmds/LineFilters.h"
#include "textcmds/Positional.h"
#include "textcmds/PrefixSuffix.h"
#include "textcmds/ReOrder.h"
#include "textcmds/Whitespace.h"

#include <QHash>

#include <stdexcept>

// This table is built twice: into Editor-full with every handler, and into Editor, the program
// the user starts, with the handlers marked FULL() left out. Editor then knows every item but
// hands the ones so marked to Editor-full, together with the window, so it needs none of the
// window's, the browser's or mail's libraries.
#ifdef EDITOR_TEXT_ONLY
#define FULL(handler) runInFullProgram
#else
#include "editor/HistoryCommands.h"
#include "editor/Placement.h"
#include "mail/SendMailCommand.h"
#include "web/BrowserCommands.h"
#include "web/DownloadCommand.h"
#include "web/HarvestCommands.h"
#include "web/SiteList.h"
#include "web/WebMenuCommands.h"
#define FULL(handler) handler
#endif

namespace ed {

namespace {

// Stands for a handler of Editor-full in Editor's table; Editor never runs it.
void runInFullProgram(CommandContext&) {
    throw std::logic_error("this command runs in Editor-full");
}

constexpr unsigned M = kMenu;
constexpr unsigned S = kSeparator;
constexpr unsigned W = kWindowOnly;

// Bar order, then each menu's items in order.
const std::vector<MenuItemDecl> kItems = {
    // File
    {"mnuFile", "File", nullptr, "", M, nullptr, nullptr, nullptr},
    {"mnuNew", "New", "mnuFile", "", kNone, mnuNew_Click, nullptr, nullptr},
    {"mnuOpen", "Open", "mnuFile", "", W, mnuOpen_Click, nullptr, nullptr},
    {"mnuSave", "Save", "mnuFile", "Ctrl+S", W, mnuSave_Click, nullptr, nullptr},
    {"mnuSaveAs", "Save As", "mnuFile", "", W, mnuSaveAs_Click, nullptr, nullptr},
    {"mnuSaveAsRTF", "Save RTF", "mnuFile", "", W, mnuSaveAsRTF_Click, nullptr, nullptr},
    {"mnuOpenSelect", "Open (Select Dir)", "mnuFile", "", W, mnuOpenSelect_Click, nullptr, nullptr},
    {"sep4", "-", "mnuFile", "", S, nullptr, nullptr, nullptr},
    {"mnuDelete", "Delete", "mnuFile", "", W, mnuDelete_Click, nullptr, nullptr},
    {"mnuSeperator0", "-", "mnuFile", "", S, nullptr, nullptr, nullptr},
    {"mnuLnk", "", "mnuFile", "", kLinkList | W, nullptr, nullptr, nullptr},
    {"mnuSeperator1", "-", "mnuFile", "", S, nullptr, nullptr, nullptr},
    {"mnuExit", "Close", "mnuFile", "Ctrl+X", W, mnuExit_Click, nullptr, nullptr},
    // Edit
    {"mnuEdit", "Edit", nullptr, "", M, nullptr, nullptr, nullptr},
    {"mnuUndo", "Undo", "mnuEdit", "Ctrl+Z", kDisabled | W, FULL(mnuUndo_Click), nullptr, nullptr},
    {"mnuRedo", "Redo", "mnuEdit", "Ctrl+Y", kDisabled | W, FULL(mnuRedo_Click), nullptr, nullptr},
    {"mnuSepUndo", "-", "mnuEdit", "", S, nullptr, nullptr, nullptr},
    {"mnuCut", "Cut", "mnuEdit", "", kNone, mnuCut_Click, nullptr, nullptr},
    {"mnuCopy", "Copy", "mnuEdit", "", kNone, mnuCopy_Click, nullptr, nullptr},
    {"mnuPaste", "Paste", "mnuEdit", "", kNone, mnuPaste_Click, nullptr, nullptr},
    {"mnuSelectAll", "Select All", "mnuEdit", "", kNone, mnuSelectAll_Click, nullptr, nullptr},
    {"mnuSep1", "-", "mnuEdit", "", S, nullptr, nullptr, nullptr},
    {"mnuChangeFont", "Change Font", "mnuEdit", "", W, mnuChangeFont_Click, nullptr, nullptr},
    {"sep2", "-", "mnuEdit", "", S, nullptr, nullptr, nullptr},
    {"mnuNoWrap", "No Word Wrap", "mnuEdit", "", kCheckable | W, mnuNoWrap_Click, nullptr, nullptr},
    // Search
    {"mnuSearchMain", "Search", nullptr, "", M, nullptr, nullptr, nullptr},
    {"mnuSearch", "Find...", "mnuSearchMain", "Ctrl+F", kNone, mnuSearch_Click, nullptr, nullptr},
    {"mnuFindNext", "Find Next", "mnuSearchMain", "F3", kDisabled, mnuFindNext_Click, nullptr,
     nullptr},
    {"mnuReplace", "Replace...", "mnuSearchMain", "Ctrl+H", kNone, mnuReplace_Click, nullptr,
     nullptr},
    // View
    {"mnuView", "View", nullptr, "", M, nullptr, nullptr, nullptr},
    {"sep12", "-", "mnuView", "", S, nullptr, nullptr, nullptr},
    {"mnuKeepOnTop", "Keep On Top", "mnuView", "", kCheckable | W, FULL(mnuKeepOnTop_Click),
     nullptr, nullptr},
    // Web
    {"mnuWeb", "Web", nullptr, "", M, nullptr, nullptr, nullptr},
    {"mnuSendAsEmail", "Send Email", "mnuWeb", "", W, FULL(mnuSendAsEmail_Click), nullptr, nullptr},
    {"mnuNaviagetTo", "Navigate to", "mnuWeb", "", kNone, FULL(mnuNaviagetTo_Click), nullptr,
     nullptr},
    {"mnuSearchGoogle", "Search Google", "mnuWeb", "", kNone, FULL(mnuSearchGoogle_Click), nullptr,
     nullptr},
    {"mnuNavigateToSel", "Navigate To Sel", "mnuWeb", "", kNone, FULL(mnuNavigateToSel_Click),
     nullptr, nullptr},
    {"mnusep27", "-", "mnuWeb", "", S, nullptr, nullptr, nullptr},
    {"mnuPause", "Pause List Nav", "mnuWeb", "F1", kDisabled | kCheckable | W, FULL(mnuPause_Click),
     nullptr, nullptr},
    {"mnuNextItem", "Next Item", "mnuWeb", "F2", kDisabled | W, FULL(mnuNextItem_Click), nullptr,
     nullptr},
    {"mnuChangeTiming", "Change timing", "mnuWeb", "", kDisabled | W, FULL(mnuChangeTiming_Click),
     nullptr, nullptr},
    {"mnuNavigateSiteList", "Navigate Site List", "mnuWeb", "", W, FULL(mnuNavigateSiteList_Click),
     nullptr, nullptr},
    {"mnusep24", "-", "mnuWeb", "", S, nullptr, nullptr, nullptr},
    {"mnuSaveWebPage", "Save web page", "mnuWeb", "", kNone, FULL(mnuSaveWebPage_Click), nullptr,
     nullptr},
    {"mnusep8", "-", "mnuWeb", "", S, nullptr, nullptr, nullptr},
    {"mnuDownloadFiles", "Download Files", "mnuWeb", "", kNone, FULL(mnuDownloadFiles_Click),
     nullptr, nullptr},
    {"mnusep23", "-", "mnuWeb", "", S, nullptr, nullptr, nullptr},
    {"mnuLoad", "Load From IE", "mnuWeb", "", M, nullptr, nullptr, nullptr},
    {"mnuGetBrowserText", "Text", "mnuLoad", "", kNone, FULL(mnuGetBrowserText_Click),
     "Sub mnuGetBrowserText_Click", nullptr},
    {"mnuGetBrowserHtml", "Html", "mnuLoad", "", kNone, FULL(mnuGetBrowserHtml_Click),
     "Sub mnuGetBrowserHtml_Click", nullptr},
    {"mnuGetBrowserLinks", "Links", "mnuLoad", "", kNone, FULL(mnuGetBrowserLinks_Click),
     "Sub mnuGetBrowserLinks_Click", nullptr},
    {"mnuGetBrowserEmail", "Email", "mnuLoad", "", kNone, FULL(mnuGetBrowserEmail_Click), nullptr,
     nullptr},
    {"mnuGetFaxNumbers", "Fax #s", "mnuLoad", "", kNone, FULL(mnuGetFaxNumbers_Click), nullptr,
     nullptr},
    {"mnuGetPhoneNumbers", "Phone #s", "mnuLoad", "", kNone, FULL(mnuGetPhoneNumbers_Click),
     nullptr, nullptr},
    {"mnuAnyTagContent", "Any Tag Content", "mnuLoad", "", kNone, FULL(mnuAnyTagContent_Click),
     nullptr, nullptr},
    {"mnuGetBrowserLinksConditional", "Links Conditionally", "mnuLoad", "", kNone,
     FULL(mnuGetBrowserLinksConditional_Click), nullptr, nullptr},
    // Tools
    {"mnuTools", "Tools", nullptr, "", M, nullptr, nullptr, nullptr},
    {"mnuSetDefaultDir", "Set (Select Dir)", "mnuTools", "", W, mnuSetDefaultDir_Click, nullptr,
     nullptr},
    {"mnuExplorer", "Open Explorer", "mnuTools", "", kNone, FULL(mnuExplorer_Click), nullptr,
     nullptr},
    {"mnuWebsites", "Open In Notepad", "mnuTools", "", W, mnuWebsites_Click, nullptr, nullptr},
    {"mnuLoadinwebbrowser", "Open In Default Editor", "mnuTools", "", kNone,
     FULL(mnuLoadinwebbrowser_Click), nullptr, nullptr},
    {"sep7", "-", "mnuTools", "", S, nullptr, nullptr, nullptr},
    {"mnuGet", "Get", "mnuTools", "", M, nullptr, nullptr, nullptr},
    {"mnuShowLineCount", "Line Count", "mnuGet", "", kNone, mnuShowLineCount_Click, nullptr,
     nullptr},
    {"mnuGetCharCount", "Char Count", "mnuGet", "", kNone, mnuGetCharCount_Click,
     "mnuShowLineCount_Click", nullptr},
    {"mnuAdd", "Add", "mnuTools", "", M, nullptr, nullptr, nullptr},
    {"mnuAddPrefix", "Prefix", "mnuAdd", "", kNone, mnuAddPrefix_Click, nullptr, nullptr},
    {"mnuAddSuffix", "Suffix", "mnuAdd", "", kNone, mnuAddSuffix_Click, nullptr, nullptr},
    {"mnuInsert", "Insert", "mnuTools", "", M, nullptr, nullptr, nullptr},
    {"mnuInsertTime", "Time", "mnuInsert", "", kNone, mnuInsertTime_Click,
     "mnuInsertDateTime_Click", nullptr},
    {"mnuInsertDate", "Date", "mnuInsert", "", kNone, mnuInsertDate_Click, nullptr, nullptr},
    {"mnuInsertCRAt", "CR At", "mnuInsert", "", kNone, mnuInsertCRAt_Click,
     "Sub mnuInsertCRAt_Click", nullptr},
    {"mnuInsertTextAt", "Text At", "mnuInsert", "", kNone, mnuInsertTextAt_Click, nullptr, nullptr},
    {"mnuInsertBlankLines", "Blank Lines", "mnuInsert", "F4", kNone, mnuInsertBlankLines_Click,
     "Sub mnuInsertBlankLines_Click", nullptr},
    {"mnuInsertTextFromFile", "Text From File", "mnuInsert", "", W, mnuInsertTextFromFile_Click,
     nullptr, nullptr},
    {"mnuInsertDateTime", "Date and Time", "mnuInsert", "", kNone, mnuInsertDateTime_Click, nullptr,
     nullptr},
    {"mnuLoadClipBoardText", "ClipBoard Text", "mnuInsert", "", kNone, mnuLoadClipBoardText_Click,
     nullptr, nullptr},
    {"mnuConvert", "Convert", "mnuTools", "", M, nullptr, nullptr, nullptr},
    {"mnuAsciiToHex", "Ascii To Hex", "mnuConvert", "", kNone, mnuAsciiToHex_Click, nullptr,
     nullptr},
    {"mnuHexToAscii", "Hex To Ascii", "mnuConvert", "", kNone, mnuHexToAscii_Click, nullptr,
     nullptr},
    {"mnuShowASCII", "Char To ASCII", "mnuConvert", "", kNone, mnuShowASCII_Click, nullptr,
     nullptr},
    {"mnuRemove", "Remove", "mnuTools", "", M, nullptr, nullptr, nullptr},
    {"mnuRemoveCRLF", "CRLF", "mnuRemove", "", kNone, mnuRemoveCRLF_Click, nullptr, nullptr},
    {"mnuRemoveRepeats", "Repeats", "mnuRemove", "", kNone, mnuRemoveRepeats_Click, nullptr,
     nullptr},
    {"mnuRemoveLeftSide", "Left Side", "mnuRemove", "", kNone, mnuRemoveLeftSide_Click, nullptr,
     nullptr},
    {"mnuRemoveRightSide", "Right Side", "mnuRemove", "", kNone, mnuRemoveRightSide_Click, nullptr,
     nullptr},
    {"mnuRemoveFormatting", "Formatting", "mnuRemove", "", kNone, mnuRemoveFormatting_Click,
     nullptr, nullptr},
    {"mnuByNumericValue", "By Numeric Value", "mnuRemove", "", kNone, mnuByNumericValue_Click,
     nullptr, nullptr},
    {"mnuRemoveLinesContainingText", "Lines Containing Text", "mnuRemove", "", kNone,
     mnuRemoveLinesContainingText_Click, nullptr, nullptr},
    {"mnuRemoveLinesNotContainingText", "Lines Not Containing Text", "mnuRemove", "", kNone,
     mnuRemoveLinesNotContainingText_Click, nullptr, nullptr},
    {"mnuReOrder", "ReOrder", "mnuTools", "", M, nullptr, nullptr, nullptr},
    {"mnuGetHtmlTags", "Get Html Tags", "mnuReOrder", "", kNone, mnuGetHtmlTags_Click, nullptr,
     nullptr},
    {"mnuIndentParagraphs", "Indent Paragraphs", "mnuReOrder", "", kHidden | W, nullptr, nullptr,
     nullptr},
    {"mnuSwitchRearToFront", "Switch Rear To Front", "mnuReOrder", "", kNone,
     mnuSwitchRearToFront_Click, nullptr, nullptr},
    {"mnuCreateCodeArrayOfWordList", "Code Array Of Word List", "mnuReOrder", "", kNone,
     mnuCreateCodeArrayOfWordList_Click, nullptr, nullptr},
    {"mnuReNumberArrayElements", "Renumber Array elements", "mnuReOrder", "", kNone,
     mnuReNumberArrayElements_Click, nullptr, nullptr},
    {"mnuTurnToStream", "Delimited To Text Stream", "mnuReOrder", "", kNone, mnuTurnToStream_Click,
     nullptr, nullptr},
    {"mnuDelimitRunningText", "Text Stream To Delimited", "mnuReOrder", "", kNone,
     mnuDelimitRunningText_Click, nullptr, nullptr},
    {"mnuCapitalization", "Capitalization", "mnuTools", "", M, nullptr, nullptr, nullptr},
    {"mnuFloatFont", "Float Font", "mnuCapitalization", "", kNone, mnuFloatFont_Click, nullptr,
     nullptr},
    {"mnuConvertToUpperCase", "To Upper Case", "mnuCapitalization", "", kNone,
     mnuConvertToUpperCase_Click, nullptr, nullptr},
    {"mnuConvertToLowerCase", "To Lower Case", "mnuCapitalization", "", kNone,
     mnuConvertToLowerCase_Click, nullptr, nullptr},
    {"mnuConvertToProperCase", "To Proper Case", "mnuCapitalization", "", kNone,
     mnuConvertToProperCase_Click, nullptr, nullptr},
    {"mnuConvertToCrippledText", "To Crippled Text", "mnuCapitalization", "", kNone,
     mnuConvertToCrippledText_Click, nullptr, nullptr},
    {"mnuCapitalizeEachWord", "Capitalize Words", "mnuCapitalization", "", kNone,
     mnuCapitalizeEachWord_Click, nullptr, nullptr},
    {"mnuSpaces", "Spaces", "mnuTools", "", M, nullptr, nullptr, nullptr},
    {"mnuRemoveAllSpaces", "Remove all spaces", "mnuSpaces", "", kNone, mnuRemoveAllSpaces_Click,
     nullptr, nullptr},
    {"mnuTrimSpaces", "Remove all blank lines", "mnuSpaces", "", kNone, mnuTrimSpaces_Click,
     nullptr, nullptr},
    {"mnuCnvDblSpcToSingle", "Double spaces to single", "mnuSpaces", "", kNone,
     mnuCnvDblSpcToSingle_Click, nullptr, nullptr},
    {"mnuTrimLeadingAndTrailingSpaces", "Trim leading and trailing spaces", "mnuSpaces", "", kNone,
     mnuTrimLeadingAndTrailingSpaces_Click, nullptr, nullptr},
    {"mnuReplaceDoubleBlankLineWithSingle", "Replace multiple blank lines with single", "mnuSpaces",
     "", kNone, mnuReplaceDoubleBlankLineWithSingle_Click, nullptr, nullptr},
    // Window (never shown)
    {"mnuWindow", "Window", nullptr, "", M | kHidden, nullptr, nullptr, nullptr},
    {"mnuTileVerticle", "Tile Verticle", "mnuWindow", "", W, nullptr, nullptr, nullptr},
    {"mnuTileHorizontal", "Tile Horizontal", "mnuWindow", "", W, nullptr, nullptr, nullptr},
    {"mnuCascade", "Casade", "mnuWindow", "", W, nullptr, nullptr, nullptr},
    // Help
    {"mnuHelp", "Help", nullptr, "", M, nullptr, nullptr, nullptr},
    {"mnuAbout", "About", "mnuHelp", "", W, mnuAbout_Click, nullptr, nullptr},
};

const QHash<QString, const MenuItemDecl*>& index() {
    static const QHash<QString, const MenuItemDecl*> idx = [] {
        QHash<QString, const MenuItemDecl*> h;
        for (const MenuItemDecl& d : kItems)
            h.insert(QString::fromLatin1(d.name), &d);
        return h;
    }();
    return idx;
}

} // namespace

const std::vector<MenuItemDecl>& menuItems() {
    return kItems;
}

const MenuItemDecl* findMenuItem(const QString& name) {
    return index().value(name, nullptr);
}

QString batchName(const MenuItemDecl& item) {
    QString n = QString::fromLatin1(item.name);
    if (n.startsWith(QLatin1String("mnu")))
        n.remove(0, 3);
    return n;
}

const MenuItemDecl* findByBatchName(const QString& name) {
    const MenuItemDecl* d = findMenuItem(QStringLiteral("mnu") + name);
    return d && isCommand(*d) ? d : nullptr;
}

QString trapLabel(const MenuItemDecl& item) {
    return item.label ? QString::fromLatin1(item.label)
                      : QString::fromLatin1(item.name) + QStringLiteral("_Click");
}

QString trapModule(const MenuItemDecl& item) {
    return QString::fromLatin1(item.module ? item.module : "frmEdit");
}

bool isCommand(const MenuItemDecl& item) {
    return !(item.flags & (kMenu | kSeparator | kLinkList));
}

bool runsInFullProgram(const MenuItemDecl& item) {
    return item.handler == runInFullProgram;
}

bool availableInBatch(const MenuItemDecl& item) {
    return isCommand(item) && item.handler && !(item.flags & kWindowOnly);
}

bool runMenuItem(const MenuItemDecl& item, CommandContext& ctx) {
    if (!item.handler)
        return true;
    try {
        item.handler(ctx);
        return true;
    } catch (const std::exception& e) {
        ctx.log.logError(trapModule(item), trapLabel(item), describe(e));
        return false;
    }
}

} // namespace ed
