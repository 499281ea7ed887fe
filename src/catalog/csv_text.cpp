#include "catalog/csv_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string>
#include <utility>

namespace kvtdruck::catalog {
namespace {

/// How much of a cell a message shows.
constexpr std::size_t kShownOfText = 60;
/// With which UTF-8 may begin (https://www.unicode.org/faq/utf_bom.html).
constexpr std::string_view kMark = "\xEF\xBB\xBF";

/// What the bytes 0x80 to 0x9F of Windows-1252 stand for; 0 where nothing
/// (https://www.unicode.org/Public/MAPPINGS/VENDORS/MICSFT/WINDOWS/CP1252.TXT).
constexpr std::array<char16_t, 32> kWindows1252{
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178,
};

/// The length of the UTF-8 sequence at the start of `text`, or 0 where it is none.
std::size_t sequenceLength(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned lead = byte(0);
    const std::size_t length = lead < 0x80                   ? 1
                               : lead >= 0xc2 && lead < 0xe0 ? 2
                               : lead >= 0xe0 && lead < 0xf0 ? 3
                               : lead >= 0xf0 && lead < 0xf5 ? 4
                                                             : 0;
    if (length == 0 || length > text.size())
        return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((byte(i) & 0xc0) != 0x80)
            return 0;
    return length;
}

/// Splits a file into lines and cells. Quoted cells may hold semicolons, line breaks and doubled quotes.
class Scanner {
  public:
    Scanner(std::string_view text, const std::string& file, std::size_t mostCells)
        : text_(text), file_(file), mostCells_(mostCells) {
        if (text_.starts_with(kMark))
            text_.remove_prefix(kMark.size());
    }

    std::vector<CsvLine> lines() {
        std::vector<CsvLine> result;
        while (position_ < text_.size()) {
            CsvLine line{lineNumber_, {}};
            do
                line.cells.push_back(cell(line.cells.size() + 1));
            while (take(';'));
            endLine(line.cells.size());
            const bool blank = line.cells.size() == 1 && line.cells[0].text.empty() && !line.cells[0].quoted;
            if (!blank)
                result.push_back(std::move(line));
        }
        return result;
    }

  private:
    CsvCell cell(std::size_t column) {
        const CsvPlace place{file_, lineNumber_, column};
        if (++cells_ > mostCells_)
            place.fail("Die Datei hat mehr als " + std::to_string(mostCells_) + " Felder.");
        while (peek() == ' ')
            ++position_;
        if (peek() == '"')
            return quotedCell(place);
        CsvCell result;
        while (position_ < text_.size() && peek() != ';' && peek() != '\n' && peek() != '\r')
            takeCharacter(result.text, place);
        result.text.erase(result.text.find_last_not_of(' ') + 1);
        return result;
    }

    CsvCell quotedCell(const CsvPlace& place) {
        CsvCell result{{}, true};
        ++position_;
        for (;;) {
            if (position_ == text_.size())
                place.fail("Das schließende Anführungszeichen fehlt.");
            if (peek() == '"' && !text_.substr(position_).starts_with("\"\""))
                break;
            if (peek() == '"')
                ++position_;
            takeCharacter(result.text, place);
        }
        ++position_;
        while (peek() == ' ')
            ++position_;
        if (position_ < text_.size() && peek() != ';' && peek() != '\n' && peek() != '\r')
            place.fail("Nach dem schließenden Anführungszeichen steht noch Text.");
        return result;
    }

    void takeCharacter(std::string& target, const CsvPlace& place) {
        const auto length = sequenceLength(text_.substr(position_));
        if (length == 0)
            place.fail("Das Zeichen ist kein UTF-8; bitte die Datei als UTF-8 speichern.");
        if (peek() == '\n')
            ++lineNumber_;
        target += text_.substr(position_, length);
        position_ += length;
    }

    void endLine(std::size_t column) {
        const CsvPlace place{file_, lineNumber_, column};
        take('\r');
        if (position_ < text_.size() && !take('\n'))
            place.fail("Ein einzelner Wagenrücklauf steht in der Zeile.");
        ++lineNumber_;
    }

    char peek() const { return position_ < text_.size() ? text_[position_] : '\0'; }
    bool take(char c) {
        const bool there = position_ < text_.size() && peek() == c;
        position_ += there ? 1 : 0;
        return there;
    }

    std::string_view text_;
    const std::string& file_;
    std::size_t position_ = 0;
    std::size_t lineNumber_ = 1;
    std::size_t mostCells_;
    std::size_t cells_ = 0;
};

// Cells are judged sign by sign: a regular expression of the library recurses for every sign of its input.

std::size_t countDigits(std::string_view text) {
    return std::min(text.find_first_not_of("0123456789"), text.size());
}

/// Takes the digits at the beginning of `text`; gives how many there were.
std::size_t takeDigits(std::string_view& text) {
    const std::size_t count = countDigits(text);
    text.remove_prefix(count);
    return count;
}

bool take(std::string_view& text, std::string_view anyOf) {
    const bool there = !text.empty() && anyOf.find(text[0]) != std::string_view::npos;
    text.remove_prefix(there ? 1 : 0);
    return there;
}

} // namespace

void CsvPlace::fail(const std::string& reason) const {
    throw ValuesError(file + ", Zeile " + std::to_string(line) + ", Spalte " + std::to_string(column) + ": " +
                      reason);
}

/// A file that has letters beyond ASCII in one of the two ways only is written in it. One that has both is damaged
/// UTF-8, which the reader of its lines tells with the place.
std::string csvText(std::string_view bytes) {
    bool isUtf8 = bytes.starts_with(kMark);
    String decoded;
    for (std::size_t i = 0; i < bytes.size() && !isUtf8; ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        const bool isOwn = byte >= 0x80 && byte < 0xA0;
        const char16_t letter = isOwn ? kWindows1252[byte - 0x80U] : char16_t(byte);
        isUtf8 = (isOwn && letter == 0) || sequenceLength(bytes.substr(i)) > 1;
        decoded += letter;
    }
    return isUtf8 ? std::string(bytes) : toUtf8(decoded);
}

std::vector<CsvLine> csvLines(std::string_view text, const std::string& file, std::size_t mostCells) {
    return Scanner(text, file, mostCells).lines();
}

std::string shownText(const std::string& text) {
    return text.substr(0, kShownOfText);
}

bool beginsAsNumber(std::string_view text) {
    take(text, "+-");
    return countDigits(text) > 0;
}

bool isGermanNumber(std::string_view text) {
    take(text, "+-");
    const std::size_t leading = takeDigits(text);
    if (leading == 0 || (leading > 3 && text.starts_with('.')))
        return false;
    while (take(text, "."))
        if (takeDigits(text) != 3)
            return false;
    if (take(text, ",") && takeDigits(text) == 0)
        return false;
    if (take(text, "eE")) {
        take(text, "+-");
        if (takeDigits(text) == 0)
            return false;
    }
    return text.empty();
}

bool looksLikeNumber(std::string_view text) {
    take(text, "+-");
    return text.find_first_not_of("0123456789.,") == std::string_view::npos &&
           text.find_first_of("0123456789") != std::string_view::npos;
}

std::optional<Date> germanDateIn(std::string_view text) {
    constexpr std::array<std::size_t, 3> kLongest = {2, 2, 4};
    std::array<int, 3> parts{};
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const std::size_t count = countDigits(text);
        if (count == 0 || count > kLongest[i] || (i == 2 && count != kLongest[i]))
            return std::nullopt;
        std::from_chars(text.data(), text.data() + count, parts[i]);
        text.remove_prefix(count);
        if (i < 2 && !take(text, "."))
            return std::nullopt;
    }
    constexpr int kFirstYear = 100; // of Automation's calendar
    return !text.empty() || parts[2] < kFirstYear ? std::nullopt : dayIfAny(parts[2], parts[1], parts[0]);
}

} // namespace kvtdruck::catalog
