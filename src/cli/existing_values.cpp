#include "cli/existing_values.h"

#include "dataaccess/record_reader.h"
#include "values/runtime_error.h"

#include <algorithm>
#include <cmath>

namespace kvtdruck::cli {
namespace {

using catalog::Axis;
using catalog::ReportEntry;
using catalog::Selection;
using catalog::Selections;

// Not asked for by any report: a host learns from these what there is.
constexpr DataClass kAccountYears{u"clsZugKontenJahre", u"LeseKontenJahre", {}};
constexpr DataClass kEmployeeYears{u"clsZugMitarbeiterJahre", u"LeseMitarbeiterJahre", {}};
constexpr DataClass kEmployeeNumbers{u"clsZugMitarbeiterNummern", u"LeseMitarbeiterNummern", {}};

constexpr float kFirstMonth = 1;
constexpr float kYearSum = 13; // the sum of a year stands behind its months

/// The reader of a report that prints by years.
const DataClass& yearsOf(const ReportEntry& report) {
    if (report.listName == "Firma")
        return clsZugFirmaJahr;
    if (report.listName == "KalkKo")
        return clsZugKosten;
    return report.listName == "MatUeber" ? clsZugMaterial : clsZugUmsatz;
}

class Existing {
  public:
    Existing(ComponentState& state, ObjectRef connection, const ReportEntry& report, double company)
        : state_(state), connection_(std::move(connection)), report_(report), company_(company) {}

    std::vector<Extent> operator()(const Axis& axis, const Selections& chosen) const {
        state_.pSelmoraFuer = report_.productMode;
        switch (axis.lower) {
        case Selection::AccountFrom:
            return read(clsZugKonten, {company_, float(chosen.at(Selection::Year)), 0.0f, 0.0f}, u"VKonto",
                        u"EKonto", clsZugKonten.readRange);
        case Selection::EmployeeFrom:
            return read(kEmployeeNumbers,
                        {company_, month(chosen, Selection::MonthFrom, kFirstMonth),
                         month(chosen, Selection::MonthTo, kYearSum)},
                        u"Nummer", u"Nummer", kEmployeeNumbers.readAll);
        case Selection::Year:
            return read(kAccountYears, {company_}, u"FJahr", u"FJahr", kAccountYears.readAll);
        default:
            if (axis.takes == Axis::Takes::Nothing)
                return read(kEmployeeYears, {company_}, u"FJahr", u"FJahr", kEmployeeYears.readAll);
            return years(yearsOf(report_));
        }
    }

  private:
    std::vector<Extent> years(const DataClass& reader) const {
        // These two take a year that they do not use.
        const bool hasYear = &reader == &clsZugKosten || &reader == &clsZugMaterial;
        return hasYear ? read(reader, {company_, 0.0f}, u"Jahr", u"Jahr", reader.readAll)
                       : read(reader, {company_}, u"Jahr", u"Jahr", reader.readAll);
    }

    static float month(const Selections& chosen, Selection selection, float otherwise) {
        const auto found = chosen.find(selection);
        return found == chosen.end() ? otherwise : float(found->second);
    }

    std::vector<Extent> read(const DataClass& reader, std::initializer_list<Variant> arguments, StringView first,
                             StringView last, StringView operation) const {
        RecordReader records(state_, reader);
        if (!records.connect(connection_) || !records.read(operation, arguments))
            throw RuntimeError(ErrorNumber::InternalError);
        Member firstOf(first, ValueType::Double);
        Member lastOf(last, ValueType::Double);
        const auto number = [&](Member& getter) {
            return std::int32_t(std::lround(toDouble(records.value(getter), state_.locale())));
        };
        std::vector<Extent> extents;
        for (; !records.atEnd(); records.MoveNext())
            extents.push_back({number(firstOf), number(lastOf)});
        std::ranges::sort(extents, {}, &Extent::first);
        return extents;
    }

    ComponentState& state_;
    ObjectRef connection_;
    const ReportEntry& report_;
    double company_;
};

} // namespace

ExistingValues existingValues(ComponentState& state, ObjectRef connection, const catalog::ReportEntry& report,
                              double company) {
    return Existing(state, std::move(connection), report, company);
}

} // namespace kvtdruck::cli
