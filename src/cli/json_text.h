// JSON (https://www.rfc-editor.org/rfc/rfc8259) for what programs ask for. Texts are UTF-8.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kvtdruck::cli {

/// `text` in quotes.
std::string jsonText(std::string_view text);

/// An object of names and of values that are JSON already.
std::string jsonObject(std::initializer_list<std::pair<std::string_view, std::string>> members);

/// An array of values that are JSON already, each on a line.
std::string jsonArray(const std::vector<std::string>& values);

} // namespace kvtdruck::cli
