// soak_test DATABASE LAYOUTS VALUES PRINTS: one process prints all lists, as pages and as every kind of data, again
// and again. Its memory, its open files, its processes and what lies in the folder for temporary files must not
// grow.
#include "catalog/report_catalog.h"
#include "catalog/values_file.h"
#include "druckwerk/druckwerk.h"
#include "druckwerk/exits/data_export.h"
#include "kvtzug/kvtzug.h"
#include "manager/clsDruckManager.h"
#include "platform/posix/input_file.h"
#include "platform/posix/posix_platform.h"
#include "platform/posix/temporary_folder.h"

#include <malloc.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <stdexcept>

namespace {

using namespace kvtdruck;
namespace fs = std::filesystem;

constexpr std::int32_t kWindow = 1;
constexpr std::size_t kMostValues = 1 << 20;
constexpr long kPageSize = 4096;
/// What the allocator may keep back of memory that has been given back: pages, with blocks in use here and there.
constexpr long kSlack = 2L << 20;

class Errors final : public ErrorReportFactory {
  public:
    std::unique_ptr<clsFehler> create() override {
        class Report final : public clsFehler {
            bool fkt_Fehlermeldung(StringView, StringView, long, StringView text, bool) override {
                throw std::runtime_error("a print fails: " + toUtf8(text));
            }
        };
        return std::make_unique<Report>();
    }
};

/// What a process holds.
struct Holdings {
    long memory = 0; ///< bytes that are resident
    long files = 0;
    long children = 0;
    long leftovers = 0; ///< in the folder for temporary files
};

long entriesOf(const fs::path& folder) {
    return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
}

Holdings holdings(const fs::path& temporary) {
    malloc_trim(0);
    Holdings now;
    long pages = 0;
    std::ifstream("/proc/self/statm") >> pages >> now.memory;
    now.memory *= kPageSize;
    now.files = entriesOf("/proc/self/fd");
    std::ifstream children("/proc/self/task/" + fs::read_symlink("/proc/self").string() + "/children");
    now.children = std::distance(std::istream_iterator<long>(children), std::istream_iterator<long>());
    now.leftovers = entriesOf(temporary);
    return now;
}

/// The list of one print, with what it is asked for.
struct Job {
    const catalog::ReportEntry* report;
    std::shared_ptr<catalog::ParameterArray> array;
};

class Soak {
  public:
    Soak(const std::string& database, const fs::path& layouts, const fs::path& values)
        : state_(platform_, library_, errors_), previews_(state_),
          connection_(std::make_shared<HostConnection>(sqliteConnection(fromUtf8(database)))) {
        ::setenv("TMPDIR", (folder_ / "tmp").c_str(), 1);
        fs::create_directories(folder_ / "tmp");
        fs::create_directories(folder_ / "DB/BerichteLLVT/Preview");
        fs::copy(layouts, folder_ / "DB/BerichteLLVT");
        for (const auto& report : catalog::reports())
            jobs_.push_back({&report, arrayFor(report, values)});
    }

    /// The print number `number`, its list and its kind by turns.
    void print(long number) {
        const auto& job = jobs_[std::size_t(number) % jobs_.size()];
        const auto kind = std::size_t(number) / jobs_.size() % kKinds;
        const auto factory = factoryFor(kind);
        clsDruckManager manager(state_, previews_, *factory);
        manager.fkt_Init(connection_);
        if (!manager.fkt_Drucken(kPrint, 1, job.array, fromUtf8(folder_.path().string()),
                                 fromUtf8(job.report->listName), false, kWindow, job.report->productMode))
            throw std::runtime_error("the list " + std::string(job.report->listName) + " is not printed");
    }

    Holdings now() const { return holdings(folder_ / "tmp"); }

  private:
    static constexpr std::size_t kKinds = 4; ///< pages and three kinds of data

    /// A year, and two employees: the sheets of all of them take as long as all other lists together.
    static const catalog::Selections& selections() {
        using enum catalog::Selection;
        static const catalog::Selections kSelections{{Year, 2024}, {EmployeeFrom, 1}, {EmployeeTo, 2}};
        return kSelections;
    }

    static std::shared_ptr<catalog::ParameterArray> arrayFor(const catalog::ReportEntry& report,
                                                             const fs::path& values) {
        const auto name = std::string(report.listName) + ".csv";
        if (report.isFedByValues())
            return catalog::parseValues(report, readInput(values / name, kMostValues), name);
        catalog::Selections chosen;
        for (const auto* option : report.selections())
            if (const auto found = selections().find(option->selection); found != selections().end())
                chosen.insert(*found);
        return catalog::parameterArray(report, chosen);
    }

    std::unique_ptr<FormFactory> factoryFor(std::size_t kind) const {
        using druckwerk::DataFormat;
        constexpr std::array kFormats{DataFormat::Csv, DataFormat::Xlsx, DataFormat::Json};
        if (kind == 0) {
            druckwerk::Options options;
            options.output = folder_ / "document";
            options.printDate = {2024, 2, 1, 12, 0, 0};
            return std::make_unique<druckwerk::DruckwerkFormFactory>(std::move(options));
        }
        druckwerk::DataExportOptions options;
        options.output = folder_ / "document";
        options.format = kFormats[kind - 1];
        return std::make_unique<druckwerk::DataExportFormFactory>(std::move(options));
    }

    TemporaryFolder folder_;
    PosixPlatform platform_;
    ReferenceKvtzug library_;
    Errors errors_;
    ComponentState state_;
    basLL80 previews_;
    ObjectRef connection_;
    std::vector<Job> jobs_;
};

void tell(long prints, const Holdings& now) {
    std::cout << prints << " prints: " << now.memory / 1024 << " KB, " << now.files << " files, " << now.children
              << " processes, " << now.leftovers << " temporary files" << std::endl;
}

/// Whether the process holds no more than it did.
bool isFlat(const Holdings& before, const Holdings& after) {
    return after.memory <= before.memory + kSlack && after.files == before.files &&
           after.children == before.children && after.leftovers == before.leftovers;
}

} // namespace

int main(int count, char** arguments) {
    if (count != 5) {
        std::cerr << "usage: " << arguments[0] << " DATABASE LAYOUTS VALUES PRINTS\n";
        return 2;
    }
    try {
        const long prints = std::stol(arguments[4]);
        const long warm = std::clamp(prints / 5, 200L, 10'000L); // what is made once has been made then
        Soak soak(arguments[1], arguments[2], arguments[3]);
        std::optional<Holdings> before;
        for (long number = 1; number <= prints; ++number) {
            soak.print(number);
            if (number == warm)
                tell(number, *(before = soak.now()));
            else if (number % std::max(prints / 10, 1L) == 0)
                tell(number, soak.now());
        }
        return before && isFlat(*before, soak.now()) ? 0 : 1;
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return 1;
    }
}
