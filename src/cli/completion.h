// What shells offer when the user presses the tabulator key.
#pragma once

#include "cli/command_words.h"
#include "cli/console.h"

namespace kvtdruck::cli {

/// The words that may stand in the place of the last of `words`, which is begun or empty; `words` are those of a
/// command line as the user has typed them, without the program's name. One line for each: the word, a tabulator
/// and what it means; or the single line ":datei" or ":ordner" where the shell knows best. Companies, years and
/// employees are read from the database that the words or the presets name; where it can't be read, nothing is
/// offered.
std::string completionsOf(const Words& words, Console& console);

} // namespace kvtdruck::cli
