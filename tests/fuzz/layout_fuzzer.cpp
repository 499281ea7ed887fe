// Any bytes as a layout, and a short list printed with what is left of it: findings or pages, in bounded time and
// memory.
#include "druckwerk/report_driver.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kvtdruck::druckwerk::testing;
    static const kvtdruck::TemporaryFolder folder;
    const auto list = folder / "Liste";
    writeFile(list.string() + ".svg", {reinterpret_cast<const char*>(data), size});

    ReportDriver driver(folder / "liste.pdf");
    const ReportDriver::Values head{{"FnrName1", "Musterbau GmbH"}, {"Fuerjahr", "2024"}, {"Waehrung", "EUR"}};
    driver.variables(head);
    driver.fields({{"KtoBez", "Löhne"}, {"IUmsatzDM", "1234,5"}, {"Seitenwechsel", "1"}});
    if (driver.start(list) != 0)
        return 0;
    driver.page();
    for (const char* const amount : {"-0,5", "99999999,99", "0"}) {
        driver.fields({{"KtoBez", "Ein Konto"}, {"IUmsatzDM", amount}});
        driver.line();
    }
    driver.end();
    return 0;
}
