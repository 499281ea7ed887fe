#include "cli/help_text.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>

#include <sys/ioctl.h>
#include <unistd.h>

namespace kvtdruck::cli {
namespace {

constexpr std::size_t kOptionColumn = 34;
constexpr std::size_t kNarrowest = 60;
constexpr std::size_t kUsual = 100;

/// COLUMNS, or the terminal's width.
std::size_t width() {
    std::size_t columns = 0;
    if (const char* text = std::getenv("COLUMNS"))
        std::from_chars(text, text + std::strlen(text), columns);
    winsize window{};
    if (columns == 0 && ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &window) == 0)
        columns = window.ws_col;
    return columns == 0 ? kUsual : std::max(columns, kNarrowest);
}

/// Letters of a UTF-8 text: every byte but the continuations.
std::size_t lettersOf(std::string_view text) {
    return std::size_t(std::ranges::count_if(text, [](char c) { return (c & 0xc0) != 0x80; }));
}

/// `text` broken between words, every line but the first indented.
std::string wrapped(const std::string& text, std::size_t indent, std::size_t room) {
    std::string result;
    std::size_t used = 0;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        const auto letters = lettersOf(word);
        if (used > 0 && used + 1 + letters > room) {
            result += "\n" + std::string(indent, ' ');
            used = 0;
        }
        result += (used > 0 ? " " : "") + word;
        used += letters + (used > 0 ? 1 : 0);
    }
    return result;
}

class GermanHelp final : public CLI::Formatter {
  public:
    GermanHelp() {
        label("Usage", "Aufruf");
        label("OPTIONS", "OPTIONEN");
        label("SUBCOMMAND", "BEFEHL");
        label("Positionals", "Argumente");
        column_width(kOptionColumn);
    }

  private:
    std::string make_option(const CLI::Option* option, bool isPositional) const override {
        return entry(make_option_name(option, isPositional) + make_option_opts(option), option->get_description());
    }
    std::string make_option_opts(const CLI::Option* option) const override {
        const auto placeholder = option->get_type_size() == 0 ? std::string() : option->get_type_name();
        return placeholder.empty() ? placeholder : " " + placeholder;
    }
    std::string make_subcommand(const CLI::App* command) const override {
        return entry(command->get_name(), command->get_description());
    }

    static std::string entry(const std::string& name, const std::string& description) {
        auto line = "  " + name;
        const auto letters = lettersOf(line);
        line += letters + 1 < kOptionColumn ? std::string(kOptionColumn - letters, ' ')
                                            : "\n" + std::string(kOptionColumn, ' ');
        return line + wrapped(description, kOptionColumn, width() - kOptionColumn) + "\n";
    }
};

} // namespace

std::shared_ptr<CLI::FormatterBase> germanHelp() {
    return std::make_shared<GermanHelp>();
}

} // namespace kvtdruck::cli
