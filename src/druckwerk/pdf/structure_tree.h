// The logical structure of a document (ISO 32000-1, 14.7), written as its pages close.
#pragma once

#include "druckwerk/pdf/pdf_output.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kvtdruck::druckwerk {

/// Elements go out as they are finished; what stays in memory is a number for each part of the document, for each
/// leaf of the two trees that lead to elements, and what is on the page in hand.
class StructureTree {
  public:
    /// A state between two pages.
    struct Mark {
        std::size_t parts = 0;
        std::size_t owners = 0;
        std::size_t names = 0;
        bool operator==(const Mark&) const = default;
    };

    explicit StructureTree(PdfOutput& output)
        : output_(output), root_(output.allocate()), document_(output.allocate()) {}

    /// The element around all others.
    int document() const { return document_; }
    int allocate() { return output_.allocate(); }
    /// Writes an element; `entries` are those of its dictionary besides type and parent.
    void write(int element, std::string_view type, int parent, std::string_view entries);
    /// Puts an element that was written, or will be, behind those below the document.
    void addPart(int element) { parts_.push_back(element); }
    /// A new name for an element, as a PDF string; names rise.
    std::string name(int element);

    /// What the page's dictionary names the tree by. Its objects follow until `endPage`.
    int beginPage() { return pageKey_ = nextKey_++; }
    /// The key of an object of the page, such as a link, that belongs to `element`.
    int own(int element);
    /// `owners` are the elements of the page's marks.
    void endPage(std::span<const int> owners);

    Mark mark();
    /// Forgets what was added since `mark`.
    void dropSince(const Mark& mark);

    /// Writes what leads to the elements; gives the tree's root.
    int finish();

  private:
    /// A leaf of a tree of names or numbers, and those that were written.
    struct Leaves {
        std::string entries;
        std::string first, last; ///< the limits of the leaf in hand
        std::size_t count = 0;
        std::vector<int> written;
    };
    void add(Leaves& leaves, std::string_view kind, const std::string& key, const std::string& value);
    void close(Leaves& leaves, std::string_view kind);
    std::string treeOf(Leaves& leaves, std::string_view kind);

    PdfOutput& output_;
    int root_;
    int document_;
    int nextKey_ = 0;
    int pageKey_ = 0;
    int names_ = 0;
    std::string body_; ///< of the element in hand
    std::vector<int> parts_;
    std::vector<int> objects_; ///< the elements of the page's objects, by their keys
    Leaves owned_;
    Leaves named_;
};

} // namespace kvtdruck::druckwerk
