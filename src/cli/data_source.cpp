#include "cli/data_source.h"

#include "cli/blank_data.h"
#include "cli/existing_values.h"
#include "cli/json_text.h"
#include "dataaccess/record_reader.h"

namespace kvtdruck::cli {
namespace {

std::unique_ptr<DataLibrary> libraryFor(const Options& options) {
    if (options.blank)
        return std::make_unique<BlankData>();
    return std::make_unique<ReferenceKvtzug>(ReferenceKvtzug::Trace(), &cancelled());
}

} // namespace

std::string companiesAsJson(const std::vector<Company>& companies) {
    std::vector<std::string> objects;
    objects.reserve(companies.size());
    for (const auto& company : companies)
        objects.push_back(jsonObject({{"nummer", jsonText(company.number)},
                                      {"name", jsonText(company.name)},
                                      {"ort", jsonText(company.town)}}));
    return jsonArray(objects);
}

DataSource::DataSource(const Options& options, Console& console)
    : platform_(options.locale), library_(libraryFor(options)), errors_(console, options.verbose),
      state_(platform_, *library_, errors_),
      connection_(std::make_shared<HostConnection>(options.connectionString.empty()
                                                       ? sqliteConnection(fromUtf8(options.database))
                                                       : fromUtf8(options.connectionString))) {}

std::vector<Company> DataSource::companies() {
    constexpr DataClass kCompanies{u"clsZugFirmen", u"LeseFirmenAlle", {}};
    RecordReader reader(state_, kCompanies);
    if (!reader.connect(connection_) || !reader.read(kCompanies.readAll, {}))
        throw RuntimeError(ErrorNumber::InternalError);
    Member number(u"Fnr", ValueType::Text);
    Member name(u"Name1", ValueType::Text);
    Member town(u"Ort", ValueType::Text);
    const auto text = [&](Member& getter) { return toUtf8(toText(reader.value(getter), state_.locale())); };
    std::vector<Company> result;
    for (; !reader.atEnd(); reader.MoveNext())
        result.push_back({text(number), text(name), text(town)});
    return result;
}

void DataSource::show(const catalog::ReportEntry& report, const catalog::Selections& ranges) {
    Years years;
    const auto* axis = report.axisFrom(catalog::Selection::YearFrom);
    if (axis && axis->takes == catalog::Axis::Takes::Nothing) {
        if (const auto first = ranges.find(axis->from); first != ranges.end())
            years.first = first->second;
        if (const auto last = ranges.find(axis->to); last != ranges.end())
            years.last = last->second;
    }
    connection_->show(years);
}

ExistingValues DataSource::existing(const catalog::ReportEntry& report, double company) {
    return existingValues(state_, connection_, report, company);
}

} // namespace kvtdruck::cli
