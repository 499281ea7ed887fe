// The words of a command line before they are parsed: what is wrong with them is said in the program's own words,
// and what is preset is put in.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace kvtdruck::cli {

using Words = std::vector<std::string>;

/// Gives the values that a long option ("--firma") is preset to; none where it is not preset.
using Presets = std::function<std::vector<std::string>(const std::string& option)>;

/// Whether a word is an option, not a value or a name.
bool isOption(const std::string& word);

/// An option as a word writes it: with its value behind "=" or behind the letter, or without.
struct Written {
    const CLI::Option* option = nullptr; ///< none where the command has none of that name
    std::string name;
    bool hasValue = false;
};
Written optionIn(const CLI::App& command, const std::string& word);

/// "--firma" for an option that has a long name.
std::string longNameOf(const CLI::Option& option);
bool takesValue(const CLI::Option& option);

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
