#include "cli/command_words.h"

#include "cli/option_values.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <set>

namespace kvtdruck::cli {

bool isOption(const std::string& word) {
    return word.size() > 1 && word[0] == '-';
}

std::string longNameOf(const CLI::Option& option) {
    return option.get_lnames().empty() ? option.get_name() : "--" + option.get_lnames().front();
}

Written optionIn(const CLI::App& command, const std::string& word) {
    Written written;
    if (word.starts_with("--")) {
        const auto equals = word.find('=');
        written.name = word.substr(0, equals);
        written.hasValue = equals != std::string::npos;
    } else {
        written.name = word.substr(0, 2);
        written.hasValue = word.size() > 2;
    }
    written.option = command.get_option_no_throw(written.name);
    return written;
}

bool takesValue(const CLI::Option& option) {
    return option.get_items_expected_min() > 0;
}

namespace {

std::string joined(const std::vector<std::string>& values) {
    std::string text;
    for (const auto& value : values)
        text += (text.empty() ? "" : ",") + value;
    return text;
}

/// Options that stand for each other: one of them leaves no room for a preset of another.
const std::array<std::vector<std::string>, 3> kRivals{{
    {"--datenbank", "--verbindung"},
    {"--ausgabe", "--nach", "--mappe", "--drucker", "--druckerauswahl"},
    {"--jahr", "--von", "--bis"},
}};

std::vector<std::string> optionNames(const CLI::App& command) {
    std::vector<std::string> names;
    for (const auto* option : command.get_options())
        for (const auto& name : option->get_lnames())
            names.push_back("--" + name);
    return names;
}

/// The command that the words name, and its place; the app itself where there is none.
std::pair<const CLI::App*, std::size_t> commandIn(const CLI::App& app, const Words& words) {
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (isOption(words[i]) && optionIn(app, words[i]).option)
            continue;
        if (isOption(words[i]))
            refuse("Es fehlt der Befehl: " + commandNames(app) + ".");
        std::vector<std::string> names;
        for (const auto* command : app.get_subcommands({})) {
            if (command->get_name() == words[i])
                return {command, i};
            names.push_back(command->get_name());
        }
        refuse("Unbekannter Befehl „" + words[i] + "“" + perhaps(words[i], names) + ".");
    }
    return {&app, words.size()};
}

/// Calls `visit` for every option in the words behind `begin`, and checks each on the way.
template <class Visit>
void forEachOption(const CLI::App& command, const Words& words, std::size_t begin, Visit&& visit) {
    for (std::size_t i = begin; i < words.size(); ++i) {
        if (!isOption(words[i])) {
            const auto positionals = command.get_options([](const CLI::Option* o) { return o->get_positional(); });
            if (positionals.empty())
                refuse("Unbekannte Angabe „" + words[i] + "“.");
            continue;
        }
        const auto written = optionIn(command, words[i]);
        if (!written.option)
            refuse("Unbekannte Angabe „" + written.name + "“" + perhaps(written.name, optionNames(command)) + ".");
        visit(*written.option);
        if (written.hasValue && words[i].size() == written.name.size() + 1 && words[i].back() == '=')
            refuse(longNameOf(*written.option) + " braucht einen Wert.");
        if (!takesValue(*written.option) || written.hasValue)
            continue;
        if (i + 1 == words.size() || (isOption(words[i + 1]) && optionIn(command, words[i + 1]).option))
            refuse(longNameOf(*written.option) + " braucht einen Wert.");
        ++i;
    }
}

} // namespace

std::string commandNames(const CLI::App& app) {
    const auto commands = app.get_subcommands({});
    std::string names;
    for (std::size_t i = 0; i < commands.size(); ++i)
        names += (i == 0 ? "" : i + 1 == commands.size() ? " oder " : ", ") + commands[i]->get_name();
    return names;
}

Words withHelpAsOption(Words words) {
    if (!words.empty() && (words.front() == "help" || words.front() == "hilfe")) {
        words.erase(words.begin());
        words.resize(std::min<std::size_t>(words.size(), 1));
        words.emplace_back("--hilfe");
    }
    return words;
}

void checkWords(const CLI::App& app, const Words& words) {
    const auto [command, at] = commandIn(app, words);
    forEachOption(app, Words(words.begin(), words.begin() + std::ptrdiff_t(at)), 0, [](const CLI::Option&) {});
    std::set<const CLI::Option*> seen;
    forEachOption(*command, words, at + 1, [&](const CLI::Option& option) {
        if (!seen.insert(&option).second)
            refuse(longNameOf(option) + " steht mehrmals da.");
    });
}

std::string variableOf(const std::string& option) {
    std::string name = "KVTDRUCK_";
    for (const char c : option.substr(2))
        name += c == '-' ? '_' : char(std::toupper(static_cast<unsigned char>(c)));
    return name;
}

std::vector<std::string> optionKeys(const CLI::App& app, const std::string& command) {
    std::vector<std::string> keys;
    for (const auto* candidate : app.get_subcommands({}))
        if (command.empty() || candidate->get_name() == command)
            for (const auto* option : candidate->get_options())
                keys.insert(keys.end(), option->get_lnames().begin(), option->get_lnames().end());
    return keys;
}

Words withPresets(const CLI::App& app, Words words, const Presets& presets) {
    const auto [command, at] = commandIn(app, words);
    if (command == &app)
        return words;
    std::set<std::string> settled;
    forEachOption(*command, words, at + 1, [&](const CLI::Option& option) {
        const auto name = longNameOf(option);
        settled.insert(name);
        for (const auto& rivals : kRivals)
            if (std::ranges::find(rivals, name) != rivals.end())
                settled.insert(rivals.begin(), rivals.end());
    });
    for (const auto* option : command->get_options()) {
        const auto name = longNameOf(*option);
        if (!name.starts_with("--") || settled.contains(name))
            continue;
        const auto values = presets(name);
        if (const auto value = joined(values); !value.empty() && takesValue(*option))
            words.push_back(std::string(name).append("=").append(value));
        else if (values == Words{"true"})
            words.push_back(name);
    }
    return words;
}

} // namespace kvtdruck::cli
