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
// Candidates the matcher tries in one piece of a line before it gives up on the rest of it.
constexpr int kMaxTriesPerPiece = 10000;

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

bool isAsciiLetter(char c) {
    return (c | 0x20) >= 'a' && (c | 0x20) <= 'z';
}

// The matcher's work grows with the square of the text it is given, so a long line is read in
// pieces of about kPiece bytes, cut after a letter (which a number does not hold) where one is
// near the end of the piece, else anywhere between two characters.
constexpr size_t kPiece = 1024;

size_t pieceEnd(const std::string& line, size_t from) {
    if (line.size() - from <= kPiece)
        return line.size();
    const size_t limit = from + kPiece;
    for (size_t p = limit; p > from + kPiece / 2; --p) {
        if (isAsciiLetter(line[p - 1]) && (line[p] < '0' || line[p] > '9'))
            return p;
    }
    size_t p = limit;
    while (p > from + 1 && (static_cast<unsigned char>(line[p]) & 0xC0) == 0x80)
        --p; // not inside a character
    return p;
}

// The numbers of one line of text.
void findInLine(QStringView line, std::vector<FoundPhoneNumber>& out) {
    if (!hasDigit(line))
        return;
    const std::string utf8 = line.toUtf8().toStdString();
    const pn::PhoneNumberUtil& util = *pn::PhoneNumberUtil::GetInstance();
    size_t previousEnd = 0;
    for (size_t from = 0; from < utf8.size();) {
        const size_t to = pieceEnd(utf8, from);
        const std::string piece = utf8.substr(from, to - from);
        pn::PhoneNumberMatcher matcher(util, piece, "US", pn::PhoneNumberMatcher::VALID,
                                       kMaxTriesPerPiece);
        pn::PhoneNumberMatch match;
        while (matcher.HasNext() && matcher.Next(&match)) {
            FoundPhoneNumber found = describe(match.number());
            const size_t start = from + size_t(std::max(match.start(), 0));
            found.fax = containsFax(utf8, previousEnd, std::min(start, utf8.size()));
            previousEnd = std::max(previousEnd, from + size_t(std::max(match.end(), 0)));
            out.push_back(std::move(found));
        }
        from = to;
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
