#include "druckwerk/page/document.h"

#include "druckwerk/pdf/color_profile.h"
#include "druckwerk/pdf/embedded_file.h"
#include "druckwerk/pdf/pdf_syntax.h"

namespace kvtdruck::druckwerk {

namespace {

std::string mediaBox(double width, double height) {
    std::string entry = "/MediaBox[0 0 ";
    appendNumber(entry, width);
    entry += ' ';
    appendNumber(entry, height);
    return entry + "]";
}

} // namespace

PdfDocument::PdfDocument(const std::filesystem::path& file, PdfLevel level, FontLibrary::Warn warn)
    : level_(level), output_(file), fonts_(output_, warn), warn_(std::move(warn)), root_(output_.allocate()),
      resources_(output_.allocate()) {
    if (level_ != PdfLevel::Accessible)
        return;
    structure_.emplace(output_);
    canvas_.beginTagging(output_);
}

void PdfDocument::setPageSize(double width, double height) {
    size_ = {width, height};
    if (pages_ == 0)
        firstSize_ = size_;
    canvas_.setHeight(height);
}

std::size_t PdfDocument::useForms(const std::string& source, const std::vector<Form>& forms) {
    const std::size_t first = forms_.size();
    forms_.insert(forms_.end(), forms.begin(), forms.end());
    sources_.emplace(source, first);
    return first;
}

std::optional<std::size_t> PdfDocument::formsOf(const std::string& source) const {
    const auto found = sources_.find(source);
    return found == sources_.end() ? std::nullopt : std::optional(found->second);
}

void PdfDocument::beginPage() {
    canvas_.clear();
    if (++pages_ == 2) // one page alone is done before a thread would have begun
        output_.workBeside();
    page_ = output_.allocate();
    links_.clear();
    if (structure_)
        pageKey_ = structure_->beginPage();
}

/// A border would be drawn; archives print what is no popup (ISO 19005-3, 6.3.2). In a structure a link is an
/// element with its text and its annotation (ISO 14289-1, 7.18.5; ISO 32000-1, 14.8.4.4.2).
void PdfDocument::link(const Box& box, const std::string& uri, const TaggedContent& text) {
    TaggedContent* around = canvas_.content();
    if (structure_ && (around == nullptr || text.element == 0))
        return;
    std::string body = "<</Type/Annot/Subtype/Link/Border[0 0 0]/F 4/Rect[";
    for (const double value : {box.x, canvas_.height() - box.bottom(), box.right(), canvas_.height() - box.y}) {
        appendNumber(body, value);
        body += ' ';
    }
    const int object = output_.allocate();
    const std::string key =
        structure_ ? "/StructParent " + std::to_string(structure_->own(text.element)) : std::string();
    output_.writeObject(object, body + "]/Contents" + hexadecimalString(uri) + "/A<</S/URI/URI" +
                                    hexadecimalString(uri) + ">>" + key + ">>");
    links_ += reference(object) + " ";
    if (!structure_)
        return;
    if (around->element == 0)
        around->element = output_.allocate();
    around->kids += reference(text.element) + " ";
    structure_->write(text.element, "Link", around->element,
                      "/Pg " + reference(page_) + "/K[" + text.kids + "<</Type/OBJR/Obj " + reference(object) +
                          ">>]");
}

int PdfDocument::lateObject(const LateText& late) {
    int& object = late_[late];
    if (object == 0)
        object = output_.allocate();
    return object;
}

void PdfDocument::endPage() {
    canvas_.endText();
    canvas_.endGraphics();
    std::string contents;
    const auto addStream = [&](const std::string& operators) {
        const int object = output_.allocate();
        output_.writeStream(object, "", operators);
        contents += reference(object) + " ";
    };
    for (const auto& part : canvas_.parts_) {
        addStream(part.operators);
        contents += reference(lateObject(part.late)) + " ";
    }
    addStream(canvas_.buffer_);
    if (kids_.size() == nodes_.size() * kPagesPerNode)
        nodes_.push_back(output_.allocate());
    output_.writeObject(page_, "<</Type/Page/Parent " + reference(nodes_[kids_.size() / kPagesPerNode]) +
                                   (size_ == firstSize_ ? "" : mediaBox(size_.width, size_.height)) +
                                   "/Resources " + reference(resources_) + "/Contents[" + contents + "]" +
                                   (links_.empty() ? "" : "/Annots[" + links_ + "]") +
                                   (structure_ ? "/Tabs/S/StructParents " + std::to_string(pageKey_) : "") + ">>");
    kids_.push_back(page_);
    if (structure_)
        structure_->endPage(canvas_.owners());
}

PdfDocument::Mark PdfDocument::mark() {
    return {kids_.size(), bookmarks_.size(), structure_ ? structure_->mark() : StructureTree::Mark{}};
}

void PdfDocument::dropSince(const Mark& mark) {
    pages_ = static_cast<int>(mark.pages);
    kids_.resize(mark.pages);
    bookmarks_.shrink(mark.bookmarks);
    if (structure_)
        structure_->dropSince(mark.structure);
}

void PdfDocument::bookmark(const std::vector<String>& path, double y) {
    if (!bookmarks_.add(path, page_, canvas_.height() - y))
        warn_("Mehr als " + std::to_string(bookmarks_.size()) + " Lesezeichen; die weiteren fehlen");
}

void PdfDocument::bookmarkSince(const Mark& mark, const std::vector<String>& path) {
    if (mark.bookmarks == bookmarks_.size() && mark.pages < kids_.size())
        bookmarks_.add(path, kids_[mark.pages], canvas_.height());
}

void PdfDocument::writeLateTexts() {
    const std::string digits = std::to_string(pages_);
    ShapedText number;
    for (const auto& [late, object] : late_) {
        Face& face = *faces_.at(late.face);
        fonts_.shape(String(digits.begin(), digits.end()), face, number);
        std::string operators;
        if (late.shift) {
            appendNumber(operators, -number.width * late.size * shareLeft(late.anchor));
            operators += " 0 Td\n";
        } else {
            operators = number.run(0).operators();
        }
        output_.writeStream(object, "", operators);
    }
}

void PdfDocument::writePageTree() {
    std::string root = "<</Type/Pages" + mediaBox(firstSize_.width, firstSize_.height) + "/Count " +
                       std::to_string(kids_.size()) + "/Kids[";
    for (std::size_t first = 0; first < kids_.size(); first += kPagesPerNode) {
        const std::size_t count = std::min(kPagesPerNode, kids_.size() - first);
        const int node = nodes_[first / kPagesPerNode];
        std::string body =
            "<</Type/Pages/Parent " + reference(root_) + "/Count " + std::to_string(count) + "/Kids[";
        for (std::size_t i = first; i < first + count; ++i)
            body += reference(kids_[i]) + " ";
        output_.writeObject(node, body + "]>>");
        root += reference(node) + " ";
    }
    output_.writeObject(root_, root + "]>>");
}

void PdfDocument::writeResources() {
    std::string states;
    for (const auto& [fill, stroke] : opacities_)
        states += "/O" + std::to_string(fill) + "_" + std::to_string(stroke) + "<</ca " +
                  std::to_string(fill / 1000.0) + "/CA " + std::to_string(stroke / 1000.0) + ">>";
    std::string objects = fonts_.imageResources();
    for (std::size_t i = 0; i < forms_.size(); ++i)
        objects += "/X" + std::to_string(i) + " " + reference(forms_[i].object);
    output_.writeObject(resources_, "<</Font<<" + fonts_.embedFonts() + ">>/XObject<<" + objects +
                                        ">>/ExtGState<<" + states + ">>>>");
}

/// What an archive asks of the catalog: the metadata, and what the colours look like (ISO 19005-3, 6.6.2
/// and 6.2.3).
std::string PdfDocument::writeArchiveEntries(const DocumentInfo& info) {
    if (level_ == PdfLevel::Plain)
        return {};
    const int metadata = output_.allocate();
    output_.writeRawStream(metadata, "/Type/Metadata/Subtype/XML", xmpPacket(info, level_));
    const int profile = output_.allocate();
    output_.writeStream(profile, "/N 3", srgbProfile());
    return "/Metadata " + reference(metadata) +
           "/OutputIntents[<</Type/OutputIntent/S/GTS_PDFA1/OutputConditionIdentifier(sRGB IEC61966-2.1)"
           "/RegistryName(http://www.color.org)/Info(sRGB IEC61966-2.1)/DestOutputProfile " +
           reference(profile) + ">>]";
}

/// The structure, which is complete and can be relied on (ISO 32000-1, 14.7.1; ISO 14289-1, 7.1).
std::string PdfDocument::writeStructureEntries() {
    if (!structure_)
        return {};
    return "/MarkInfo<</Marked true>>/StructTreeRoot " + reference(structure_->finish());
}

/// What leads from the catalog to places and to data: outline, named destinations, the attachment.
std::string PdfDocument::writeNavigation(const DocumentInfo& info, const Attachment* attachment) {
    std::string entries;
    std::string names;
    if (bookmarks_.size() > 0) {
        entries += "/PageMode/UseOutlines/Outlines " + reference(bookmarks_.write(output_));
        names += "/Dests " + reference(bookmarks_.writeNames(output_));
    }
    if (attachment != nullptr) {
        const std::string file = reference(writeEmbeddedFile(output_, *attachment, info.date));
        const String name = fromUtf8(attachment->file.filename().string());
        entries += "/AF[" + file + "]";
        names += "/EmbeddedFiles<</Names[" + pdfText(name) + file + "]>>";
    }
    return names.empty() ? entries : entries + "/Names<<" + names + ">>";
}

std::unique_ptr<AtomicFile> PdfDocument::finish(const DocumentInfo& info, const Attachment* attachment) {
    writeLateTexts();
    writePageTree();
    writeResources();
    const std::string navigation = writeNavigation(info, attachment);
    const std::string archive = writeArchiveEntries(info) + writeStructureEntries();
    const int catalog = output_.allocate();
    output_.writeObject(catalog, "<</Type/Catalog/Pages " + reference(root_) +
                                     "/Lang(de-DE)/ViewerPreferences<</DisplayDocTitle true>>" + navigation +
                                     archive + ">>");
    const int infoObject = output_.allocate();
    output_.writeObject(infoObject, infoDictionary(info));
    return output_.finish(catalog, infoObject);
}

} // namespace kvtdruck::druckwerk
