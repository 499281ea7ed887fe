// The values of options: German texts into what they mean. Everything here throws a `catalog::UsageError` for a
// text that means nothing.
#pragma once

#include "druckwerk/druckwerk.h"

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kvtdruck::cli {

[[noreturn]] void refuse(const std::string& reason);

/// A whole number within bounds.
std::int32_t wholeNumber(std::string_view option, const std::string& text, std::int32_t lowest,
                         std::int32_t highest);

/// Company numbers, separated by commas; none for "alle".
std::vector<double> companiesIn(const std::string& text);

/// A date in German or ISO form, with or without a time.
druckwerk::PrintDate dateIn(const std::string& text);
/// The user's date and time.
druckwerk::PrintDate currentDate();

/// Checks a page range such as "1-3,7".
std::string pagesIn(const std::string& text);

/// One of several parts of a batch.
struct Part {
    std::int32_t number = 1; ///< from 1
    std::int32_t of = 1;
};
/// "3/8".
Part partIn(const std::string& text);

/// The word among `words` that comes closest to `word`, as a sentence's end: " – gemeint ist vielleicht „…“"; empty
/// where none comes close.
std::string perhaps(std::string_view word, std::span<const std::string> words);

/// One of a few words.
template <class T>
T choiceIn(std::string_view option, const std::string& text, const std::map<std::string, T>& choices) {
    if (const auto found = choices.find(text); found != choices.end())
        return found->second;
    std::vector<std::string> words;
    std::string all;
    for (const auto& [word, meaning] : choices) {
        words.push_back(word);
        all += (all.empty() ? "" : ", ") + word;
    }
    refuse(std::string(option) + ": „" + text + "“ ist nicht möglich; es gibt " + all + ".");
}

} // namespace kvtdruck::cli
