// What layouts draw beside their lines: artwork and charts.
#include "layout_fixture.h"

#include <gmock/gmock.h>

#include <string>

namespace kvtdruck::druckwerk {
namespace {

using namespace testing;
using ::testing::HasSubstr;

// --- Artwork ---

TEST_F(LayoutTest, ArtworkOfAllKindsIsPrinted) {
    writeFile(
        folder / "bild.png",
        outputOf("printf '%s' "
                 "iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR42mP8z8BQDwAEhQGAhKmMIQAAAABJRU5ErkJggg== "
                 "| base64 -d"));
    const std::string text = printed(
        page("<defs><linearGradient id='v'><stop offset='0' stop-color='#f00'/><stop offset='1' "
             "stop-color='#00f'/></linearGradient></defs>" +
             layer("Hintergrund", 0, 100,
                   "<rect x='5' y='5' width='40' height='10' fill='url(#v)'/><image href='bild.png' x='50' y='5' "
                   "width='10' height='10'/>"
                   "<g opacity='0.5'><circle cx='70' cy='10' r='5'/><text x='65' y='20'>durchsichtig</text></g>"
                   "<rect x='5' y='30' width='10' height='10' "
                   "style='fill:#0f0;fill-opacity:0.3;stroke:#000;stroke-dasharray:1 1'/>"
                   "<text x='5' y='50'>zwei<tspan x='5' y='55'>Zeilen</tspan></text>") +
             layer("Zeile", 60, 10, field(5, 60, 40, "Zeile {{Nr}}"))));
    EXPECT_THAT(text, HasSubstr("zwei\nZeilen"));
    EXPECT_THAT(text, HasSubstr("Zeile 1"));
    // The red end of the gradient, the picture, the white between them.
    const std::string pixels = outputOf("pdftoppm -r 25.4 -f 1 -l 1 '" + (folder / "out.pdf").string() + "'");
    const auto pixel = [&](std::size_t x, std::size_t y) {
        const std::size_t head = pixels.find("255\n") + 4;
        const std::size_t width = std::stoul(pixels.substr(3));
        const std::size_t at = head + 3 * (y * width + x);
        return std::array<int, 3>{static_cast<unsigned char>(pixels[at]),
                                  static_cast<unsigned char>(pixels[at + 1]),
                                  static_cast<unsigned char>(pixels[at + 2])};
    };
    EXPECT_GT(pixel(6, 10)[0], 200);
    EXPECT_LT(pixel(6, 10)[2], 60);
    EXPECT_GT(pixel(43, 10)[2], 200);
    EXPECT_EQ(pixel(47, 10), (std::array<int, 3>{255, 255, 255}));
    EXPECT_NE(pixel(55, 10), (std::array<int, 3>{255, 255, 255}));
    EXPECT_NEAR(pixel(70, 10)[0], 128, 3);
    EXPECT_NEAR(pixel(9, 35)[0], 179, 3);
}

TEST_F(LayoutTest, HiddenLayersAndGuidesAreNotPrinted) {
    const std::string text =
        printed(page(layer("Notizen", 0, 10, field(5, 2, 60, "{{=kaputt(}} geheim"), "style='display:none'") +
                     layer("Zeile", 20, 10, field(5, 20, 40, "Zeile {{Nr}}"))));
    EXPECT_THAT(text, ::testing::Not(HasSubstr("geheim")));
    EXPECT_THAT(text, HasSubstr("Zeile 1"));
}

TEST_F(LayoutTest, MovedGroupsAreReadWithTheirTransforms) {
    printed(page("<g inkscape:groupmode='layer' inkscape:label='Seitenkopf' transform='translate(0,30)'><g "
                 "transform='scale(2)'>" +
                 field(5, 5, 30, "verschoben") + "</g></g>"));
    const std::string boxes = boxesOf(folder / "out.pdf");
    EXPECT_NEAR(boxOf(boxes, "verschoben", "xMin"), 10 * 72 / 25.4, 0.1);
    EXPECT_NEAR(boxOf(boxes, "verschoben", "yMax"), (30 + 2 * 8.5) * 72 / 25.4, 4);
}

TEST_F(LayoutTest, StylesComeFromSheetClassAndAttribute) {
    printed(page("<g inkscape:groupmode='layer' inkscape:label='Seitenkopf' font-size='4'>"
                 "<text class='a gross' x='5' y='20'>Klasse</text><text class='gross' style='font-size:2px' x='5' "
                 "y='40'>Attribut</text></g>",
                 "/* { */ .gross, .nie { font-size: 10px }"));
    const std::string boxes = boxesOf(folder / "out.pdf");
    const auto height = [&](const char* word) { return boxOf(boxes, word, "yMax") - boxOf(boxes, word, "yMin"); };
    EXPECT_NEAR(height("Klasse") / height("Attribut"), 5, 0.1);
}

// --- Charts ---

TEST_F(LayoutTest, ChartsShowValuesLabelsAndLegend) {
    for (const char* kind : {"bars", "lines", "target", "share"}) {
        const std::string text = printed(page(layer(
            "Seitenkopf", 0, 90,
            "<g class='chart' font-size='2' data-chart='" + std::string(kind) +
                "' data-series='Nr, =Betrag*500; Betrag, Betrag' data-legend='Soll; Ist' data-labels='Jan; Feb'>"
                "<rect x='5' y='5' width='80' height='60'/></g>")));
        EXPECT_THAT(text, HasSubstr("Soll")) << kind;
        EXPECT_THAT(text, HasSubstr("Feb")) << kind;
        if (std::string(kind) != "share") {
            EXPECT_THAT(text, HasSubstr("1.000")) << kind;
        }
    }
}

TEST_F(LayoutTest, AChartOfLinesCollectsThem) {
    writeFile(
        folder / "Liste.svg",
        page(
            layer("Zeile", 5, 5, field(5, 5, 40, "{{Name}}")) +
            layer("Summe", 20, 60,
                  "<g class='chart' font-size='2' data-chart='bars' data-rows='Nr &lt;&gt; 2' data-series='Betrag' "
                  "data-labels='L{{Name}}'><rect x='5' y='22' width='80' height='50'/></g>")));
    ReportDriver report(folder / "out.pdf");
    report.fields({{"Nr", "1"}, {"Name", "a"}, {"Betrag", "10"}});
    ASSERT_EQ(report.start(folder / "Liste"), 0);
    report.page();
    for (const auto& [number, name] : {std::pair("1", "a"), {"2", "b"}, {"3", "c"}}) {
        report.fields({{"Nr", number}, {"Name", name}, {"Betrag", std::string(number) + "0"}});
        report.line();
    }
    ASSERT_EQ(report.end(), 0);
    const std::string text = rawTextOf(folder / "out.pdf");
    EXPECT_THAT(text, HasSubstr("La"));
    EXPECT_THAT(text, ::testing::Not(HasSubstr("Lb")));
    EXPECT_THAT(text, HasSubstr("Lc"));
    EXPECT_THAT(text, HasSubstr("30"));
}

TEST_F(LayoutTest, ChartLabelsAreBrokenInTheWidthThatTheAxisLeaves) {
    // Wide numbers at the axis: for some of these lengths only they make the label too long for one line.
    for (int length = 10; length < 30; ++length) {
        const std::string label = std::string(static_cast<std::size_t>(length), 'n') + " Ende";
        const std::string text =
            printed(page(layer("Seitenkopf", 0, 90,
                               "<g class='chart' font-size='2' data-chart='bars' data-series='=Betrag*10000000, "
                               "Betrag' data-labels='" +
                                   label + "; Kurz'><rect x='5' y='5' width='80' height='60'/></g>")));
        EXPECT_THAT(text, HasSubstr("Ende")) << length;
    }
}

TEST_F(LayoutTest, AChartThatIsTooSmallForItsFontEnds) {
    // Without a font size it is 16 units: the numbers at the axis alone are wider than the chart.
    for (const char* kind : {"bars", "lines", "target", "share"})
        for (const int width : {1, 20, 40, 60, 80})
            printed(
                page(layer("Seitenkopf", 0, 90,
                           "<g class='chart' data-chart='" + std::string(kind) +
                               "' data-series='=Betrag*10000000, Betrag, Betrag; Nr, Nr, Nr' data-labels='Januar; "
                               "Februar; M'><rect x='5' y='5' width='" +
                               std::to_string(width) + "' height='60'/></g>")));
}

TEST_F(LayoutTest, AChartWithoutFiguresIsEmptyNotWrong) {
    printed(page(layer(
        "Seitenkopf", 0, 90,
        "<g class='chart' data-chart='bars' data-series='Fehlt_1..3'><rect x='5' y='5' width='80' height='60'/></g>"
        "<g class='chart' data-chart='share' data-series='=1/0; Fehlt'><rect x='5' y='5' width='80' "
        "height='60'/></g>")));
}

} // namespace
} // namespace kvtdruck::druckwerk
