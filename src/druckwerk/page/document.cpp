#include "druckwerk/page/document.h"

#include "druckwerk/pdf/pdf_syntax.h"

namespace kvtdruck::druckwerk {

namespace {

constexpr std::size_t kMaximumBookmarks = 20000;

std::string reference(int object) {
    return std::to_string(object) + " 0 R";
}

std::string mediaBox(double width, double height) {
    std::string entry = "/MediaBox[0 0 ";
    appendNumber(entry, width);
    entry += ' ';
    appendNumber(entry, height);
    return entry + "]";
}

std::string pdfDate(const PrintDate& date) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "(D:%04d%02d%02d%02d%02d%02d)", date.year, date.month, date.day,
                  date.hour, date.minute, date.second);
    return text.data();
}

} // namespace

PdfDocument::PdfDocument(const std::filesystem::path& file, FontLibrary::Warn warn)
    : output_(file), fonts_(output_, warn), warn_(std::move(warn)), root_(output_.allocate()),
      resources_(output_.allocate()) {}

void PdfDocument::setPageSize(double width, double height) {
    size_ = {width, height};
    if (pages_ == 0)
        firstSize_ = size_;
    canvas_.setHeight(height);
}

int PdfDocument::useForms(const std::string& source, const std::vector<int>& objects) {
    const auto first = static_cast<int>(forms_.size());
    forms_.insert(forms_.end(), objects.begin(), objects.end());
    sources_.emplace(source, first);
    return first;
}

std::optional<int> PdfDocument::formsOf(const std::string& source) const {
    const auto found = sources_.find(source);
    return found == sources_.end() ? std::nullopt : std::optional(found->second);
}

void PdfDocument::beginPage() {
    canvas_.clear();
    if (++pages_ == 2) // one page alone is done before a thread would have begun
        output_.workBeside();
    page_ = output_.allocate();
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
                                   (size_ == firstSize_ ? "" : mediaBox(size_.width, size_.height)) + "/Contents[" +
                                   contents + "]>>");
    kids_.push_back(page_);
}

void PdfDocument::dropSince(const Mark& mark) {
    pages_ = static_cast<int>(mark.pages);
    kids_.resize(mark.pages);
    bookmarks_.resize(mark.bookmarks);
    bookmarkPath_.clear();
}

void PdfDocument::bookmark(const std::vector<String>& path, double y) {
    if (path == bookmarkPath_)
        return;
    std::size_t level = 0;
    while (level < path.size() && level < bookmarkPath_.size() && path[level] == bookmarkPath_[level])
        ++level;
    for (; level < path.size(); ++level) {
        if (bookmarks_.size() == kMaximumBookmarks)
            return warn_("Mehr als " + std::to_string(kMaximumBookmarks) + " Lesezeichen; die weiteren fehlen");
        bookmarks_.push_back({level, path[level], page_, canvas_.height() - y});
    }
    bookmarkPath_ = path;
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
            const ShapedRun& run = number.run(0);
            operators = run.kerned ? run.glyphs + ")]TJ\n" : run.glyphs.substr(1) + ")Tj\n";
        }
        output_.writeStream(object, "", operators);
    }
}

void PdfDocument::writePageTree() {
    std::string root = "<</Type/Pages" + mediaBox(firstSize_.width, firstSize_.height) + "/Resources " +
                       reference(resources_) + "/Count " + std::to_string(kids_.size()) + "/Kids[";
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
        objects += "/X" + std::to_string(i) + " " + reference(forms_[i]);
    output_.writeObject(resources_, "<</Font<<" + fonts_.embedFonts() + ">>/XObject<<" + objects +
                                        ">>/ExtGState<<" + states + ">>>>");
}

/// Writes the outline; gives its object, or 0 where there is none.
int PdfDocument::writeOutline() {
    if (bookmarks_.empty())
        return 0;
    std::vector<int> objects(bookmarks_.size() + 1); // the last one is the outline itself
    for (int& object : objects)
        object = output_.allocate();
    const auto links = linkBookmarks(objects);
    for (std::size_t i = 0; i < bookmarks_.size(); ++i) {
        const Bookmark& bookmark = bookmarks_[i];
        std::string body = links[i].entries() + "/Title " + pdfText(bookmark.text) + "/Dest[" +
                           reference(bookmark.page) + "/XYZ null ";
        appendNumber(body, bookmark.y);
        output_.writeObject(objects[i], "<<" + body + " null]>>");
    }
    output_.writeObject(objects.back(), "<<" + links.back().entries() + "/Type/Outlines>>");
    return objects.back();
}

/// The links of each bookmark, and behind them those of the outline itself.
std::vector<PdfDocument::Links> PdfDocument::linkBookmarks(const std::vector<int>& objects) const {
    const std::size_t outline = bookmarks_.size();
    std::vector<Links> links(outline + 1);
    std::vector<std::size_t> lastChild(outline + 1);
    std::vector<std::size_t> ancestors = {outline};
    for (std::size_t i = 0; i < outline; ++i) {
        ancestors.resize(bookmarks_[i].level + 1);
        const std::size_t parent = ancestors.back();
        links[i].parent = objects[parent];
        links[i].previous = links[parent].last;
        (links[parent].last == 0 ? links[parent].first : links[lastChild[parent]].next) = objects[i];
        links[parent].last = objects[i];
        lastChild[parent] = i;
        --links[parent].count; // below the first level entries begin closed
        ancestors.push_back(i);
    }
    links.back().count = -links.back().count;
    return links;
}

std::string PdfDocument::Links::entries() const {
    std::string text;
    const auto link = [&](const char* name, int object) {
        if (object != 0)
            text += std::string(name) + " " + reference(object);
    };
    link("/Parent", parent);
    link("/Prev", previous);
    link("/Next", next);
    link("/First", first);
    link("/Last", last);
    return count == 0 ? text : text + "/Count " + std::to_string(count);
}

std::unique_ptr<AtomicFile> PdfDocument::finish(const DocumentInfo& info) {
    writeLateTexts();
    writePageTree();
    writeResources();
    const int outline = writeOutline();
    const int catalog = output_.allocate();
    const int infoObject = output_.allocate();
    output_.writeObject(catalog, "<</Type/Catalog/Pages " + reference(root_) +
                                     "/Lang(de-DE)/ViewerPreferences<<"
                                     "/DisplayDocTitle true>>" +
                                     (outline == 0 ? "" : "/PageMode/UseOutlines/Outlines " + reference(outline)) +
                                     ">>");
    output_.writeObject(infoObject, "<</Title " + pdfText(info.title) + "/Author " + pdfText(info.author) +
                                        "/Creator " + pdfText(info.creator) + "/Producer " + pdfText(info.creator) +
                                        "/CreationDate" + pdfDate(info.date) + "/ModDate" + pdfDate(info.date) +
                                        ">>");
    return output_.finish(catalog, infoObject);
}

} // namespace kvtdruck::druckwerk
