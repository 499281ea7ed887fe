// Connection strings as hosts know them: `Name=value;Name={value};…`.
#pragma once

#include "values/text.h"

namespace kvtdruck {

/// The value of `name` in a connection string (letter case of the name does not matter), or "". A value in braces
/// may hold anything; a closing brace in it stands twice.
String connectionAttribute(StringView connectionString, StringView name);

/// `value` in braces, so that it means itself whatever it holds.
String braced(StringView value);

/// `message` without the passwords of the connection string, however they are written in it.
String withoutPasswords(String message, StringView connectionString);

} // namespace kvtdruck
