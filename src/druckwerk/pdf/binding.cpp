#include "druckwerk/pdf/binding.h"

#include "druckwerk/pdf/rewriting.h"

#include <functional>
#include <map>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>

namespace kvtdruck::druckwerk {

namespace {

/// The height of a line that leads to a chapter, in points: 7 mm.
constexpr double kLineHeight = 7 * 72 / 25.4;

std::map<QPDFObjGen, int> pageNumbers(QPDF& pdf) {
    std::map<QPDFObjGen, int> numbers;
    for (auto& page : QPDFPageDocumentHelper(pdf).getAllPages())
        numbers.emplace(page.getObjectHandle().getObjGen(), int(numbers.size()) + 1);
    return numbers;
}

using Visit = std::function<void(QPDFObjectHandle entry, int level)>;

void forEachEntry(QPDFObjectHandle parent, int level, const Visit& visit) {
    if (!parent.isDictionary())
        return;
    for (auto entry = parent.getKey("/First"); entry.isDictionary(); entry = entry.getKey("/Next")) {
        visit(entry, level);
        forEachEntry(entry, level + 1, visit);
    }
}

/// The cover, whose entry in the outline is no line of the contents.
constexpr int kCover = 1;

/// A line of the front, by its outline.
struct Line {
    int page; ///< from 1
    double top;
};

std::vector<Line> linesOf(QPDF& front) {
    const auto numbers = pageNumbers(front);
    std::vector<Line> lines;
    forEachEntry(front.getRoot().getKey("/Outlines"), 0, [&](QPDFObjectHandle entry, int) {
        auto destination = entry.getKey("/Dest");
        const int page = numbers.at(destination.getArrayItem(0).getObjGen());
        if (page != kCover)
            lines.push_back({page, destination.getArrayItem(3).getNumericValue()});
    });
    return lines;
}

QPDFObjectHandle linkTo(const QPDFObjectHandle& target, const Line& line, double width) {
    auto link = QPDFObjectHandle::parse("<</Type/Annot/Subtype/Link/Border[0 0 0]/F 4>>");
    link.replaceKey("/Rect", QPDFObjectHandle::newArray(
                                 QPDFObjectHandle::Rectangle(0, line.top - kLineHeight, width, line.top)));
    link.replaceKey(
        "/Dest", QPDFObjectHandle::newArray({target, QPDFObjectHandle::newName("/XYZ"), QPDFObjectHandle::newNull(),
                                             QPDFObjectHandle::newNull(), QPDFObjectHandle::newNull()}));
    return link;
}

} // namespace

std::vector<Chapter> chaptersOf(const std::filesystem::path& document, int deepest) {
    QPDF pdf;
    pdf.processFile(document.c_str());
    const auto numbers = pageNumbers(pdf);
    std::vector<Chapter> chapters;
    forEachEntry(pdf.getRoot().getKey("/Outlines"), 0, [&](QPDFObjectHandle entry, int level) {
        if (level <= deepest)
            chapters.push_back({entry.getKey("/Title").getUTF8Value(), level,
                                numbers.at(entry.getKey("/Dest").getArrayItem(0).getObjGen())});
    });
    return chapters;
}

std::string bound(const std::filesystem::path& front, const std::filesystem::path& document,
                  const std::vector<Chapter>& chapters) {
    QPDF frontPdf;
    frontPdf.processFile(front.c_str());
    QPDF pdf;
    pdf.processFile(document.c_str());
    const auto lines = linesOf(frontPdf);
    QPDFPageDocumentHelper frontPages(frontPdf);
    frontPages.pushInheritedAttributesToPage();
    auto before = frontPages.getAllPages();
    QPDFPageDocumentHelper pages(pdf);
    pages.pushInheritedAttributesToPage();
    for (auto page = before.rbegin(); page != before.rend(); ++page)
        pages.addPage(*page, true);
    auto all = pages.getAllPages();
    for (std::size_t i = 0; i < lines.size() && i < chapters.size(); ++i) {
        auto page = all.at(std::size_t(lines[i].page) - 1).getObjectHandle();
        const auto box = page.getKey("/MediaBox").getArrayAsRectangle();
        if (!page.hasKey("/Annots"))
            page.replaceKey("/Annots", QPDFObjectHandle::newArray());
        const auto target = all.at(before.size() + std::size_t(chapters[i].page) - 1).getObjectHandle();
        page.getKey("/Annots").appendItem(pdf.makeIndirectObject(linkTo(target, lines[i], box.urx)));
    }
    pdf.getRoot().replaceKey("/PageLabels", QPDFObjectHandle::parse("<</Nums[0<</S/r>>" +
                                                                    std::to_string(before.size()) + "<</S/D>>]>>"));
    pdf.getTrailer().replaceKey("/Info", pdf.copyForeignObject(frontPdf.getTrailer().getKey("/Info")));
    if (auto metadata = frontPdf.getRoot().getKey("/Metadata"); metadata.isStream()) // plain ones have none
        pdf.getRoot().replaceKey("/Metadata", pdf.copyForeignObject(metadata));
    return written(pdf);
}

} // namespace kvtdruck::druckwerk
