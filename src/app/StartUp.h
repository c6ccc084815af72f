#pragma once
// Program start: the settings application name, the command line and the record of setting
// names, computed once and read everywhere.

#include <QString>

#include <array>

namespace ed {

// A text field of fixed width: shorter values are padded with spaces, longer ones cut.
template <int N> class FixedText {
public:
    FixedText() { chars_.fill(u' '); }
    FixedText& operator=(const QString& value) {
        chars_.fill(u' ');
        for (int i = 0; i < N && i < value.size(); ++i)
            chars_[size_t(i)] = value[i].unicode();
        return *this;
    }
    QString str() const { return QString::fromUtf16(chars_.data(), N); }
    operator QString() const { return str(); }
    static constexpr int width() { return N; }

private:
    std::array<char16_t, N> chars_;
};

struct RegNamesRecord {
    FixedText<7> AppPath;
    FixedText<8> ModuleName;
    FixedText<10> InFilePath;
    FixedText<11> OutFilePath;
    FixedText<15> RegKeyfrmEdit;
    FixedText<5> Ruler;
    FixedText<4> Font;
    FixedText<8> PrvValue;
    FixedText<13> EmailSettings;
    FixedText<8> QuickDir;
    FixedText<8> UserName;
    FixedText<8> Password;
    FixedText<10> Attachment;
    FixedText<7> Subject;
    FixedText<17> IncludeAttachment;
    FixedText<11> PreviousDir;
    FixedText<9> ViewDnDTB;
};

void fillRegNames(RegNamesRecord& names);

// "(" + executable name + " - " + user + ")" + "/" + program folder with every "/" made ".".
QString buildRegKeyAppName(const QString& exeName, const QString& user, const QString& folder);

// The login name: USERNAME when set, else USER.
QString currentUserName();

// Everything the start-up procedure fills in, shared by the whole program.
struct StartUpState {
    QString RegKeyAppName;
    QString CommandLine;
    RegNamesRecord RegNames;
    bool StartUpComplete = false;
    QString programFolder; // the folder the executable lives in
    QString exeName;       // executable name without extension
};

// Steps 1 to 4 of start-up: name, command line, setting names, the complete flag.
// `exePath` is the full path of the executable; `arguments` the command-line words after it.
void runStartUp(StartUpState& state, const QString& exePath, const QStringList& arguments);

} // namespace ed
