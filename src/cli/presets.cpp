#include "cli/presets.h"

#include <cmath>
#include <cstdlib>
#include <utility>

namespace kvtdruck::cli {
namespace {

Words environmentOf(const std::string& option) {
    const char* value = std::getenv(variableOf(option).c_str());
    return value && *value ? Words{value} : Words{};
}

std::filesystem::path userSettingsFile() {
    const auto variable = [](const char* name) {
        const char* value = std::getenv(name);
        return std::filesystem::path(value ? value : "");
    };
    const auto configuration = variable("XDG_CONFIG_HOME");
    const auto folder = configuration.is_absolute() ? configuration : variable("HOME") / ".config";
    return folder.is_absolute() ? folder / "kvtdruck" / "kvtdruck.toml" : std::filesystem::path();
}

/// What the user has set once for all calls.
Settings userSettings(const CLI::App& app) {
    const auto file = userSettingsFile();
    if (file.empty() || !std::filesystem::exists(file))
        return {};
    return readSettings(file, optionKeys(app)).general;
}

} // namespace

Presets presetsOf(Settings settings) {
    return [settings = std::move(settings)](const std::string& option) {
        const auto found = settings.find(option.substr(2));
        return found == settings.end() ? Words{} : found->second;
    };
}

Presets either(Presets first, Presets second) {
    return [first = std::move(first), second = std::move(second)](const std::string& option) {
        auto values = first(option);
        return values.empty() ? second(option) : values;
    };
}

Presets userPresets(const CLI::App& app) {
    return either(environmentOf, presetsOf(userSettings(app)));
}

void handDown(const std::filesystem::path& database, const std::optional<std::filesystem::path>& values,
              double company, const std::filesystem::path& applicationFolder) {
    const auto preset = [](const char* option, const std::string& value) {
        ::setenv(variableOf(option).c_str(), value.c_str(), 1);
    };
    if (!database.empty()) {
        ::unsetenv(variableOf("--verbindung").c_str());
        preset("--datenbank", std::filesystem::absolute(database).string());
    }
    if (values)
        preset("--werte", std::filesystem::absolute(*values).string());
    preset("--firma", std::to_string(std::llround(company)));
    preset("--ordner", std::filesystem::absolute(applicationFolder).string());
}

} // namespace kvtdruck::cli
