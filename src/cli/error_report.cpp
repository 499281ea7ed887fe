#include "cli/error_report.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace kvtdruck::cli {
namespace {

class ErrorReport final : public clsFehler {
  public:
    ErrorReport(Console& console, bool verbose) : console_(console), verbose_(verbose) {}

    bool fkt_Fehlermeldung(StringView className, StringView procedure, long number, StringView text,
                           bool runtime) override {
        // The engine has said in its own words what went wrong, more exactly than the code that this report
        // carries.
        if (className == u"clsDruckFormular" && procedure == u"PrFehler" && console_.hasFailed())
            return true;
        auto message = verbose_ ? toUtf8(text) : forUsers(text);
        if (runtime && verbose_)
            message += " (" + std::to_string(number) + " in " + toUtf8(className) + "." + toUtf8(procedure) + ")";
        console_.error(message);
        return true;
    }

  private:
    Console& console_;
    bool verbose_;
};

} // namespace

std::string forUsers(StringView description) {
    constexpr std::string_view kPrefix = "clsZug";
    auto text = toUtf8(description);
    for (auto at = text.find(kPrefix); at != std::string::npos; at = text.find(kPrefix, at)) {
        const auto isPart = [](unsigned char c) { return c == '_' || (c < 0x80 && std::isalnum(c) != 0); };
        const auto begin = text.begin() + static_cast<std::ptrdiff_t>(at + kPrefix.size());
        const std::string name(begin, std::find_if_not(begin, text.end(), isPart));
        const auto shown = name.empty() ? std::string(kPrefix) : "„" + name + "“";
        text.replace(at, kPrefix.size() + name.size(), shown);
        at += shown.size();
    }
    return text;
}

std::unique_ptr<clsFehler> ErrorReports::create() {
    return std::make_unique<ErrorReport>(console_, verbose_);
}

} // namespace kvtdruck::cli
