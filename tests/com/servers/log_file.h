// Files in which the test servers tell what they were asked; the environment names them.
#pragma once

#include <string>
#include <string_view>

namespace kvtdruck::test {

/// The value of an environment variable as it is now, in UTF-8; "" where it is not set.
std::string environment(const wchar_t* name);

/// Appends a line to the file that the environment variable names; does nothing where it names none.
void appendLine(const wchar_t* variable, std::string_view line);

} // namespace kvtdruck::test
