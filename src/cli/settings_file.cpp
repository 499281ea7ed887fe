#include "cli/settings_file.h"

#include "cli/option_values.h"

#include <toml.hpp>

#include <algorithm>
#include <fstream>
#include <sstream>

namespace kvtdruck::cli {
namespace {

using Value = toml::basic_value<toml::discard_comments, std::map, std::vector>;

constexpr const char* kPrint = "druck";

class Reader {
  public:
    Reader(const std::filesystem::path& file, std::span<const std::string> known) : file_(file), known_(known) {}

    SettingsFile read() {
        SettingsFile result;
        const auto content = root();
        for (const auto& [key, value] : content.as_table()) {
            if (key == kPrint && !value.is_array())
                fail(value, "Ein Druck beginnt mit [[druck]].");
            if (key == kPrint)
                for (const auto& table : value.as_array())
                    result.prints.push_back({table.location().line(), settingsOf(table)});
            else
                result.general.emplace(key, valuesOf(key, value));
        }
        std::ranges::sort(result.prints, {}, &PrintSettings::line);
        return result;
    }

  private:
    Value root() const {
        std::ifstream stream(file_, std::ios::binary);
        if (!stream || std::filesystem::is_directory(file_))
            refuse(file_.string() + " kann nicht gelesen werden.");
        try {
            return toml::parse<toml::discard_comments, std::map, std::vector>(stream, file_.string());
        } catch (const toml::exception& error) {
            refuse(file_.string() + ", Zeile " + std::to_string(error.location().line()) +
                   ": Das ist kein gültiges TOML; ein Text steht in Anführungszeichen, wie in: datenbank = "
                   "\"firma.sqlite\"");
        }
    }

    [[noreturn]] void fail(const Value& at, const std::string& reason) const {
        refuse(file_.string() + ", Zeile " + std::to_string(at.location().line()) + ": " + reason);
    }

    Settings settingsOf(const Value& table) const {
        Settings settings;
        for (const auto& [key, value] : table.as_table())
            settings.emplace(key, valuesOf(key, value));
        return settings;
    }

    std::vector<std::string> valuesOf(const std::string& key, const Value& value) const {
        if (std::ranges::find(known_, key) == known_.end())
            fail(value, "„" + key + "“ gibt es nicht" + perhaps(key, known_) + ".");
        if (!value.is_array())
            return {textOf(key, value)};
        std::vector<std::string> texts;
        for (const auto& element : value.as_array())
            texts.push_back(textOf(key, element));
        return texts;
    }

    std::string textOf(const std::string& key, const Value& value) const {
        if (value.is_string())
            return value.as_string().str;
        if (value.is_integer())
            return std::to_string(value.as_integer());
        if (value.is_boolean())
            return value.as_boolean() ? "true" : "false";
        if (value.is_local_date()) {
            std::ostringstream text;
            text << value.as_local_date();
            return text.str();
        }
        fail(value, "„" + key + "“ braucht einen Text, eine ganze Zahl, ein Datum, true oder false.");
    }

    std::filesystem::path file_;
    std::span<const std::string> known_;
};

} // namespace

SettingsFile readSettings(const std::filesystem::path& file, std::span<const std::string> known) {
    return Reader(file, known).read();
}

} // namespace kvtdruck::cli
