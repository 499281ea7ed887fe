// Layouts that somebody has made to do harm.
#include "layout_fixture.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <string>

namespace kvtdruck::druckwerk {
namespace {

using namespace testing;
using ::testing::HasSubstr;

/// Groups n1, n2, … of which each uses the one before it twice; `attribute` stands before each reference.
std::string doublings(int count, const std::string& attribute) {
    std::string groups = "<rect id='n0' width='1' height='1'/>";
    for (int i = 1; i < count; ++i) {
        const std::string use = "<use " + attribute + "href='#n" + std::to_string(i - 1) + "'/>";
        groups.append("<g id='n").append(std::to_string(i)).append("'>").append(use).append(use).append("</g>");
    }
    return groups;
}

TEST_F(LayoutTest, EntityBombsAreRefused) {
    std::string bomb = "<!DOCTYPE svg [<!ENTITY a0 'ha'>";
    for (int i = 1; i < 30; ++i)
        bomb += "<!ENTITY a" + std::to_string(i) + " '&a" + std::to_string(i - 1) + ";&a" + std::to_string(i - 1) +
                ";'>";
    EXPECT_THAT(error(bomb + "]><svg xmlns='http://www.w3.org/2000/svg'><text>&a29;</text></svg>", kLayoutRefused),
                HasSubstr("Entitäten"));
    EXPECT_THAT(
        error("<!DOCTYPE svg [<!ENTITY x SYSTEM 'file:///etc/passwd'>]><svg xmlns='http://www.w3.org/2000/svg' "
              "width='1mm' height='1mm'><text>&x;</text></svg>",
              kLayoutRefused),
        HasSubstr("Entitäten"));
    EXPECT_THAT(error("<!DOCTYPE svg [<!ENTITY x '" + std::string(5, 'x') +
                          "'>]><svg xmlns='http://www.w3.org/2000/svg' id='&x;'/>",
                      kLayoutRefused),
                HasSubstr("Entitäten"));
}

TEST_F(LayoutTest, APlainDocumentTypeIsFine) {
    EXPECT_EQ(
        error("<!DOCTYPE svg PUBLIC '-//W3C//DTD SVG 1.1//EN' 'http://www.w3.org/Graphics/SVG/1.1/DTD/svg11.dtd'>" +
              row(field(5, 20, 20, "{{Nr}}"))),
        "");
}

TEST_F(LayoutTest, NothingOutsideIsEverReferredTo) {
    for (const char* reference :
         {"<use href='http://example.org/a.svg#b'/>", "<image xlink:href='../geheim.png'/>",
          "<image href='/etc/passwd'/>", "<image href='file:///etc/passwd'/>",
          "<image href='http://example.org/x.png'/>", "<rect style='fill:url(other.svg#a)'/>",
          "<rect fill='url(http://example.org/#a)'/>", "<style>@import 'http://example.org/x.css';</style>",
          "<style>text { fill: url(//example.org/a#b) }</style>"})
        EXPECT_THAT(error(row(reference), kLayoutRefused), HasSubstr("Verweis nach außen ist nicht erlaubt"))
            << reference;
    EXPECT_THAT(error("<?xml-stylesheet href='x.css'?>" + row(""), kLayoutRefused), HasSubstr("xml-stylesheet"));
    EXPECT_THAT(error(row("<script>alert(1)</script>"), kLayoutRefused), HasSubstr("Skripte"));
    EXPECT_THAT(error(row("<foreignObject/>"), kLayoutRefused), HasSubstr("foreignObject"));
}

TEST_F(LayoutTest, ALinkOutOfTheFolderIsRefused) {
    std::filesystem::create_symlink("/etc/hostname", folder / "bild.png");
    EXPECT_THAT(error(row("<image href='bild.png'/>"), kLayoutRefused), HasSubstr("Verweis nach außen"));
}

TEST_F(LayoutTest, CyclicAndMultiplyingUseIsRefused) {
    EXPECT_THAT(error(row("<g id='a'><use href='#b'/></g><g id='b'><use href='#a'/></g>"), kLayoutRefused),
                HasSubstr("Verwendung im Kreis"));
    EXPECT_THAT(error(row("<use id='u' xlink:href='#u'/>"), kLayoutRefused), HasSubstr("Verwendung im Kreis"));
    EXPECT_THAT(error(row("<defs>" + doublings(40, "") + "</defs><use href='#n39'/>"), kLayoutRefused),
                HasSubstr("vervielfacht"));
}

// Which of two attributes with the same name a reader takes is up to it, so each is looked at.
TEST_F(LayoutTest, AnAttributeCannotHideBehindAnotherOfItsName) {
    const std::string q = "xmlns:q='http://example.org/q' ";
    for (const std::string hidden :
         {"<use xlink:href='#a' href='http://example.org/a.svg#b'/>", "<use href='#a' xlink:href='andere.svg#b'/>",
          "<image xlink:href='data:image/png;base64,iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJ' href='../x'/>",
          "<image href='file:///etc/passwd' xlink:href='#a'/>",
          "<rect q:style='fill:red' style='fill:url(http://example.org/a.svg#b)' width='1' height='1'/>"})
        EXPECT_THAT(error(row(std::string("<g id='a' ").append(q).append(">").append(hidden).append("</g>")),
                          kLayoutRefused),
                    HasSubstr("Verweis nach außen ist nicht erlaubt"))
            << hidden;
}

TEST_F(LayoutTest, UseCannotMultiplyBehindAnotherAttribute) {
    const std::string nested = doublings(25, "xlink:href='#leer' ");
    EXPECT_THAT(error(row("<defs><g id='leer'/>" + nested + "</defs><use href='#n24'/>"), kLayoutRefused),
                HasSubstr("vervielfacht"));
}

/// Elements without ids that each use a large one count as well.
TEST_F(LayoutTest, UsesWithoutIdsAreCounted) {
    std::string large = "<g id='gross'>";
    for (int i = 0; i < 5000; ++i)
        large += "<path/>";
    large += "</g>";
    std::string uses;
    for (int i = 0; i < 20; ++i)
        uses += "<use href='#gross'/>";
    EXPECT_THAT(error(row("<defs>" + large + "</defs>" + uses), kLayoutRefused), HasSubstr("vervielfacht"));
}

TEST_F(LayoutTest, MarkersAtManyPointsAreCounted) {
    std::string marker = "<marker id='m'>";
    for (int i = 0; i < 100; ++i)
        marker += "<path/>";
    std::string path = "M0 0";
    for (int i = 0; i < 1000; ++i)
        path += "L1 1";
    for (const std::string how : {"marker-mid='url(#m)'", "style='marker-mid:url(#m)'"})
        EXPECT_THAT(error(row(std::string("<defs>")
                                  .append(marker)
                                  .append("</marker></defs><path ")
                                  .append(how)
                                  .append(" d='")
                                  .append(path)
                                  .append("'/>")),
                          kLayoutRefused),
                    HasSubstr("vervielfacht"));
}

TEST_F(LayoutTest, AChainOfUsesIsNoDeeperThanElementsMayBe) {
    std::string chain = "<rect id='k0' width='1' height='1'/>";
    for (int i = 1; i < 9000; ++i)
        chain += "<use id='k" + std::to_string(i) + "' href='#k" + std::to_string(i - 1) + "'/>";
    EXPECT_THAT(error(row(chain), kLayoutRefused), HasSubstr("64 Ebenen"));
}

TEST_F(LayoutTest, PicturesWithinTheLayoutAreMeasured) {
    // The head of a PNG of 60,000 by 60,000 pixels.
    const std::string huge = "data:image/png;base64,iVBORw0KGgoAAAANSUhEUgAA6mAAAOpgCAYAAAA=";
    EXPECT_THAT(error(row("<image href='" + huge + "'/>"), kLayoutRefused), HasSubstr("größer als 8192 Pixel"));
    EXPECT_THAT(error(row("<image href='data:image/svg+xml;base64,PHN2Zy8+'/>")), HasSubstr("weder PNG noch JPEG"));
}

TEST_F(LayoutTest, FiltersThatCostMoreThanTheirAreaAreRefused) {
    for (const char* name : {"feTurbulence", "feConvolveMatrix", "feImage", "feMorphology", "feDiffuseLighting"})
        EXPECT_THAT(error(row("<defs><filter id='f'><" + std::string(name) + "/></filter></defs>"), kLayoutRefused),
                    HasSubstr(name));
}

TEST_F(LayoutTest, IncludedFilesAreRefused) {
    EXPECT_THAT(
        error(row("<xi:include xmlns:xi='http://www.w3.org/2001/XInclude' href='/etc/passwd'/>"), kLayoutRefused),
        HasSubstr("xi:include"));
}

TEST_F(LayoutTest, AttributesAndTextsWithPlaceholdersAreBounded) {
    std::string attributes;
    for (int i = 0; i < 300; ++i)
        attributes += " a" + std::to_string(i) + "='1'";
    EXPECT_THAT(error(row("<g" + attributes + "/>"), kLayoutRefused), HasSubstr("250 Attribute"));
    EXPECT_THAT(error(row(field(5, 5, 40, "{{Name}}" + std::string(10'000, 'x'))), kLayoutRefused),
                HasSubstr("länger als 10.000 Zeichen"));
}

TEST_F(LayoutTest, DepthSizeAndNumberAreBounded) {
    std::string deep;
    for (int i = 0; i < 100; ++i)
        deep.insert(0, "<g>").append("</g>");
    EXPECT_THAT(error(row(deep), kLayoutRefused), HasSubstr("64 Ebenen"));
    std::string deeper(100000 * 3, ' ');
    for (std::size_t i = 0; i < deeper.size(); i += 3)
        deeper.replace(i, 3, "<g>");
    EXPECT_NE(error(row(deeper), kLayoutMalformed), "");
    std::string many;
    for (int i = 0; i < 20001; ++i)
        many += "<g/>";
    EXPECT_THAT(error(row(many), kLayoutRefused), HasSubstr("20.000 Elemente"));
    std::string large;
    large.resize(20'000'001, ' ');
    EXPECT_THAT(error(large, kLayoutRefused), HasSubstr("größer als 20 MB"));
}

TEST_F(LayoutTest, HugeAndStrangeNumbersDoNoHarm) {
    for (const char* page :
         {"width='1e308mm' height='1mm'", "width='-5mm' height='5mm'", "width='nan' height='5mm'",
          "width='5000mm' height='5mm'", "width='10mm' height='10mm' viewBox='0 0 0 0'",
          "width='10mm' height='10mm' viewBox='0 0 1e-300 1e-300'"})
        EXPECT_NE(error("<svg xmlns='http://www.w3.org/2000/svg' " + std::string(page) + "/>"), "") << page;
    printed(
        row("<path d='M0 0 L1e308 1e308 C 1 1 nan 2 3 inf'/><path d='M0,0 A1e-300 5 0 1 1 9,9 a0 0 0 0 0 0 0Z'/>"
            "<path d='m0 0zzzzhvcs5'/><circle r='-1'/><rect width='5' height='5' rx='1e5'/>"
            "<line x1='0' x2='99999' y1='0' y2='0' stroke='red' stroke-dasharray='0.000001'/>"
            "<g transform='matrix(1 2 3) scale(0) rotate(1e5)'><rect width='1' height='1'/></g>"
            "<text x='1' y='1' font-size='0'>x</text><text x='1' y='25' style='font-size:1e-9px'>y</text>"));
}

} // namespace
} // namespace kvtdruck::druckwerk
