#include "cli/file_names.h"

#include "cli/option_values.h"

#include <algorithm>
#include <map>

namespace kvtdruck::cli {
namespace {

std::string usable(std::string text) {
    std::ranges::replace(text, '/', '-');
    return text;
}

} // namespace

std::string fileName(const std::string& pattern, const NameParts& parts) {
    const std::map<std::string, std::string> contents{{"liste", parts.list},
                                                      {"titel", parts.title},
                                                      {"firma", parts.company},
                                                      {"jahr", parts.year},
                                                      {"mitarbeiter", parts.employee}};
    std::string name;
    for (std::size_t at = 0; at < pattern.size();) {
        const auto end = pattern[at] == '{' ? pattern.find('}', at) : std::string::npos;
        if (end == std::string::npos) {
            name += pattern[at++] == '/' ? '-' : pattern[at - 1];
            continue;
        }
        const auto found = contents.find(pattern.substr(at + 1, end - at - 1));
        if (found == contents.end())
            refuse("--name: „" + pattern.substr(at, end - at + 1) +
                   "“ gibt es nicht; möglich sind {liste}, {titel}, {firma}, {jahr} und {mitarbeiter}.");
        if (found->second.empty() && !name.empty() && std::string(" -_").find(name.back()) != std::string::npos)
            name.pop_back();
        name += usable(found->second);
        at = end + 1;
    }
    return name;
}

} // namespace kvtdruck::cli
