// Every call that the engine gets of each report, compared with the records in golden/. KVT_WRITE_GOLDEN=1 in the
// environment writes them anew.
#include "component/report_table.h"
#include "values/conversion.h"

#include <algorithm>
#include <fstream>
#include <sstream>

namespace kvtdruck::test {
namespace {

/// The record in short: a run of definitions is one line that counts them.
std::string shortened(const std::vector<std::string>& calls) {
    std::ostringstream text;
    std::size_t variables = 0;
    std::size_t fields = 0;
    const auto flush = [&](std::size_t& count, const char* kind) {
        if (count > 0)
            text << "  … " << count << " " << kind << "\n";
        count = 0;
    };
    for (const auto& call : calls) {
        const bool single = call.find("\"Seitenwechsel\"") != std::string::npos ||
                            call.find("\"Fuerjahr\"") != std::string::npos ||
                            call.find("\"FuerJahr\"") != std::string::npos;
        if (!single && call.starts_with("LlDefineVariableExt(")) {
            flush(fields, "fields");
            ++variables;
        } else if (!single && call.starts_with("LlDefineFieldExt(")) {
            flush(variables, "variables");
            ++fields;
        } else {
            flush(variables, "variables");
            flush(fields, "fields");
            text << "  " << call << "\n";
        }
    }
    flush(variables, "variables");
    flush(fields, "fields");
    return text.str();
}

std::string whole(const std::vector<std::string>& calls) {
    std::string text;
    for (const auto& call : calls)
        text += "  " + call + "\n";
    return text;
}

void compareWithGolden(const std::string& name, const std::string& actual) {
    const auto file = std::string(KVT_GOLDEN) + "/" + name + ".txt";
    if (std::getenv("KVT_WRITE_GOLDEN")) {
        std::ofstream(file, std::ios::binary) << actual;
        return;
    }
    std::ifstream stream(file, std::ios::binary);
    const std::string expected(std::istreambuf_iterator<char>(stream), {});
    std::istringstream left(expected);
    std::istringstream right(actual);
    std::string expectedLine;
    std::string actualLine;
    for (int number = 1; std::getline(left, expectedLine); ++number) {
        std::getline(right, actualLine);
        ASSERT_EQ(actualLine, expectedLine) << file << ":" << number;
    }
    EXPECT_EQ(actual.size(), expected.size()) << file;
}

class GoldenRecord : public ::testing::TestWithParam<ReportDescription> {
  protected:
    const ReportDescription& report() const { return GetParam(); }
};

INSTANTIATE_TEST_SUITE_P(All, GoldenRecord, ::testing::ValuesIn(allReports()),
                         [](const auto& each) { return each.param.list; });

TEST_P(GoldenRecord, CallsTheEngineAsRecorded) {
    std::string record;
    const auto section = [&](const char* title, std::int16_t mode, std::size_t records, bool full) {
        Host fresh;
        fill(fresh.world, records);
        fresh.engineWritesPreview(report().list);
        if (std::string(title) == "page full") {
            fresh.world.results[{Operation::LlPrintFields, 0}] = -998;
            fresh.world.results[{Operation::LlPrintFields, 1}] = -998;
            fresh.world.results[{Operation::LlPrintFieldsEnd, 0}] = -998;
        }
        const auto list = fromUtf8(report().list);
        const auto done =
            fresh.print({.mode = mode, .list = list, .array = arrayFor(fresh.world, report(), records)});
        record += std::string(title) + ": " + (done ? "True" : "False") + "\n";
        record += full ? whole(fresh.world.engineCalls) : shortened(fresh.world.engineCalls);
        for (const auto& each : fresh.world.reports)
            record += "  report: " + ::testing::PrintToString(each) + "\n";
    };
    section("three records", 0, 3, true);
    section("one record", 0, 1, false);
    section("page full", 0, 2, false);
    section("preview", 1, 1, false);
    compareWithGolden(report().list, record);
}

} // namespace
} // namespace kvtdruck::test
