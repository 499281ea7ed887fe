// Charts by their boxes on the page, and looks that depend on a condition.
#include "layout_text.h"
#include "pdf_reader.h"
#include "report_driver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

namespace kvtdruck::druckwerk {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// A filled rectangle of the page, in points from its lower left corner.
struct Filled {
    double x, y, width, height;
    double top() const { return y + height; }
};

class ChartTest : public ::testing::Test {
  protected:
    static constexpr const char* kBox = "<rect x='5' y='5' width='80' height='60'/>";

    /// A page with one chart.
    static std::string chart(const std::string& attributes) {
        return page(
            layer("Seitenkopf", 0, 90, "<g class='chart' font-size='2' " + attributes + ">" + kBox + "</g>"));
    }

    /// Prints a line in which A is 10, B 30, C -20 and Null 0; more than one on pages of their own.
    void print(const std::string& svg, const std::vector<std::string>& as = {"10"}) {
        warnings.clear();
        writeFile(folder / "Liste.svg", svg);
        ReportDriver report(folder / "out.pdf");
        const auto define = [&](const std::string& a) {
            report.fields({{"A", a}, {"B", "30"}, {"C", "-20"}, {"Null", "0"}, {"Wort", "x"}});
        };
        define(as.front());
        ASSERT_EQ(report.start(folder / "Liste"), 0) << (report.errors.empty() ? "" : report.errors[0].message);
        for (const auto& a : as) {
            define(a);
            report.page();
            report.line();
        }
        ASSERT_EQ(report.end(), 0);
        check(folder / "out.pdf");
        warnings = report.warnings;
    }

    /// What is filled with a colour of three digits 0 or f on the pages, in order.
    std::vector<Filled> filled(const std::string& color) const {
        const std::string pdf = (folder / "out.pdf").string();
        std::istringstream lines(
            outputOf("qpdf --stream-data=uncompress --object-streams=disable '" + pdf + "' -"));
        std::string start;
        for (const char digit : color)
            start += digit == 'f' ? "1 " : "0 ";
        std::vector<Filled> found;
        for (std::string line; std::getline(lines, line);) {
            const auto at = line.find(start + "rg ");
            if (at != std::string::npos && line.ends_with(" re f")) {
                std::istringstream numbers(line.substr(at + start.size() + 3));
                auto& box = found.emplace_back();
                numbers >> box.x >> box.y >> box.width >> box.height;
            }
        }
        if (!found.empty() && found.front().width == found.front().height)
            found.erase(found.begin()); // the legend's swatch
        return found;
    }

    std::string text() const { return rawTextOf(folder / "out.pdf"); }
    double place(const std::string& word, const std::string& attribute) const {
        return boxOf(boxesOf(folder / "out.pdf"), word, attribute);
    }

    /// The first error of a layout; "" where there is none.
    std::string error(const std::string& svg) {
        writeFile(folder / "Liste.svg", svg);
        for (const auto& finding :
             checkLayout(folder / "Liste.svg", {{"A", "1", true, true}, {"B", "2", true, true}}))
            if (finding.error)
                return finding.message;
        return "";
    }

    TemporaryFolder folder;
    std::vector<std::string> warnings;
};

TEST_F(ChartTest, StackedBarsStandOnEachOther) {
    print(chart("data-chart='stacked' data-series='A; B; C' data-colors='#f00; #0f0; #00f'"));
    const auto a = filled("f00").at(0);
    const auto b = filled("0f0").at(0);
    const auto c = filled("00f").at(0);
    EXPECT_NEAR(b.y, a.top(), 0.05);
    EXPECT_NEAR(b.height / a.height, 3, 0.05);
    EXPECT_NEAR(c.top(), a.y, 0.05) << "what is negative hangs below zero";
    EXPECT_NEAR(c.height / a.height, 2, 0.05);
    EXPECT_EQ(a.x, b.x);
    EXPECT_EQ(a.width, c.width);
    EXPECT_THAT(warnings, IsEmpty());
}

TEST_F(ChartTest, HorizontalBarsLieOneBelowTheOtherWithTheirLabelsAtTheLeft) {
    print(
        chart("data-chart='horizontal' data-series='A, B, C' data-labels='Anton; Berta; Cäsar' data-colors='#f00' "
              "data-legend='Reihe' data-unit='EUR' data-values='0,0'"));
    const auto bars = filled("f00");
    ASSERT_THAT(bars, SizeIs(3));
    EXPECT_NEAR(bars.at(1).width / bars.at(0).width, 3, 0.05);
    EXPECT_NEAR(bars.at(1).x, bars.at(0).x, 0.05);
    EXPECT_NEAR(bars.at(2).x + bars.at(2).width, bars.at(0).x, 0.05) << "what is negative goes to the left of zero";
    EXPECT_GT(bars.at(0).y, bars.at(1).top());
    EXPECT_LT(place("Anton", "xMax"), bars.at(2).x);
    EXPECT_LT(place("Anton", "yMin"), place("Berta", "yMin"));
    EXPECT_GT(place("10,0", "xMin"), bars.at(0).x + bars.at(0).width);
    EXPECT_LT(place("-20,0", "xMax"), bars.at(2).x + bars.at(2).width);
    EXPECT_THAT(text(), HasSubstr("EUR"));
    EXPECT_THAT(warnings, IsEmpty());
}

TEST_F(ChartTest, LinesLieOverBarsOnTheSameAxis) {
    print(chart("data-chart='bars' data-lines='1' data-series='A, B; B, A' data-colors='#f00; #0f0'"));
    const auto bars = filled("f00");
    ASSERT_THAT(bars, SizeIs(2));
    auto points = filled("0f0");
    if (points.size() == 1) // the first was taken for a swatch, since a point is as wide as it is high
        points.insert(points.begin(),
                      Filled{bars.at(0).x + bars.at(0).width / 2 - 1.3, bars.at(1).top() - 1.3, 2.6, 2.6});
    ASSERT_THAT(points, SizeIs(2));
    EXPECT_NEAR(points.at(1).y + 1.3, bars.at(0).top(), 0.05) << "the line's second value is A, as the first bar's";
    EXPECT_NEAR(bars.at(0).width / (bars.at(1).x - bars.at(0).x), 0.72 * 0.94, 0.01)
        << "the bars have all the room";

    print(chart("data-chart='stacked' data-lines='1' data-series='A; A; B' data-colors='#f00; #0f0; #00f'"));
    EXPECT_THAT(filled("0f0"), SizeIs(1));
    EXPECT_NEAR(filled("0f0").at(0).y, filled("f00").at(0).top(), 0.05) << "the line does not stand on the stack";
}

TEST_F(ChartTest, NumbersStandBesideWhatShowsThem) {
    print(chart("data-chart='bars' data-series='A, C' data-colors='#f00' data-values='0,00' data-format='0'"));
    const auto bars = filled("f00");
    const double height = 100 * 72 / 25.4;
    EXPECT_LT(place("10,00", "yMax"), height - bars.at(0).top() + 1) << "above";
    EXPECT_GT(place("-20,00", "yMin"), height - bars.at(1).y - 1) << "below what hangs down";
    EXPECT_THAT(warnings, IsEmpty());
    print(chart("data-chart='bars' data-series='A, C' data-values='1' data-format='0,000'"));
    EXPECT_THAT(text(), HasSubstr("10,000")) << "as the axis";
    for (const auto* kind : {"lines", "target", "share", "stacked"}) {
        print(chart("data-chart='" + std::string(kind) + "' data-series='A; B' data-values='0,00'"));
        EXPECT_THAT(text(), HasSubstr(std::string(kind) == "share" ? "25,0 %" : "10,00")) << kind;
    }
    std::string many = "A";
    for (int i = 0; i < 40; ++i)
        many += ",=A*1000000";
    print(chart("data-chart='bars' data-series='" + many + "' data-values='#.##0,00'"));
    EXPECT_THAT(warnings, ElementsAre(HasSubstr("für Zahlen (data-values) ist zu wenig Platz")));
}

TEST_F(ChartTest, TheAxisHasItsUnit) {
    for (const auto* kind : {"bars", "lines", "horizontal"}) {
        print(chart("data-chart='" + std::string(kind) + "' data-series='A; B' data-unit='Tsd. EUR'"));
        EXPECT_THAT(text(), HasSubstr("Tsd. EUR")) << kind;
    }
    print(chart("data-chart='bars' data-series='A; B' data-unit='Einheit' data-legend='eins; zwei'"));
    EXPECT_GT(place("Einheit", "yMin"), place("eins", "yMax") - 0.5) << "below the legend";
    EXPECT_LT(place("Einheit", "yMax"), place("30", "yMin") + 0.5) << "above the axis";
}

TEST_F(ChartTest, ASetScaleIsTheSameOnAllPages) {
    const std::string bars = "data-chart='bars' data-series='A' data-colors='#f00' ";
    print(chart(bars + "data-scale='0; 40'"), {"10", "20"});
    auto boxes = filled("f00");
    ASSERT_THAT(boxes, SizeIs(2));
    EXPECT_NEAR(boxes.at(1).height / boxes.at(0).height, 2, 0.02);
    EXPECT_THAT(warnings, IsEmpty());
    print(chart(bars), {"10", "20"});
    boxes = filled("f00");
    EXPECT_NEAR(boxes.at(1).height / boxes.at(0).height, 1, 0.02) << "otherwise each page has its own";
    print(chart(bars + "data-scale='0; B'"), {"10", "15"});
    boxes = filled("f00");
    EXPECT_NEAR(boxes.at(1).height / boxes.at(0).height, 1.5, 0.02) << "a name may set it";

    print(chart(bars + "data-scale='0; 5'"));
    EXPECT_THAT(warnings, ElementsAre(HasSubstr("liegen nicht alle in data-scale")));
    print(chart(bars + "data-scale='B; A'"));
    EXPECT_THAT(warnings, ElementsAre(HasSubstr("data-scale ist hier kein Bereich (30 bis 10)")));
}

TEST_F(ChartTest, WhatAChartAttributeCannotMeanIsAnError) {
    const auto with = [&](const std::string& attributes) {
        return error(chart("data-series='A; B' " + attributes));
    };
    EXPECT_THAT(with("data-chart='torte'"),
                HasSubstr("keines von bars, stacked, horizontal, lines, target, share"));
    for (const auto* lines : {"2", "-1", "1,5", "viel"})
        EXPECT_THAT(with("data-chart='bars' data-lines='" + std::string(lines) + "'"),
                    HasSubstr("keine Zahl von Reihen"))
            << lines;
    EXPECT_THAT(with("data-chart='lines' data-lines='1'"), HasSubstr("data-lines geht nur mit"));
    EXPECT_THAT(with("data-chart='bars' data-scale='5'"), HasSubstr("data-scale braucht zwei Werte, „von; bis“"));
    EXPECT_THAT(with("data-chart='bars' data-scale='0; A +'"), HasSubstr("Ungültiger Ausdruck"));
    EXPECT_THAT(with("data-chart='bars' data-values='#,##;;;;'"), HasSubstr("Ungültiges Zahlenformat"));
    EXPECT_THAT(with("data-chart='share' data-unit='EUR'"), HasSubstr("gehen nicht mit data-chart=\"share\""));
    EXPECT_THAT(with("data-chart='share' data-scale='0; 1'"), HasSubstr("gehen nicht mit data-chart=\"share\""));
}

// --- Looks ---

constexpr const char* kRed = ".negativ { fill: #f00; font-weight: bold } .kasten { fill: #00f }";

TEST_F(ChartTest, AClassHoldsWhereItsConditionDoes) {
    const std::string field = "<g class='field' data-class='negativ' data-class-if='A &lt; 0'><rect x='5' y='5' "
                              "width='40' height='5'/><text x='5' y='9' style='fill:#0f0'>{{A|0,00}}</text></g>"
                              "<rect x='50' y='50' width='10' height='10' fill='#0f0' data-class='kasten' "
                              "data-class-if='A &lt; 0'/>";
    const auto svg = page(layer("Seitenkopf", 0, 90, field), kRed);
    const auto has = [&](const std::string& operators) {
        const auto pdf = outputOf("qpdf --stream-data=uncompress '" + (folder / "out.pdf").string() + "' -");
        return pdf.find(operators) != std::string::npos;
    };
    print(svg, {"-5"});
    EXPECT_TRUE(has("1 0 0 rg")) << "before the text's own style";
    EXPECT_TRUE(has("0 0 1 rg"));
    EXPECT_FALSE(has("0 1 0 rg"));
    EXPECT_THAT(text(), HasSubstr("-5,00"));
    EXPECT_EQ(text().find("-5,00"), text().rfind("-5,00")) << "once";
    print(svg, {"5"});
    EXPECT_FALSE(has("1 0 0 rg"));
    EXPECT_FALSE(has("0 0 1 rg"));
    EXPECT_TRUE(has("0 1 0 rg"));
    print(svg, {"-5", "5"});
    EXPECT_TRUE(has("1 0 0 rg") && has("0 1 0 rg"));
}

TEST_F(ChartTest, AClassThatCannotHoldIsAnError) {
    const auto with = [&](const std::string& content) {
        return error(page(layer("Seitenkopf", 0, 90, content), kRed));
    };
    const auto text = [](const std::string& attributes) { return "<text x='5' y='9' " + attributes + ">a</text>"; };
    EXPECT_EQ(with(text("data-class='negativ' data-class-if='A &lt; 0'")), "");
    EXPECT_THAT(with(text("data-class='negativ'")), HasSubstr("gehören zusammen"));
    EXPECT_THAT(with(text("data-class-if='A'")), HasSubstr("gehören zusammen"));
    EXPECT_THAT(with(text("data-class='nie' data-class-if='A'")),
                HasSubstr("Klasse „nie“ steht in keinem Stil (als „.nie“)"));
    EXPECT_THAT(with(text("data-class='negativ' data-class-if='A &lt;'")), HasSubstr("Ungültiger Ausdruck „A <“"));
    EXPECT_THAT(
        with("<g data-class='negativ' data-class-if='A'>" + text("data-class='kasten' data-class-if='B'") + "</g>"),
        HasSubstr("geht nicht in einem Element, das selbst data-class hat"));
    EXPECT_THAT(with("<g class='field'><rect width='9' height='9'/>" +
                     text("data-class='negativ' data-class-if='A'") + "</g>"),
                HasSubstr("gehört an die Gruppe des Feldes"));
    EXPECT_THAT(with("<g opacity='0.5' data-class='negativ' data-class-if='A'><rect width='9' height='9'/></g>"),
                HasSubstr("data-class geht nicht mit Teilen mit Verlauf"));
}

TEST_F(ChartTest, NamesInBothLooksAreNamesThatAreNeeded) {
    writeFile(folder / "Liste.svg",
              page(layer("Seitenkopf", 0, 90,
                         "<text x='5' y='9' data-class='negativ' data-class-if='A &lt; 0'>{{Nirgends}}</text>"),
                   kRed));
    const auto found = checkLayout(folder / "Liste.svg", {{"A", "1", true, true}});
    ASSERT_THAT(found, SizeIs(1));
    EXPECT_THAT(found[0].message, HasSubstr("Unbekannter Name „Nirgends“"));
}

} // namespace
} // namespace kvtdruck::druckwerk
