// The words of a command line before they are parsed: what is wrong with them is said in the program's own words,
// and what is preset is put in.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace kvtdruck::cli {

using Words = std::vector<std::string>;

/// Gives the values that a long option ("--firma") is preset to; none where it is not preset.
using Presets = std::function<std::vector<std::string>(const std::string& option)>;

/// Words with "help" and "hilfe" turned into the option.
Words withHelpAsOption(Words words);

/// Checks that the words name a command and its options, each with its value and not twice. Throws a
/// `catalog::UsageError` with the word that comes nearest. `app` has the commands.
void checkWords(const CLI::App& app, const Words& words);

/// The words, and behind them the options that they leave open and that are preset. A preset that contradicts a
/// word is left out.
Words withPresets(const CLI::App& app, Words words, const Presets& presets);

/// The environment variable of an option: KVTDRUCK_KONTO_VON for --konto-von.
std::string variableOf(const std::string& option);

/// The long names of a command's options, without dashes; of all commands where none is named.
std::vector<std::string> optionKeys(const CLI::App& app, const std::string& command = {});

} // namespace kvtdruck::cli
