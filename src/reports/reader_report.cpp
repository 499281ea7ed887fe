#include "reports/reader_report.h"

namespace kvtdruck {
namespace {

constexpr StringView kSeitenwechsel = u"Seitenwechsel";

// As the two comparisons of floating-point numbers see it: NaN differs from nothing.
bool differ(double a, double b) {
    return a < b || a > b;
}

} // namespace

ReaderReport::ReaderReport(const ReportEnvironment& environment, PrintRequest request, StringView className,
                           StringView title, const ReaderForm& form)
    : Report(environment, std::move(request), className, title), dataClass_(form.dataClass),
      variables_(form.variables, &form.dataClass), fields_(form.fields, &form.dataClass),
      groupChange_(form.change) {
    for (const auto getter : form.keys)
        keyGetters_.emplace_back(getter, ValueType::Double);
}

// Reading

bool ReaderReport::openReader(std::optional<RecordReader>& reader, const DataClass& dataClass,
                              const ReadFailure& failure, const std::function<bool()>& fill) {
    return guardedProcedure(failure.procedure, [&] {
        const bool created = !reader.has_value();
        if (created)
            reader.emplace(state(), dataClass);
        if ((!created || reader->connect(request().pADOCon)) && fill())
            return true;
        reportMessage(failure.procedure, failure.text);
        return false;
    });
}

bool ReaderReport::read() {
    if (!openReader(reader_, dataClass_, readFailure(), [this] { return readData(); }))
        return false;
    if (!reader().atEnd())
        return true;
    reportMessage(u"fkt_Drucken", u"Es sind keine Daten für den Ausdruck vorhanden.");
    return false;
}

bool ReaderReport::readYears(std::initializer_list<Variant> all) {
    parray().normaliseRange();
    if (parray().is(0, 0, true))
        return reader().read(dataClass_.readAll, all);
    return reader().read(dataClass_.readRange, {request().pFnr, parray().single(0, 1), parray().single(0, 2)});
}

// Defining

void ReaderReport::beginDefinitions() {
    adapter().LlDefineFieldStart();
    Report::beginDefinitions();
}

bool ReaderReport::Definiere_Übergebe_Variablen() {
    return guardedProcedure(u"Definiere_Übergebe_Variablen", [this] {
        define(kVariable, variables_, record());
        return true;
    });
}

bool ReaderReport::Definiere_Übergebe_Felder() {
    return guardedProcedure(u"Definiere_Übergebe_Felder", [this] {
        define(kField, fields_, record());
        return true;
    });
}

bool ReaderReport::defineAll() {
    return Definiere_Übergebe_Variablen() && Definiere_Übergebe_Felder();
}

bool ReaderReport::defineBeforeFirstPage() {
    return Definiere_Übergebe_Variablen();
}

// Printing

bool ReaderReport::printRecords() {
    reader().MoveFirst();
    keys_.assign(keyGetters_.size(), 0);
    takeKeys();
    for (bool first = true; !reader().atEnd(); first = false) {
        if (!printRecord(first))
            return false;
        reader().MoveNext();
    }
    return true;
}

bool ReaderReport::printRecord(bool) {
    if (!Definiere_Übergebe_Felder())
        return false;
    showProgress();
    if (takeKeys() && !beginGroup())
        return false;
    printLine();
    return true;
}

bool ReaderReport::beginGroup() {
    const auto pageBreak = [this] { define(kField, kSeitenwechsel, u"2", kTypeNumeric); };
    if (groupChange_ == GroupChange::Lines) {
        if (!Definiere_Übergebe_Variablen())
            return false;
        pageBreak();
        return true;
    }
    pageBreak();
    if (!Definiere_Übergebe_Variablen())
        return false;
    adapter().LlPrint();
    return true;
}

bool ReaderReport::takeKeys() {
    bool change = false;
    for (std::size_t i = 0; i < keyGetters_.size(); ++i) {
        const auto key = toDouble(reader().value(keyGetters_[i]), locale());
        change = change || differ(key, keys_[i]);
        keys_[i] = key;
    }
    return change;
}

} // namespace kvtdruck
