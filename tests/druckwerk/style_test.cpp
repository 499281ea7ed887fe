#include "druckwerk/svg/color.h"
#include "druckwerk/svg/image_extent.h"
#include "druckwerk/svg/path_data.h"
#include "druckwerk/svg/svg_style.h"
#include "druckwerk/svg/transform_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace kvtdruck::druckwerk {
namespace {

/// "r,g,b" or "r,g,b,alpha"; "-" for what is no colour.
std::string colorOf(const char* text) {
    const auto color = parseColor(text);
    if (!color)
        return "-";
    std::string parts = std::to_string(color->rgb.red) + "," + std::to_string(color->rgb.green) + "," +
                        std::to_string(color->rgb.blue);
    return color->alpha == 1 ? parts : parts + "," + std::to_string(std::lround(color->alpha * 100));
}

TEST(Color, NamesInAnyLetterCase) {
    EXPECT_EQ(colorOf("red"), "255,0,0");
    EXPECT_EQ(colorOf("Red"), "255,0,0");
    EXPECT_EQ(colorOf(" DarkRed "), "139,0,0");
    EXPECT_EQ(colorOf("LIGHTGOLDENRODYELLOW"), "250,250,210");
    EXPECT_EQ(colorOf("aliceblue"), "240,248,255");
    EXPECT_EQ(colorOf("yellowgreen"), "154,205,50");
    EXPECT_EQ(colorOf("rebeccapurple"), "102,51,153");
    EXPECT_EQ(colorOf("transparent"), "0,0,0,0");
    EXPECT_EQ(colorOf("darkredd"), "-");
    EXPECT_EQ(colorOf(""), "-");
}

TEST(Color, DigitsAndFunctions) {
    EXPECT_EQ(colorOf("#1a2B3c"), "26,43,60");
    EXPECT_EQ(colorOf("#abc"), "170,187,204");
    EXPECT_EQ(colorOf("#11223380"), "17,34,51,50");
    EXPECT_EQ(colorOf("#f008"), "255,0,0,53");
    EXPECT_EQ(colorOf("rgb(10, 20,30)"), "10,20,30");
    EXPECT_EQ(colorOf("RGB(100% 0% 50%)"), "255,0,128");
    EXPECT_EQ(colorOf("rgba(1,2,3,0.25)"), "1,2,3,25");
    EXPECT_EQ(colorOf("rgb(1 2 3 / 25%)"), "1,2,3,25");
    EXPECT_EQ(colorOf("hsl(120, 100%, 25%)"), "0,128,0");
    EXPECT_EQ(colorOf("hsl(210deg 50% 40% / 0.5)"), "51,102,153,50");
    for (const char* wrong :
         {"#12", "#12345", "#ggg", "rgb(1,2)", "rgb(1,2,3", "rgb(a,b,c)", "hsl(1,2,3)", "lab(1 2 3)", "url(#a)",
          "rgb(1,2,3,4,5)", "rgb(1,x,3)", "rgb(1,2,x)", "rgb(1 2 3 / x)", "hsl(1,2%,3)", "hsl(x,2%,3%)",
          "hsv(1,2%,3%)", "#1234567", "#12345g"})
        EXPECT_EQ(colorOf(wrong), "-") << wrong;
}

/// Where the point (1, 2) goes.
std::string mapped(const char* text) {
    const auto matrix = parseTransform(text);
    if (!matrix)
        return "-";
    const Point point = matrix->apply({1, 2});
    return std::to_string(std::lround(point.x * 100)) + "," + std::to_string(std::lround(point.y * 100));
}

TEST(Transform, ReadsTheWholeGrammar) {
    EXPECT_EQ(mapped(""), "100,200");
    EXPECT_EQ(mapped("none"), "100,200");
    EXPECT_EQ(mapped("translate(10-5)"), "1100,-300");
    EXPECT_EQ(mapped("translate(10)"), "1100,200");
    EXPECT_EQ(mapped(" translate ( 10 , 5 ) , scale(2) "), "1200,900");
    EXPECT_EQ(mapped("scale(2,3)translate(1,1)"), "400,900");
    EXPECT_EQ(mapped("rotate(90)"), "-200,100");
    EXPECT_EQ(mapped("rotate(90 1 2)"), "100,200");
    EXPECT_EQ(mapped("rotate(0.25turn)"), "-200,100");
    EXPECT_EQ(mapped("rotate(100grad)"), "-200,100");
    EXPECT_EQ(mapped("rotate(1.5707963268rad)"), "-200,100");
    EXPECT_EQ(mapped("rotate(+90deg)"), "-200,100");
    EXPECT_EQ(mapped("scale(2)"), "200,400");
    EXPECT_EQ(mapped("skewX(45)"), "300,200");
    EXPECT_EQ(mapped("skewY(45)"), "100,300");
    EXPECT_EQ(mapped("matrix(1,0,0,1,.5.5)"), "150,250");
    EXPECT_EQ(mapped("matrix(1 0 0 1 +2e1 -1E1)"), "2100,-800");
    EXPECT_EQ(mapped("translate(25.4mm,1in)"), "9700,9800");
    EXPECT_EQ(mapped("translate(200000, -150000)"), "20000100,-14999800");
}

TEST(Transform, RefusesEverythingElse) {
    for (const char* wrong : {"rotat(45)", "translate(1,2,3)", "translate()", "matrix(1,2,3)", "rotate(1,2)",
                              "translate(1", "translate 1", "scale(a)", "rotate(5px)", "translate(1e9)",
                              "Translate(1)", "skew(1)", "scale(1))", "translate(nan)", "5"})
        EXPECT_EQ(mapped(wrong), "-") << wrong;
}

TEST(Style, SaysWhatItDoesNotUnderstand) {
    Style style;
    for (const auto& [property, value] : {std::pair("fill", "Darkred"), {"stroke", "url(#g)"},
                                          {"opacity", "50%"},           {"stroke-width", "0.5mm"},
                                          {"stroke-dasharray", "1, 2"}, {"font-weight", "650"},
                                          {"font-size", "120%"},        {"font-size", "small"},
                                          {"font-size", "1.5em"},       {"fill", "none"},
                                          {"fill", "transparent"},      {"fill", "currentColor"},
                                          {"opacity", "+0.5"},          {"font-weight", "bolder"},
                                          {"font-weight", "lighter"},   {"stroke-dasharray", "none"},
                                          {"vector-effect", "none"},    {"paint-order", "auto"},
                                          {"letter-spacing", "normal"}, {"text-anchor", "end"},
                                          {"font-variant", "normal"},   {"paint-order", "normal"},
                                          {"fill", "red !important"},   {"fill", "inherit"},
                                          {"line-height", "1.25"},      {"-inkscape-stroke", "x"},
                                          {"transform", "scale(2)"}})
        EXPECT_TRUE(style.apply(property, value)) << property << ": " << value;
    for (const auto& [property, value] : {std::pair("fill", "darkredd"),
                                          {"stroke", "5"},
                                          {"opacity", "halb"},
                                          {"stroke-width", "-1"},
                                          {"stroke-width", "breit"},
                                          {"stroke-dasharray", "1 x"},
                                          {"stroke-dasharray", "1 -1"},
                                          {"opacity", "0.5x"},
                                          {"opacity", "0.5%%"},
                                          {"font-size", "-1px"},
                                          {"font-size", "x%"},
                                          {"stroke-width", "1e9"},
                                          {"font-weight", "fett"},
                                          {"font-size", "10 pt"},
                                          {"font-size", "groß"},
                                          {"font-style", "kursiv"},
                                          {"text-anchor", "rechts"},
                                          {"stroke-linecap", "rund"},
                                          {"stroke-linejoin", "x"},
                                          {"fill-rule", "odd"},
                                          {"visibility", "unsichtbar"},
                                          {"letter-spacing", "weit"},
                                          {"font", "bold 12px Arial"},
                                          {"text-transform", "uppercase"},
                                          {"paint-order", "stroke"},
                                          {"vector-effect", "non-scaling-stroke"},
                                          {"transform", "rotat(45)"},
                                          {"stroke-miterlimit", "0"},
                                          {"color", "bunt"}})
        EXPECT_FALSE(style.apply(property, value)) << property << ": " << value;
}

TEST(Style, HoldsWhatWasSaid) {
    Style style;
    for (const auto& [property, value] : {std::pair("color", "red"),
                                          {"fill", "currentColor"},
                                          {"stroke", "transparent"},
                                          {"font-size", "20px"},
                                          {"font-size", "150%"},
                                          {"font-weight", "bolder"},
                                          {"font-family", "'Noto Sans', \"DejaVu Sans\" ,, serif"},
                                          {"stroke-dasharray", "1em 2"},
                                          {"fill-opacity", "25%"}})
        EXPECT_TRUE(style.apply(property, value)) << property;
    EXPECT_EQ(style.fill.kind, Paint::Kind::Color);
    EXPECT_EQ(style.fill.color.red, 255);
    EXPECT_EQ(style.fill.opacity, 0.25);
    EXPECT_EQ(style.stroke.kind, Paint::Kind::None);
    EXPECT_EQ(style.fontSize, 30);
    EXPECT_EQ(style.font.weight, 700);
    EXPECT_THAT(style.font.families, ::testing::ElementsAre("Noto Sans", "DejaVu Sans", "serif"));
    EXPECT_THAT(style.dashes, ::testing::ElementsAre(30, 2));
    style.apply("stroke-dasharray", "0 0");
    EXPECT_TRUE(style.dashes.empty()) << "dashes without a length are a line";
    style.apply("font-weight", "bolder");
    EXPECT_EQ(style.font.weight, 900);
    style.apply("font-weight", "lighter");
    EXPECT_EQ(style.font.weight, 400);
    style.apply("font-weight", "lighter");
    EXPECT_EQ(style.font.weight, 100);
    style.apply("font-size", "larger");
    EXPECT_EQ(style.fontSize, 36);
    style.apply("font-size", "smaller");
    EXPECT_EQ(style.fontSize, 30);
    std::string many;
    for (int i = 0; i < 33; ++i)
        many += "1 ";
    EXPECT_FALSE(style.apply("stroke-dasharray", many));
}

TEST(Style, KnowsWhatOnlyTheLibraryCanDraw) {
    const auto says = [](bool Style::*trait, const char* property, const char* value) {
        Style style;
        EXPECT_TRUE(style.apply(property, value));
        return style.*trait;
    };
    for (const char* marker : {"marker", "marker-start", "marker-end", "clip-path", "mask", "filter"}) {
        EXPECT_TRUE(says(&Style::complex, marker, "url(#a)")) << marker;
        EXPECT_FALSE(says(&Style::complex, marker, "none")) << marker;
    }
    EXPECT_TRUE(says(&Style::flowed, "shape-inside", "url(#a)"));
    for (const char* nothing : {"none", "auto", "0"})
        EXPECT_FALSE(says(&Style::flowed, "inline-size", nothing)) << nothing;
    EXPECT_TRUE(says(&Style::unusualText, "letter-spacing", "1px"));
    EXPECT_FALSE(says(&Style::unusualText, "letter-spacing", "0"));
    EXPECT_TRUE(says(&Style::unusualText, "text-decoration", "underline"));
    EXPECT_FALSE(says(&Style::unusualText, "text-decoration", "none"));
}

TEST(StyleSheet, TheMoreSpecificRuleAndTheLaterOneGoesBefore) {
    StyleSheet sheet;
    sheet.add("/* a */ #eins{fill:red} rect.a{fill:blue} .a{fill:lime} .a{stroke:red} * {stroke:blue}"
              "rect, .b {font-size:20px} .a.b, g > rect {fill:black} .c{fill:bunt} /* open");
    const auto fillOf = [&](const char* name, const char* classes, const char* id) {
        Style style;
        sheet.apply(style, name, classes, id);
        return std::pair<int, int>(style.fill.color.red, style.fill.color.blue);
    };
    EXPECT_EQ(fillOf("rect", "a", "eins"), std::pair(255, 0));
    EXPECT_EQ(fillOf("rect", "b a", ""), std::pair(0, 255));
    EXPECT_EQ(fillOf("circle", "a", "zwei").first, 0);
    EXPECT_EQ(fillOf("circle", "", "eins"), std::pair(255, 0));
    Style plain;
    sheet.apply(plain, "text", "c", "");
    EXPECT_EQ(plain.stroke.color.blue, 255);
    EXPECT_TRUE(sheet.knows("a"));
    EXPECT_TRUE(sheet.knows("b"));
    EXPECT_FALSE(sheet.knows("rect"));
    EXPECT_THAT(sheet.ignored(), ::testing::ElementsAre(".a.b", "g > rect"));
    EXPECT_THAT(sheet.notUnderstood(), ::testing::ElementsAre("fill: bunt"));
}

TEST(Picture, ExtentFromItsHeadAndContentFromItsAddress) {
    const std::string png = std::string("\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\1\2\0\0\0\3", 24) + "x";
    EXPECT_EQ(imageExtent(png), std::pair(258U, 3U));
    const std::string jpeg("\xff\xd8\xff\xe0\0\4ab\xff\xc4\0\2\xff\xc0\0\x11\10\1\0\2\0\3", 22);
    EXPECT_EQ(imageExtent(jpeg), std::pair(512U, 256U));
    for (const std::string& other : {png.substr(0, 24), std::string(30, 'x'), std::string("\xff\xd8"),
                                     std::string("\xff\xd8\xff\xe0\0\2\xff\xd9\0\0\0\0\0\0", 14)})
        EXPECT_EQ(imageExtent(other), std::nullopt);
    for (const std::string& content : {std::string(), std::string("a"), std::string("ab"), std::string("abc"), png,
                                       jpeg, std::string("\xfb\xff\xfe")})
        EXPECT_EQ(dataOf(dataAddress(content)), content);
    EXPECT_TRUE(dataAddress(jpeg).starts_with("data:image/jpeg;base64,/9j"));
    EXPECT_EQ(dataOf("data:image/png;base64,aGFs\r\n\t bG8="), "hallo");
    for (const char* other : {"data:image/png,x", "http://a,b", "data:image/png;base64", "data:x;base64,a*b"})
        EXPECT_EQ(dataOf(other), std::nullopt) << other;
}

/// Each step of a path and where it ends, in hundredths: "M100,200".
std::vector<std::string> steps(const char* data) {
    bool whole = false;
    std::vector<std::string> steps;
    for (const Segment& segment : parsePath(data, whole)) {
        const Point end = segment.points[segment.kind == 'C' ? 2 : 0];
        steps.push_back(std::string(1, segment.kind) + std::to_string(std::lround(end.x * 100)) + "," +
                        std::to_string(std::lround(end.y * 100)));
    }
    EXPECT_TRUE(whole) << data;
    return steps;
}

std::string controls(const char* data) {
    bool whole = false;
    const auto outline = parsePath(data, whole);
    const auto text = [](Point point) {
        return std::to_string(std::lround(point.x * 100)) + "," + std::to_string(std::lround(point.y * 100));
    };
    return text(outline.back().points[0]) + " " + text(outline.back().points[1]);
}

TEST(PathData, EachCommandEndsWhereItLeads) {
    using ::testing::ElementsAre;
    EXPECT_THAT(steps("M1 2H5V7h-1v-2"), ElementsAre("M100,200", "L500,200", "L500,700", "L400,700", "L400,500"));
    EXPECT_THAT(steps("m1 1 2 0 +2 2"), ElementsAre("M100,100", "L300,100", "L500,300"));
    EXPECT_THAT(steps("M0 0C1 1 2 1 3 0s2-1 3 0"), ElementsAre("M0,0", "C300,0", "C600,0"));
    EXPECT_THAT(steps("M0 0Q1 1 2 0t2 0"), ElementsAre("M0,0", "C200,0", "C400,0"));
    EXPECT_THAT(steps("M0 0A1 1 0 0 1 2 0").back(), "C200,0");
    EXPECT_THAT(steps("M0 0A0 1 0 0 1 2 0"), ElementsAre("M0,0", "L200,0")) << "without a radius it is a line";
    EXPECT_THAT(steps("M0 0A1 0 0 0 1 2 0"), ElementsAre("M0,0", "L200,0"));
    EXPECT_THAT(steps("none"), ElementsAre());
}

TEST(PathData, SmoothCurvesGoOnInTheDirectionOfTheOneBefore) {
    EXPECT_EQ(controls("M0 0C1 1 2 1 3 0S5-1 6 0"), "400,-100 500,-100");
    EXPECT_EQ(controls("M0 0S1 1 2 2"), "0,0 100,100") << "none before it";
    EXPECT_EQ(controls("M0 0Q1 1 2 0T4 0"), "267,-67 333,-67");
    EXPECT_EQ(controls("M0 0L1 0T3 0"), "100,0 167,0");
}

/// The outermost points of the half circles from (0, 0) to (2, 0).
TEST(PathData, ArcsTurnAsTheirFlagsSay) {
    const auto highest = [](const char* data) {
        bool whole = false;
        double y = 0;
        for (const Segment& segment : parsePath(data, whole))
            if (segment.kind == 'C' && std::fabs(segment.points[2].y) > std::fabs(y))
                y = segment.points[2].y;
        return std::lround(y * 100);
    };
    EXPECT_EQ(highest("M0 0A1 1 0 0 1 2 0"), -100);
    EXPECT_EQ(highest("M0 0A1 1 0 0 0 2 0"), 100);
    EXPECT_EQ(highest("M0 0A.1 .1 0 0 1 2 0"), -100) << "too small a circle grows";
    EXPECT_LT(highest("M0 0A2 2 0 1 1 2 0"), -200) << "the long way";
    EXPECT_GT(highest("M0 0A2 2 0 1 0 2 0"), 200);
    EXPECT_EQ(highest("M0 0A2 2 0 0 1 2 0"), 0) << "the short way, in one piece";
}

TEST(PathData, SaysWhetherItWasReadWhole) {
    const auto whole = [](const char* data) {
        bool all = false;
        parsePath(data, all);
        return all;
    };
    for (const char* data : {"", "M0 0L1 1z", "m0,0 1,1 2,2", "M1-1.5.5 0", "M0 0a1 1 0 0110 10"})
        EXPECT_TRUE(whole(data)) << data;
    for (const char* data :
         {"L1 1", "M0 0 L1", "M0 0 X", "M0 0 L 1e308 0 5 5", "M0", "M0 0H", "M0 0V", "M0 0C1 1 2 2 3", "M0 0S1 1 2",
          "M0 0Q1 1 2", "M0 0T1", "M0 0A1 1 0 2 0 1 1", "M0 0A1 1 0 0 0 1"})
        EXPECT_FALSE(whole(data)) << data;
    bool all = true;
    EXPECT_EQ(parsePolygon("0,0 1,1 2", true, all).size(), 3U);
    EXPECT_FALSE(all);
    EXPECT_TRUE(parsePolygon("", true, all).empty());
    parsePolygon("0,0 1,1", false, all);
    EXPECT_TRUE(all);
}

} // namespace
} // namespace kvtdruck::druckwerk
