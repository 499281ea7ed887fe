// The document that is being printed: its pages, fonts, bookmarks. Pages are written as they close.
#pragma once

#include "druckwerk/common/attachment.h"
#include "druckwerk/common/pdf_level.h"
#include "druckwerk/page/bookmarks.h"
#include "druckwerk/page/canvas.h"
#include "druckwerk/pdf/metadata.h"
#include "druckwerk/pdf/pdf_output.h"
#include "druckwerk/pdf/structure_tree.h"
#include "druckwerk/text/font_library.h"

#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace kvtdruck::druckwerk {

/// A PDF document.
class PdfDocument {
  public:
    /// A state of the document between two pages.
    struct Mark {
        std::size_t pages;
        std::size_t bookmarks;
        StructureTree::Mark structure;
        bool operator==(const Mark&) const = default;
    };

    /// A drawing that pages may show.
    struct Form {
        int object;
        Box ink; ///< what it covers of a page; of no extent where nobody has to know that
    };

    PdfDocument(const std::filesystem::path& file, PdfLevel level, FontLibrary::Warn warn);

    PdfOutput& output() { return output_; }
    FontLibrary& fonts() { return fonts_; }
    Canvas& canvas() { return canvas_; }
    /// The document's structure; nullptr where it has none.
    StructureTree* structure() { return structure_ ? &*structure_ : nullptr; }
    /// The object of the page in hand.
    int page() const { return page_; }
    int pages() const { return pages_; }

    /// The size of the pages to come, in points. It has to be given before the first page.
    void setPageSize(double width, double height);
    void beginPage();
    void endPage();
    /// An entry of the outline at height `y` of the page in hand, below the entries of the levels before its own.
    void bookmark(const std::vector<String>& path, double y);
    /// Gives the pages since `mark` an entry, where they have none.
    void bookmarkSince(const Mark& mark, const std::vector<String>& path);
    /// Makes `box` of the page in hand lead to `uri`, which is ASCII. In a tagged document `text` is what shows the
    /// link, within the content that the canvas is at; furniture leads nowhere.
    void link(const Box& box, const std::string& uri, const TaggedContent& text);
    /// The resource "/O<fill>_<stroke>" (opacities in thousandths).
    void useOpacity(int fill, int stroke) { opacities_.insert({fill, stroke}); }
    /// Makes the forms of `source` the resources "/X<number>" and those after it; gives that number.
    std::size_t useForms(const std::string& source, const std::vector<Form>& forms);
    const Form& form(std::size_t number) const { return forms_[number]; }
    /// The number of the first form of `source`, where the document has it.
    std::optional<std::size_t> formsOf(const std::string& source) const;

    /// Lets the number of pages be set in `face`.
    void useFace(Face& face) { faces_[face.number()] = &face; }

    Mark mark();
    /// Takes out every page and bookmark since `mark`.
    void dropSince(const Mark& mark);

    /// Gives the file, which is complete and not yet in its place. `attachment` is the data behind it, if any.
    std::unique_ptr<AtomicFile> finish(const DocumentInfo& info, const Attachment* attachment = nullptr);

  private:
    struct Size {
        double width = 0;
        double height = 0;
        bool operator==(const Size&) const = default;
    };
    static constexpr std::size_t kPagesPerNode = 64;
    int lateObject(const LateText& late);
    void writeLateTexts();
    void writePageTree();
    void writeResources();
    std::string writeNavigation(const DocumentInfo& info, const Attachment* attachment);
    std::string writeArchiveEntries(const DocumentInfo& info);
    std::string writeStructureEntries();

    PdfLevel level_;
    PdfOutput output_;
    FontLibrary fonts_;
    Canvas canvas_;
    std::optional<StructureTree> structure_;
    FontLibrary::Warn warn_;
    Size size_;
    Size firstSize_; ///< what pages have that say nothing else
    int pages_ = 0;
    int root_;
    int resources_;
    int page_ = 0;
    int pageKey_ = 0;   ///< of the page in hand, in the structure
    std::string links_; ///< of the page in hand: references to their objects
    std::vector<int> kids_;
    std::vector<int> nodes_; ///< of the page tree, each of `kPagesPerNode` pages
    std::map<LateText, int> late_;
    std::map<int, Face*> faces_;
    std::set<std::pair<int, int>> opacities_;
    std::vector<Form> forms_;
    std::map<std::string, std::size_t> sources_; ///< the first form of each source
    Bookmarks bookmarks_;
};

} // namespace kvtdruck::druckwerk
