#include "servers/error_report.h"

#include "servers/dispatch.h"
#include "servers/log_file.h"
#include "values/characters.h"
#include "values/runtime_error.h"

namespace kvtdruck::test {
namespace {

constexpr DISPID kReport = 1;
constexpr auto kLog = L"KVT_TEST_ERRORS";

bool isOf(const VARIANT* argument, int type) {
    return V_VT(argument) == type;
}

std::string onOneLine(const Variant& text) {
    std::string line;
    for (const char letter : toUtf8(toText(text, germanLocale())))
        line += letter == '\r' ? "\\r" : letter == '\n' ? "\\n" : std::string(1, letter);
    return line;
}

class ErrorReport final : public Dispatch {
  public:
    ErrorReport() { appendLine(kLog, "created"); }

  protected:
    DISPID idOf(StringView name) override {
        return sameWord(name, u"fkt_Fehlermeldung") ? kReport : DISPID_UNKNOWN;
    }

    Variant invoke(DISPID member, WORD, std::span<VARIANT* const> arguments) override {
        if (member != kReport || arguments.size() != 5 || !isOf(arguments[0], VT_BYREF | VT_BSTR) ||
            !isOf(arguments[1], VT_BYREF | VT_BSTR) || !isOf(arguments[2], VT_BYREF | VT_I4) ||
            !isOf(arguments[3], VT_BYREF | VT_BSTR) || !isOf(arguments[4], VT_BOOL)) {
            appendLine(kLog, "refused");
            throw RuntimeError(ErrorNumber::TypeMismatch);
        }
        std::string line;
        for (const auto* argument : arguments)
            line += (line.empty() ? "" : "|") + onOneLine(fromVariant(*argument));
        appendLine(kLog, line);
        return true;
    }
};

} // namespace

IDispatch* createErrorReport() {
    return new ErrorReport;
}

} // namespace kvtdruck::test
