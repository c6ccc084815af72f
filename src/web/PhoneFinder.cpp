#include "web/PhoneFinder.h"

#include <QHash>
#include <QSet>

#include <phonenumbers/geocoding/phonenumber_offline_geocoder.h>
#include <phonenumbers/phonenumbermatch.h>
#include <phonenumbers/phonenumbermatcher.h>
#include <phonenumbers/phonenumberutil.h>

#include <algorithm>
#include <string>

namespace ed::web {

namespace pn = i18n::phonenumbers;

namespace {

constexpr int kNorthAmerica = 1;
// Candidates the matcher tries on one line before it gives up on the rest of that line.
constexpr int kMaxTriesPerLine = 100000;

const pn::PhoneNumberOfflineGeocoder& geocoder() {
    static const pn::PhoneNumberOfflineGeocoder instance;
    return instance;
}

QString fromStd(const std::string& s) {
    return QString::fromUtf8(s.data(), qsizetype(s.size()));
}

bool hasDigit(QStringView line) {
    return std::any_of(line.begin(), line.end(), [](QChar c) { return c.isDigit(); });
}

bool containsFax(const std::string& s, size_t from, size_t to) {
    for (size_t i = from; i + 3 <= to; ++i) {
        if ((s[i] | 0x20) == 'f' && (s[i + 1] | 0x20) == 'a' && (s[i + 2] | 0x20) == 'x')
            return true;
    }
    return false;
}

FoundPhoneNumber describe(const pn::PhoneNumber& number) {
    const pn::PhoneNumberUtil& util = *pn::PhoneNumberUtil::GetInstance();
    FoundPhoneNumber found;
    std::string text;
    util.Format(number, pn::PhoneNumberUtil::E164, &text);
    found.key = fromStd(text);
    if (number.has_extension())
        found.key += QStringLiteral(";ext=") + fromStd(number.extension());
    util.Format(number,
                number.country_code() == kNorthAmerica ? pn::PhoneNumberUtil::NATIONAL
                                                       : pn::PhoneNumberUtil::INTERNATIONAL,
                &text);
    found.display = fromStd(text);
    found.place = fromStd(geocoder().GetDescriptionForNumber(number, icu::Locale("en", "US")));
    return found;
}

// The numbers of one line of text.
void findInLine(QStringView line, std::vector<FoundPhoneNumber>& out) {
    if (!hasDigit(line))
        return;
    const std::string utf8 = line.toUtf8().toStdString();
    pn::PhoneNumberMatcher matcher(*pn::PhoneNumberUtil::GetInstance(), utf8, "US",
                                   pn::PhoneNumberMatcher::VALID, kMaxTriesPerLine);
    pn::PhoneNumberMatch match;
    size_t previousEnd = 0;
    while (matcher.HasNext() && matcher.Next(&match)) {
        FoundPhoneNumber found = describe(match.number());
        const size_t start = size_t(std::max(match.start(), 0));
        found.fax = containsFax(utf8, previousEnd, std::min(start, utf8.size()));
        previousEnd = std::max(previousEnd, size_t(std::max(match.end(), 0)));
        out.push_back(std::move(found));
    }
}

} // namespace

std::vector<FoundPhoneNumber> findPhoneNumbers(QStringView text) {
    std::vector<FoundPhoneNumber> out;
    qsizetype lineStart = 0;
    for (qsizetype i = 0; i <= text.size(); ++i) {
        if (i < text.size() && text[i] != u'\r' && text[i] != u'\n')
            continue;
        findInLine(text.mid(lineStart, i - lineStart), out);
        if (i + 1 < text.size() && text[i] == u'\r' && text[i + 1] == u'\n')
            ++i;
        lineStart = i + 1;
    }
    return out;
}

QStringList phoneNumberLines(const QStringList& texts, bool fax) {
    std::vector<FoundPhoneNumber> all;
    for (const QString& text : texts) {
        std::vector<FoundPhoneNumber> found = findPhoneNumbers(text);
        std::move(found.begin(), found.end(), std::back_inserter(all));
    }
    QSet<QString> faxNumbers;
    for (const FoundPhoneNumber& n : all) {
        if (n.fax)
            faxNumbers.insert(n.key);
    }
    QSet<QString> listed;
    QStringList lines;
    for (const FoundPhoneNumber& n : all) {
        if (faxNumbers.contains(n.key) != fax || listed.contains(n.key))
            continue;
        listed.insert(n.key);
        lines << n.display + u'\t' + n.place;
    }
    return lines;
}

} // namespace ed::web
