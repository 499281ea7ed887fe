#include "cli/option_values.h"

#include "catalog/report_catalog.h"
#include "catalog/usage_error.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <ctime>
#include <optional>

namespace kvtdruck::cli {
namespace {

std::optional<std::int64_t> numberIn(std::string_view text) {
    std::int64_t number = 0;
    const auto* end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, number);
    return parsed.ec == std::errc() && parsed.ptr == end ? std::optional(number) : std::nullopt;
}

/// What stands between commas; a text without any is one part.
std::vector<std::string_view> separated(std::string_view text) {
    std::vector<std::string_view> parts;
    for (std::size_t begin = 0; begin <= text.size();) {
        const auto end = std::min(text.find(',', begin), text.size());
        parts.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return parts;
}

/// The largest whole number up to which a Double holds every one.
constexpr std::int64_t kLargestCompany = 9'007'199'254'740'992;

/// Minutes that the clocks here are ahead of UTC on `date`.
int localOffset(const druckwerk::PrintDate& date) {
    std::tm local{};
    local.tm_year = date.year - 1900;
    local.tm_mon = date.month - 1;
    local.tm_mday = date.day;
    local.tm_hour = date.hour;
    local.tm_min = date.minute;
    local.tm_sec = date.second;
    local.tm_isdst = -1;
    std::mktime(&local);
    return static_cast<int>(local.tm_gmtoff / 60);
}

/// Takes from the front of a value what it consists of.
class ValueScanner {
  public:
    explicit ValueScanner(std::string_view text) : rest_(text) {}

    bool isDone() const { return rest_.empty(); }

    bool take(char sign) {
        const bool taken = rest_.starts_with(sign);
        rest_.remove_prefix(taken ? 1 : 0);
        return taken;
    }

    /// As many digits as there are, up to `most`; less than `least` are no number.
    bool takeNumber(std::size_t least, std::size_t most, int& number) {
        const auto digits = std::min(rest_.find_first_not_of("0123456789"), std::min(rest_.size(), most));
        if (digits < least)
            return false;
        number = int(numberIn(rest_.substr(0, digits)).value_or(0));
        rest_.remove_prefix(digits);
        return true;
    }

  private:
    std::string_view rest_;
};

/// "31.12.2024" or "2024-12-31".
bool takeDay(ValueScanner& scanner, druckwerk::PrintDate& date) {
    auto iso = scanner;
    if (iso.takeNumber(4, 4, date.year)) {
        scanner = iso;
        return scanner.take('-') && scanner.takeNumber(2, 2, date.month) && scanner.take('-') &&
               scanner.takeNumber(2, 2, date.day);
    }
    return scanner.takeNumber(1, 2, date.day) && scanner.take('.') && scanner.takeNumber(1, 2, date.month) &&
           scanner.take('.') && scanner.takeNumber(4, 4, date.year);
}

/// "8:15", "08:15:30".
bool takeTime(ValueScanner& scanner, druckwerk::PrintDate& date) {
    return scanner.takeNumber(1, 2, date.hour) && scanner.take(':') && scanner.takeNumber(2, 2, date.minute) &&
           (!scanner.take(':') || scanner.takeNumber(2, 2, date.second));
}

/// "Z", "+01:00", "-0330"; the zone here where there is none.
bool takeZone(ValueScanner& scanner, druckwerk::PrintDate& date) {
    if (scanner.isDone()) {
        date.utcOffset = localOffset(date);
        return true;
    }
    if (scanner.take('Z')) {
        date.utcOffset = 0;
        return true;
    }
    constexpr int kLargestOffset = 14;
    const bool isBehind = scanner.take('-');
    int hours = 0;
    int minutes = 0;
    if ((!isBehind && !scanner.take('+')) || !scanner.takeNumber(2, 2, hours))
        return false;
    scanner.take(':');
    if (!scanner.takeNumber(2, 2, minutes) || hours > kLargestOffset || minutes >= 60)
        return false;
    date.utcOffset = (isBehind ? -1 : 1) * (hours * 60 + minutes);
    return true;
}

/// A day, and perhaps a time behind it, which may have a zone.
bool takeDate(ValueScanner& scanner, druckwerk::PrintDate& date) {
    if (!takeDay(scanner, date))
        return false;
    if (scanner.isDone())
        return takeZone(scanner, date);
    return (scanner.take(' ') || scanner.take('T')) && takeTime(scanner, date) && takeZone(scanner, date);
}

bool exists(const druckwerk::PrintDate& date) {
    const std::chrono::year_month_day day{std::chrono::year(date.year), std::chrono::month(unsigned(date.month)),
                                          std::chrono::day(unsigned(date.day))};
    return day.ok() && date.hour < 24 && date.minute < 60 && date.second < 60;
}

} // namespace

void refuse(const std::string& reason) {
    throw catalog::UsageError(reason);
}

std::int32_t wholeNumber(std::string_view option, const std::string& text, std::int32_t lowest,
                         std::int32_t highest) {
    const auto number = numberIn(text);
    if (!number || *number < lowest || *number > highest)
        refuse(std::string(option) + ": „" + text + "“ ist keine ganze Zahl von " + std::to_string(lowest) +
               " bis " + std::to_string(highest) + ".");
    return std::int32_t(*number);
}

std::vector<double> companiesIn(const std::string& text) {
    std::vector<double> companies;
    if (text == "alle")
        return companies;
    for (const auto part : separated(text)) {
        const auto number = numberIn(part);
        if (!number || *number < 0 || *number > kLargestCompany)
            refuse("--firma: „" + text + "“ ist keine Firmennummer; möglich sind 7, mehrere wie 1,7,9 und alle.");
        companies.push_back(double(*number));
    }
    return companies;
}

druckwerk::PrintDate currentDate() {
    const auto now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    return {local.tm_year + 1900,
            local.tm_mon + 1,
            local.tm_mday,
            local.tm_hour,
            local.tm_min,
            local.tm_sec,
            static_cast<int>(local.tm_gmtoff / 60)};
}

druckwerk::PrintDate dateIn(const std::string& text) {
    ValueScanner scanner(text);
    druckwerk::PrintDate date;
    if (!takeDate(scanner, date) || !scanner.isDone() || !exists(date))
        refuse("--druckdatum „" + text + "“ ist kein Datum wie 31.12.2024 oder 2024-12-31 08:15.");
    return date;
}

std::string pagesIn(const std::string& text) {
    const auto isPage = [](std::string_view page) {
        constexpr std::int64_t kLast = 999'999'999;
        const auto number = numberIn(page);
        return number && *number >= 1 && *number <= kLast && page.front() != '0';
    };
    for (const auto range : separated(text)) {
        const auto dash = range.find('-');
        if (!isPage(range.substr(0, dash)) || (dash != range.npos && !isPage(range.substr(dash + 1))))
            refuse("--seiten: „" + text + "“ ist kein Seitenbereich wie 1-3,7.");
    }
    return text;
}

Part partIn(const std::string& text) {
    const auto slash = text.find('/');
    const auto number = numberIn(text.substr(0, slash));
    const auto of = slash == std::string::npos ? std::nullopt : numberIn(text.substr(slash + 1));
    constexpr std::int64_t kMostParts = 1'000'000;
    if (!number || !of || *of < 1 || *of > kMostParts || *number < 1 || *number > *of)
        refuse("--teil: „" + text + "“ ist kein Teil wie 3/8.");
    return {std::int32_t(*number), std::int32_t(*of)};
}

std::string perhaps(std::string_view word, std::span<const std::string> words) {
    const auto nearest = catalog::nearestWord(word, words);
    return nearest ? " – gemeint ist vielleicht „" + *nearest + "“" : "";
}

} // namespace kvtdruck::cli
