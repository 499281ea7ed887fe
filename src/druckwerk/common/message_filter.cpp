#include "druckwerk/common/message_filter.h"

#include <algorithm>
#include <string_view>

namespace kvtdruck::druckwerk {
namespace {

constexpr std::size_t kMostOfAKind = 10;

/// The message without what it quotes last, and without the figures behind its place.
std::string kindOf(const std::string& message) {
    constexpr std::string_view kOpening = "„";
    constexpr std::string_view kClosing = "“";
    std::string kind = message;
    const auto opening = kind.rfind(kOpening);
    const auto closing = kind.rfind(kClosing);
    if (opening != std::string::npos && closing != std::string::npos && opening < closing)
        kind.erase(opening, closing - opening);
    const auto place = kind.find(": ");
    const auto isFigure = [](char c) { return (c >= '0' && c <= '9') || c == '.' || c == ','; };
    if (place != std::string::npos)
        kind.erase(std::remove_if(kind.begin() + static_cast<std::ptrdiff_t>(place), kind.end(), isFigure),
                   kind.end());
    return kind;
}

} // namespace

std::optional<std::string> MessageFilter::pass(const std::string& message) {
    auto& told = told_[kindOf(message)];
    if (told.size() > kMostOfAKind || !told.insert(message).second)
        return std::nullopt;
    return told.size() <= kMostOfAKind ? message : message + "; weitere Hinweise dieser Art werden nicht gezeigt";
}

} // namespace kvtdruck::druckwerk
