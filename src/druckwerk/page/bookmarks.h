// The outline of a document and its named destinations: where readers, and links from elsewhere, find what in it.
#pragma once

#include "druckwerk/pdf/pdf_output.h"
#include "values/text.h"

#include <functional>
#include <string>
#include <vector>

namespace kvtdruck::druckwerk {

class Bookmarks {
  public:
    /// An entry at height `y` above the lower edge of the page object `page`, below the entries of the levels of
    /// `path` before its own. The same path as before is no new entry. False where the outline is full.
    bool add(const std::vector<String>& path, int page, double y);

    std::size_t size() const { return entries_.size(); }
    /// Takes out all but the first `size` entries.
    void shrink(std::size_t size);

    /// Writes the outline; gives its object. It may not be empty.
    int write(PdfOutput& output) const;
    /// Writes the tree of the destinations' names (ISO 32000-1, 7.9.6 and 12.3.2.3); gives its object. What is
    /// called `a`, with `b` and `c` below it, is the destination "a/b/c"; of several with one name the first one
    /// has it.
    int writeNames(PdfOutput& output) const;

  private:
    struct Entry {
        std::size_t level;
        String text;
        int page;
        double y; ///< above the page's lower edge
    };
    /// Where an entry stands in the outline: the objects around it, 0 where there is none.
    struct Links {
        int parent = 0, previous = 0, next = 0, first = 0, last = 0;
        int count = 0; ///< of the entries below, negative where they begin closed
        std::string entries() const;
    };
    std::vector<Links> link(const std::vector<int>& objects) const;

    std::vector<Entry> entries_;
    std::vector<String> path_;
};

} // namespace kvtdruck::druckwerk
