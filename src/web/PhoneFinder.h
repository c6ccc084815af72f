#pragma once
// Finding phone and fax numbers in the text of a page. Numbers are found, validated, formatted
// and placed by the phone-number library: a number without a country code is read as North
// American, one written with "+" and a country code is found for every country.

#include <QString>
#include <QStringList>
#include <QStringView>

#include <vector>

namespace ed::web {

struct FoundPhoneNumber {
    QString key;      // the full international value ("+12125550142"), the same however written
    QString display;  // "(212) 555-0142" for North America, else "+44 20 7946 0958"
    QString place;    // where the number belongs, in English ("New York, NY"); may be ""
    bool fax = false; // "fax" stands between the previous number on its line and this one
};

// Every valid number in `text`, in order of appearance, repeats kept.
std::vector<FoundPhoneNumber> findPhoneNumbers(QStringView text);

// The lines of the phone list ("display<TAB>place") of `texts` read in order, each number
// once. With `fax` the fax numbers; without it every other number (a number labelled as a fax
// number anywhere is left out).
QStringList phoneNumberLines(const QStringList& texts, bool fax);

} // namespace ed::web
