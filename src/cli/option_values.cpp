#include "cli/option_values.h"

#include "catalog/report_catalog.h"
#include "catalog/usage_error.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <ctime>
#include <optional>
#include <regex>

namespace kvtdruck::cli {
namespace {

std::optional<std::int64_t> numberIn(std::string_view text) {
    std::int64_t number = 0;
    const auto* end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, number);
    return parsed.ec == std::errc() && parsed.ptr == end ? std::optional(number) : std::nullopt;
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

/// "Z", "+01:00", "-0330"; the zone here where there is none.
int offsetIn(const std::string& text, const druckwerk::PrintDate& date) {
    if (text.empty())
        return localOffset(date);
    if (text == "Z")
        return 0;
    const int minutes = std::stoi(text.substr(1, 2)) * 60 + std::stoi(text.substr(text.size() - 2));
    return text.front() == '-' ? -minutes : minutes;
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
    for (std::size_t begin = 0; begin <= text.size();) {
        const auto end = std::min(text.find(',', begin), text.size());
        const auto number = numberIn(std::string_view(text).substr(begin, end - begin));
        if (!number || *number < 0 || *number > kLargestCompany)
            refuse("--firma: „" + text + "“ ist keine Firmennummer; möglich sind 7, mehrere wie 1,7,9 und alle.");
        companies.push_back(double(*number));
        begin = end + 1;
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
    static const std::regex pattern(
        R"((?:(\d{1,2})\.(\d{1,2})\.(\d{4})|(\d{4})-(\d{2})-(\d{2}))(?:[ T](\d{1,2}):(\d{2})(?::(\d{2}))?(Z|[+-](?:0\d|1[0-4]):?[0-5]\d)?)?)");
    const auto fail = [&] {
        refuse("--druckdatum „" + text + "“ ist kein Datum wie 31.12.2024 oder 2024-12-31 08:15.");
    };
    std::smatch parts;
    if (!std::regex_match(text, parts, pattern))
        fail();
    const auto number = [&](std::size_t group) { return parts[group].matched ? std::stoi(parts[group]) : 0; };
    const bool german = parts[1].matched;
    druckwerk::PrintDate date{
        number(german ? 3 : 4), number(german ? 2 : 5), number(german ? 1 : 6), number(7), number(8), number(9)};
    const std::chrono::year_month_day day{std::chrono::year(date.year), std::chrono::month(unsigned(date.month)),
                                          std::chrono::day(unsigned(date.day))};
    if (!day.ok() || date.hour >= 24 || date.minute >= 60 || date.second >= 60)
        fail();
    date.utcOffset = offsetIn(parts[10], date);
    return date;
}

// Without a regular expression: the library's take a part of the stack for every character.
std::string pagesIn(const std::string& text) {
    const auto isPage = [](std::string_view page) {
        constexpr std::int64_t kLast = 999'999'999;
        const auto number = numberIn(page);
        return number && *number >= 1 && *number <= kLast && page.front() != '0';
    };
    for (std::size_t begin = 0; begin <= text.size();) {
        const auto end = std::min(text.find(',', begin), text.size());
        const auto range = std::string_view(text).substr(begin, end - begin);
        const auto dash = range.find('-');
        if (!isPage(range.substr(0, dash)) || (dash != range.npos && !isPage(range.substr(dash + 1))))
            refuse("--seiten: „" + text + "“ ist kein Seitenbereich wie 1-3,7.");
        begin = end + 1;
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
