#include "cli/json_text.h"

#include "control/recording_control.h"
#include "values/text.h"

namespace kvtdruck::cli {

std::string jsonText(std::string_view text) {
    std::string quoted;
    appendQuoted(quoted, fromUtf8(text));
    return quoted;
}

std::string jsonObject(std::initializer_list<std::pair<std::string_view, std::string>> members) {
    std::string text;
    for (const auto& [name, value] : members)
        text += (text.empty() ? "" : ", ") + jsonText(name) + ": " + value;
    return "{" + text + "}";
}

std::string jsonArray(const std::vector<std::string>& values) {
    std::string text;
    for (const auto& value : values)
        text += (text.empty() ? "\n" : ",\n") + value;
    return "[" + text + (text.empty() ? "]" : "\n]");
}

} // namespace kvtdruck::cli
