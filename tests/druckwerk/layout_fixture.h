#pragma once

#include "layout_text.h"
#include "pdf_reader.h"
#include "report_driver.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <string>
#include <vector>

namespace kvtdruck::druckwerk::testing {

/// A layout of one list, checked or printed.
class LayoutTest : public ::testing::Test {
  protected:
    /// What is said about a layout with the fields Nr, Name and Betrag.
    std::vector<Finding> findings(const std::string& svg, bool unused = false) {
        writeFile(folder / "Liste.svg", svg);
        return checkLayout(folder / "Liste.svg",
                           {{"Nr", "1", true, true}, {"Name", "x", false, true}, {"Betrag", "2", true, true}},
                           unused);
    }

    /// The first error, with its code; "" where there is none.
    std::string error(const std::string& svg, std::int32_t code = kLayoutInvalid) {
        for (const auto& finding : findings(svg))
            if (finding.error) {
                EXPECT_EQ(finding.code, code) << finding.message;
                EXPECT_THAT(finding.message, ::testing::HasSubstr("Liste.svg"));
                return finding.message;
            }
        return "";
    }

    /// Prints one line with the layout and gives the text.
    std::string printed(const std::string& svg) {
        writeFile(folder / "Liste.svg", svg);
        ReportDriver report(folder / "out.pdf");
        report.fields({{"Nr", "1"}, {"Name", "x"}, {"Betrag", "2"}});
        EXPECT_EQ(report.start(folder / "Liste"), 0) << (report.errors.empty() ? "" : report.errors[0].message);
        report.page();
        report.line();
        EXPECT_EQ(report.end(), 0);
        check(folder / "out.pdf");
        return rawTextOf(folder / "out.pdf");
    }

    static std::string row(const std::string& content, const std::string& attributes = "") {
        return page(layer("Zeile", 20, 10, content, attributes));
    }

    TemporaryFolder folder;
};

} // namespace kvtdruck::druckwerk::testing
