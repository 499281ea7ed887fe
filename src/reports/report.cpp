#include "reports/report.h"

#include "control/print_mode.h"
#include "values/conversion.h"
#include "values/overloaded.h"

#include <utility>

namespace kvtdruck {
namespace {

// Constants of the engine.
constexpr std::int32_t kListProject = 2;
constexpr std::int32_t kProgressBox = 2;

} // namespace
Report::Report(const ReportEnvironment& environment, PrintRequest request, StringView className, StringView title)
    : environment_(environment), request_(std::move(request)), className_(className), title_(title),
      company_(environment.state, request_.pZuDbFnrAllg), parray_(environment.state, request_.parray),
      layoutFile_(request_.pListenPath + u"\\" + request_.pListenname) {}

bool Report::fkt_Drucken() {
    return guardedProcedure(u"fkt_Drucken", [this] { return run(); });
}

// The frame

bool Report::run() {
    chooseTitle();
    currency_ = company_.text(u"Waehrung");
    // The stored printer description goes, so that the engine's defaults apply.
    if (!read() || !adapter().FKT_Lösche_Druckerbeschreibung(layoutFile_))
        return false;
    beginDefinitions();
    if (!adapter().FKT_DefiniereVariablen_AllgemeineFirmendaten(company_.object(), title_) || !defineAll())
        return false;
    adapter().fkt_Form_Hide();
    if (!execute())
        return false;
    if (engineMode_ == kPrintModePreview)
        environment_.previews.fkt_Aktiviere_Preview(request_.pListenname, request_.pPrevPath,
                                                    request_.pAktind_ArrAllPrints);
    return true;
}

bool Report::execute() {
    switch (request_.pPrintMode) {
    case kPrint:
        engineMode_ = kPrintModeNormal;
        return print();
    case kPreview:
        engineMode_ = kPrintModePreview;
        return print();
    case kDesign:
        return adapter().LlDefineLayout(title_, kListProject, layoutFile_);
    default:
        return true; // nothing to print is no failure
    }
}

bool Report::print() {
    if (!beginJob() || !defineBeforeFirstPage())
        return false;
    adapter().LlPrint();
    return printRecords() && endJob();
}

bool Report::beginJob() {
    if (adapter().LlSetPrinterToDefault(kListProject, layoutFile_) == 0)
        return false;
    if (adapter().LlPrintWithBoxStart(kListProject, layoutFile_, engineMode_, kProgressBox, layoutFile_) == 0)
        return false;
    if (!request_.pDruckmitDruckerauswahl)
        return true;
    const auto answer = adapter().LlPrintOptionsDialog(request_.pListenname);
    return answer != kEngineCancelled && answer != 0;
}

bool Report::endJob() {
    std::int32_t result = 0;
    do
        result = adapter().LlPrintFieldsEnd();
    while (result == kEnginePageFull);
    if (result == kEngineCancelled) {
        adapter().PrintEnd();
        return false;
    }
    adapter().LlPrintEnd(0);
    return true;
}

void Report::beginDefinitions() {
    adapter().LlDefineVariableStart();
}

// Pieces

bool Report::guardedProcedure(StringView name, const std::function<bool()>& body) {
    return guarded(state(), {className_, name}, body);
}

void Report::reportMessage(StringView procedure, StringView text) {
    state().report({className_, procedure}, text);
}

void Report::define(Target target, StringView name, StringView content, std::int32_t type) {
    (adapter().*target)(name, content, type);
}

void Report::defineNumber(Target target, StringView name, double number) {
    define(target, name, textOfValue(number), kTypeNumeric);
}

void Report::define(Target target, BoundTable& table, const Record& record) {
    for (std::size_t i = 0; i < table.size(); ++i) {
        const auto& row = table.row(i);
        define(target, row.name, contentOf(row.source, table.getters(i), record), row.type);
    }
}

StringView Report::textOfValue(const Variant& value) {
    if (const auto* text = value.as<String>())
        return *text;
    content_.clear();
    appendText(content_, value, locale());
    return content_;
}

StringView Report::contentOf(const Source& source, std::span<Member> getters, const Record& record) {
    const auto fetched = [&](Member& getter) -> const Variant& { return required(record.reader).value(getter); };
    const auto kept = [&](String text) -> StringView { return content_ = std::move(text); };
    return std::visit(
        Overloaded{
            [&](const CompanyNumber&) { return textOfValue(request_.pFnr); },
            [&](const CompanyCurrency&) { return StringView(currency_); },
            [&](const FixedText& fixed) { return StringView(fixed.text); },
            [&](const FromGetter&) { return textOfValue(fetched(getters.front())); },
            [&](const FromDateGetter&) { return kept(fkt_Datum_Text(fetched(getters.front()), locale())); },
            [&](const FromCell& cell) { return kept(parray_.text(cell.row.value_or(record.row), cell.column)); },
            [&](const Composed& composed) {
                std::vector<String> texts;
                for (auto& getter : getters)
                    texts.push_back(toText(fetched(getter), locale()));
                return kept(composed.text(texts));
            },
        },
        source);
}

void Report::showProgress() {
    if (progress_ > 100)
        progress_ = 0;
    ++progress_;
    adapter().LlPrintSetBoxText(request_.pListenname, progress_);
}

void Report::printLine() {
    while (adapter().LlPrintFields() == kEnginePageFull)
        adapter().LlPrint();
}

} // namespace kvtdruck
