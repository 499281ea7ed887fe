#include "druckwerk/svg/color.h"
#include "druckwerk/svg/path_data.h"
#include "druckwerk/svg/svg_style.h"
#include "druckwerk/svg/transform_list.h"

#include <gtest/gtest.h>

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
    for (const char* wrong : {"#12", "#12345", "#ggg", "rgb(1,2)", "rgb(1,2,3", "rgb(a,b,c)", "hsl(1,2,3)",
                              "lab(1 2 3)", "url(#a)", "rgb(1,2,3,4,5)"})
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
    for (const auto& [property, value] : {std::pair("fill", "Darkred"),
                                          {"stroke", "url(#g)"},
                                          {"opacity", "50%"},
                                          {"stroke-width", "0.5mm"},
                                          {"stroke-dasharray", "1, 2"},
                                          {"font-weight", "650"},
                                          {"font-size", "120%"},
                                          {"font-size", "small"},
                                          {"letter-spacing", "normal"},
                                          {"text-anchor", "end"},
                                          {"font-variant", "normal"},
                                          {"paint-order", "normal"},
                                          {"fill", "red !important"},
                                          {"fill", "inherit"},
                                          {"line-height", "1.25"},
                                          {"-inkscape-stroke", "x"},
                                          {"transform", "scale(2)"}})
        EXPECT_TRUE(style.apply(property, value)) << property << ": " << value;
    for (const auto& [property, value] : {std::pair("fill", "darkredd"),
                                          {"stroke", "5"},
                                          {"opacity", "halb"},
                                          {"stroke-width", "-1"},
                                          {"stroke-width", "breit"},
                                          {"stroke-dasharray", "1 x"},
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

TEST(PathData, SaysWhetherItWasReadWhole) {
    const auto whole = [](const char* data) {
        bool all = false;
        parsePath(data, all);
        return all;
    };
    for (const char* data : {"", "M0 0L1 1z", "m0,0 1,1 2,2", "M1-1.5.5 0", "M0 0a1 1 0 0110 10"})
        EXPECT_TRUE(whole(data)) << data;
    for (const char* data : {"L1 1", "M0 0 L1", "M0 0 X", "M0 0 L 1e308 0 5 5", "M0"})
        EXPECT_FALSE(whole(data)) << data;
    bool all = true;
    EXPECT_EQ(parsePolygon("0,0 1,1 2", true, all).size(), 3U);
    EXPECT_FALSE(all);
    parsePolygon("0,0 1,1", false, all);
    EXPECT_TRUE(all);
}

} // namespace
} // namespace kvtdruck::druckwerk
