// Every report through the DLL, asked for by a compiled host with a connection of ADO's. What the engine was called
// with is compared with the command line afterwards, see compare-record; each test leaves the options for that.
#include "ado_connection.h"
#include "catalog/report_catalog.h"
#include "catalog/values_file.h"
#include "host.h"
#include "servers/dispatch.h"

#include <algorithm>
#include <fstream>
#include <tuple>

namespace kvtdruck::test {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

/// What can be done with a report, and how the command line calls it.
struct Mode {
    short number;
    const char* command;
    const char* last; ///< the engine call that ends it
    std::size_t viewers;
};
constexpr Mode kModes[] = {
    {0, "drucken", "LlPrintEnd", 0}, {1, "vorschau", "LlPrintEnd", 1}, {2, "pruefen", "LlDefineLayout", 0}};

Ref<AdoConnection> adoConnection() {
    CLSID clsid{};
    EXPECT_EQ(CLSIDFromProgID(L"ADODB.Connection", &clsid), S_OK);
    auto connection = create<AdoConnection>(clsid, kAdoConnection);
    const Text text(L"Driver=SQLite3;Database=" + databasePath());
    EXPECT_EQ(connection->put_ConnectionString(text.get()), S_OK);
    return connection;
}

/// A request for a report of the sample company, and how the command line is asked for the same.
struct Request {
    std::shared_ptr<catalog::ParameterArray> array;
    std::string options;
};

Request requestFor(const catalog::ReportEntry& report) {
    if (report.isFedByValues()) {
        const auto file = "werte/" + std::string(report.listName) + ".csv";
        std::ifstream values(std::filesystem::path(setting(L"KVT_DEMO")) / file, std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(values), {}};
        return {catalog::parseValues(report, text, file), " --werte " + file};
    }
    const auto hasToBeGiven = [](const catalog::Cell& cell) {
        return cell.kind == catalog::Cell::Kind::MustBeGiven;
    };
    if (std::ranges::none_of(report.cells, hasToBeGiven))
        return {catalog::parameterArray(report, {}), ""};
    return {catalog::parameterArray(report, {{catalog::Selection::Year, 2024}, {catalog::Selection::Month, 3}}),
            " --jahr 2024 --monat 3"};
}

Ref<IDispatch> comArray(catalog::ParameterArray& cells) {
    auto copy = newArray(static_cast<long>(cells.rows()), static_cast<long>(cells.columns()));
    for (std::size_t row = 0; row < cells.rows(); ++row)
        for (std::size_t column = 0; column < cells.columns(); ++column) {
            VARIANT value = toVariant(cells.cell(row, column));
            setCell(copy.get(), static_cast<long>(row), static_cast<long>(column), value);
            VariantClear(&value);
        }
    return copy;
}

class EveryReport : public HostTest,
                    public testing::WithParamInterface<std::tuple<const catalog::ReportEntry*, Mode>> {
  protected:
    /// Leaves what makes the command line do the same.
    void noteCommand(const std::string& options) const {
        const auto& [report, mode] = GetParam();
        std::ofstream(folder() / "command.txt", std::ios::binary)
            << mode.command << ' ' << report->listName << options << '\n';
    }
};

TEST_P(EveryReport, WithAConnectionOfAdo) {
    const auto& [report, mode] = GetParam();
    const auto request = requestFor(*report);
    noteCommand(request.options);
    const auto worker = manager();
    const auto connection = adoConnection();
    IDispatch* lent = connection.get();
    VARIANT_BOOL result = VARIANT_TRUE;
    ASSERT_EQ(worker->fkt_Init(&lent, &result), S_OK);

    const auto parameters = comArray(*request.array);
    const std::wstring list(report->listName.begin(), report->listName.end());
    EXPECT_TRUE(print(*worker.get(), list.c_str(), mode.number, 1, 100, parameters.get(), report->productMode));
    EXPECT_THAT(reportedErrors(), IsEmpty());
    EXPECT_THAT(callsOf(mode.last, engineCalls()), SizeIs(1));
    EXPECT_TRUE(eventually([&, viewers = mode.viewers] { return startedViewers().size() == viewers; }));
    long window = 100;
    EXPECT_EQ(worker->Terminate_Preview(&window, &result), S_OK);
}

std::vector<const catalog::ReportEntry*> everyReport() {
    std::vector<const catalog::ReportEntry*> all;
    for (const auto& report : catalog::reports())
        all.push_back(&report);
    return all;
}

std::string nameOf(const testing::TestParamInfo<EveryReport::ParamType>& info) {
    const auto& [report, mode] = info.param;
    return std::string(report->listName) + "_" + mode.command;
}

INSTANTIATE_TEST_SUITE_P(Dll, EveryReport,
                         testing::Combine(testing::ValuesIn(everyReport()), testing::ValuesIn(kModes)), nameOf);

} // namespace
} // namespace kvtdruck::test
