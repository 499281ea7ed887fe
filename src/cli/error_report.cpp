#include "cli/error_report.h"

#include <regex>

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
    static const std::regex className("clsZug(\\w+)");
    return std::regex_replace(toUtf8(description), className, "„$1“");
}

std::unique_ptr<clsFehler> ErrorReports::create() {
    return std::make_unique<ErrorReport>(console_, verbose_);
}

} // namespace kvtdruck::cli
