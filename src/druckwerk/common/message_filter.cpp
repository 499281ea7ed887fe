#include "druckwerk/common/message_filter.h"

#include <string_view>

namespace kvtdruck::druckwerk {
namespace {

constexpr std::size_t kMostOfAKind = 10;

/// The message without what it quotes last.
std::string kindOf(const std::string& message) {
    constexpr std::string_view kOpening = "„";
    constexpr std::string_view kClosing = "“";
    const auto opening = message.rfind(kOpening);
    const auto closing = opening == std::string::npos ? opening : message.rfind(kClosing);
    if (closing == std::string::npos || closing < opening)
        return message;
    return message.substr(0, opening + kOpening.size()) + message.substr(closing);
}

} // namespace

std::optional<std::string> MessageFilter::pass(const std::string& message) {
    auto& told = told_[kindOf(message)];
    if (told.size() > kMostOfAKind || !told.insert(message).second)
        return std::nullopt;
    return told.size() <= kMostOfAKind ? message : message + "; weitere Hinweise dieser Art werden nicht gezeigt";
}

} // namespace kvtdruck::druckwerk
