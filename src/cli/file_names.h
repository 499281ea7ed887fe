// The names of a batch's files.
#pragma once

#include <string>

namespace kvtdruck::cli {

/// What a file's name may tell of its content; what does not apply is empty.
struct NameParts {
    std::string list;
    std::string title;
    std::string company;
    std::string year;
    std::string employee;
};

/// List, company, year and employee, as far as they apply.
inline constexpr const char* kUsualName = "{liste}-{firma}-{jahr}-{mitarbeiter}";

/// The name that `pattern` gives. A placeholder without a content goes together with the sign before it; a sign
/// that no file's name can hold becomes "-". Throws a `catalog::UsageError` for an unknown placeholder.
std::string fileName(const std::string& pattern, const NameParts& parts);

} // namespace kvtdruck::cli
