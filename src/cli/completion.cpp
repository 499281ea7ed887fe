#include "cli/completion.h"

#include "cli/data_source.h"
#include "cli/database_command.h"
#include "cli/option_groups.h"
#include "cli/presets.h"
#include "kvtzug/schema.h"
#include "values/letters.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <map>
#include <set>
#include <sstream>

namespace kvtdruck::cli {
namespace {

using catalog::Selection;

constexpr const char* kFiles = ":datei\n";
constexpr const char* kFolders = ":ordner\n";

/// A word as the shell would hand it over: without quotes and backslashes, with the home folder for "~".
std::string unquoted(const std::string& word) {
    std::string text;
    char quote = 0;
    for (std::size_t i = 0; i < word.size(); ++i) {
        const char c = word[i];
        if (quote == 0 && (c == '"' || c == '\''))
            quote = c;
        else if (c == quote)
            quote = 0;
        else if (c == '\\' && quote != '\'' && i + 1 < word.size())
            text += word[++i];
        else
            text += c;
    }
    const char* home = std::getenv("HOME");
    return home && word.starts_with("~/") ? home + text.substr(1) : text;
}

bool startsWithInAnyCase(std::string_view text, std::string_view beginning) {
    return asciiLower(text).starts_with(asciiLower(beginning));
}

struct Candidate {
    std::string word;
    std::string help;
};

class Completer {
  public:
    Completer(const Words& words, Console& console) : console_(console) {
        addCommands(app_, options_);
        presets_ = userPresets(app_);
        std::ranges::transform(words, std::back_inserter(words_), unquoted);
        if (words_.empty())
            words_.emplace_back();
        current_ = words_.back();
        words_.pop_back();
    }

    std::string text() {
        const auto* pending = takeWords();
        if (pending)
            return valuesOf(*pending, current_, "");
        const auto equals = current_.find('=');
        if (current_.starts_with("--") && equals != std::string::npos) {
            const auto written = optionIn(*command_, current_);
            return written.option
                       ? valuesOf(*written.option, current_.substr(equals + 1), current_.substr(0, equals + 1))
                       : "";
        }
        if (current_.starts_with("-"))
            return listed(options(), current_, "");
        if (argumentName() == "TABELLE" && !arguments_.empty())
            return kFiles;
        return listed(command_->get_subcommands({}).empty() ? arguments() : commands(), current_, "");
    }

  private:
    /// Goes through the words before the last; gives the option whose value the last one is.
    const CLI::Option* takeWords() {
        const CLI::Option* pending = nullptr;
        for (const auto& word : words_) {
            if (pending) {
                given_[longNameOf(*pending)] = word;
                pending = nullptr;
            } else if (isOption(word)) {
                pending = takeOption(word);
            } else if (const auto* command = commandNamed(word)) {
                command_ = command;
            } else {
                arguments_.push_back(word);
                if (const auto* report = catalog::findReportLike(word))
                    reports_.push_back(report);
            }
        }
        return pending;
    }

    const CLI::App* commandNamed(const std::string& word) const {
        const auto commands = command_->get_subcommands([&](const CLI::App* c) { return c->get_name() == word; });
        return commands.empty() ? nullptr : commands.front();
    }

    const CLI::Option* takeOption(const std::string& word) {
        const auto written = optionIn(*command_, word);
        if (!written.option)
            return nullptr;
        const auto name = longNameOf(*written.option);
        given_[name] = written.hasValue ? word.substr(written.name.size() + (word.starts_with("--") ? 1 : 0)) : "";
        return takesValue(*written.option) && !written.hasValue ? written.option : nullptr;
    }

    std::vector<Candidate> commands() const {
        std::vector<Candidate> result;
        for (const auto* command : command_->get_subcommands({}))
            result.push_back({command->get_name(), command->get_description()});
        return result;
    }

    std::vector<Candidate> options() const {
        std::vector<Candidate> result;
        for (const auto* option : command_->get_options())
            if (!option->get_positional() && !given_.contains(longNameOf(*option)))
                result.push_back({longNameOf(*option), option->get_description()});
        return result;
    }

    /// What the command calls its arguments; empty where it takes none.
    std::string argumentName() const {
        const auto positionals = command_->get_options([](const CLI::Option* o) { return o->get_positional(); });
        return positionals.empty() ? std::string() : positionals.front()->get_name();
    }

    std::vector<Candidate> arguments() const {
        const auto name = argumentName();
        std::vector<Candidate> result;
        if (name == "LISTE")
            return lists();
        if (name == "TABELLE")
            for (const auto& table : schema())
                result.push_back({table.name, table.meaning});
        if (name == "AUFGABE" && arguments_.empty())
            result = {{"pruefen", "was fehlt, und welche Listen sich drucken lassen"},
                      {"vorlage", "die Sichten als SQL"},
                      {"tabellen", "alle Tabellen und Spalten"}};
        else if (name == "AUFGABE" && arguments_ == Words{"vorlage"})
            for (const auto& product : databaseProducts())
                result.push_back({product, "Vorlage"});
        return result;
    }

    std::vector<Candidate> lists() const {
        std::vector<Candidate> result;
        const auto positionals = command_->get_options([](const CLI::Option* o) { return o->get_positional(); });
        for (const auto& report : catalog::reports())
            if (std::ranges::find(reports_, &report) == reports_.end())
                result.push_back({std::string(report.listName), std::string(report.title)});
        if (positionals.front()->get_description().find("„alle“") != std::string::npos)
            result.push_back({"alle", "alle Listen"});
        return result;
    }

    /// Lines for those that begin with `beginning`, each behind `before`.
    static std::string listed(const std::vector<Candidate>& candidates, const std::string& beginning,
                              const std::string& before) {
        std::string text;
        for (const auto& candidate : candidates)
            if (startsWithInAnyCase(candidate.word, beginning))
                text += before + candidate.word + "\t" + candidate.help + "\n";
        return text;
    }

    /// The placeholder tells what kind of value an option takes.
    std::string valuesOf(const CLI::Option& option, const std::string& begun, const std::string& before) {
        const auto kind = option.get_type_name();
        if (kind == "DATEI" || kind == "ORDNER")
            return kind == "DATEI" ? kFiles : kFolders;
        if (longNameOf(option) == "--firma") {
            const auto comma = begun.rfind(',');
            const auto last = comma == std::string::npos ? 0 : comma + 1;
            return listed(companies(), begun.substr(last), before + begun.substr(0, last));
        }
        return listed(candidatesFor(option, kind), begun, before);
    }

    std::vector<Candidate> candidatesFor(const CLI::Option& option, const std::string& kind) {
        std::vector<Candidate> result;
        if (kind == "JAHR")
            return existing(Selection::YearFrom, "Jahr");
        if (longNameOf(option).starts_with("--mitarbeiter"))
            return existing(Selection::EmployeeFrom, "Mitarbeiter");
        if (kind == "MONAT")
            for (int month = 1; month <= 12; ++month)
                result.push_back({std::to_string(month), "Monat"});
        if (longNameOf(option) == "--drucker")
            for (const auto& printer : druckwerk::printers())
                result.push_back({printer.name, printer.description});
        if (kind.find('|') != std::string::npos) {
            std::istringstream words(kind);
            for (std::string word; std::getline(words, word, '|');)
                result.push_back({word, option.get_description()});
        }
        return result;
    }

    std::string valueOf(const std::string& option) const {
        if (const auto found = given_.find(option); found != given_.end())
            return found->second;
        const auto preset = presets_(option);
        return preset.empty() ? "" : preset.front();
    }

    /// The database that is meant; its password is never asked for.
    DataSource source() {
        const bool namesFile = given_.contains("--datenbank");
        const bool namesConnection = given_.contains("--verbindung");
        if (!namesConnection)
            options_.database = valueOf("--datenbank");
        if (!namesFile)
            options_.connectionString = valueOf("--verbindung");
        if (!options_.connectionString.empty()) {
            options_.password.file = valueOf("--kennwort-datei");
            options_.connectionString =
                toUtf8(withPassword(fromUtf8(options_.connectionString), options_.password, console_));
        }
        return {options_, console_};
    }

    bool namesDatabase() const { return !valueOf("--datenbank").empty() || !valueOf("--verbindung").empty(); }

    std::vector<Candidate> companies() {
        std::vector<Candidate> result;
        if (!namesDatabase())
            return result;
        for (const auto& company : source().companies())
            result.push_back({company.number, company.name + ", " + company.town});
        return result;
    }

    /// What the lists named so far can be asked for; of every list where none is named.
    std::vector<Candidate> existing(Selection axisFrom, const char* help) {
        std::set<std::int32_t> values;
        std::int32_t company = 0;
        const auto text = valueOf("--firma");
        std::from_chars(text.data(), text.data() + text.size(), company);
        if (!namesDatabase() || company == 0)
            return {};
        auto database = source();
        for (const auto& report : catalog::reports()) {
            const auto axis = std::ranges::find(report.axes, axisFrom, &catalog::Axis::from);
            if (axis == report.axes.end() ||
                (!reports_.empty() && std::ranges::find(reports_, &report) == reports_.end()))
                continue;
            for (const auto& extent : database.existing(report, company)(*axis, {}))
                values.insert(extent.first);
        }
        std::vector<Candidate> result;
        result.reserve(values.size());
        for (const auto value : values)
            result.push_back({std::to_string(value), help});
        return result;
    }

    Console& console_;
    Options options_;
    CLI::App app_;
    const CLI::App* command_ = &app_;
    Presets presets_;
    Words words_;
    std::string current_;
    std::map<std::string, std::string> given_; ///< values by the long names of options
    Words arguments_;
    std::vector<const catalog::ReportEntry*> reports_;
};

} // namespace

std::string completionsOf(const Words& words, Console& console) {
    return Completer(words, console).text();
}

} // namespace kvtdruck::cli
