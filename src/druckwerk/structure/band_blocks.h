// The blocks of one band while it is printed: which of them say something new, and what of the page shows them.
#pragma once

#include "druckwerk/structure/blocks.h"
#include "druckwerk/structure/table_writer.h"

#include <string>
#include <vector>

namespace kvtdruck::druckwerk {

/// Headings of a job: their levels begin with 1 and leave none out (ISO 14289-1, 7.4.2).
class HeadingLevels {
  public:
    /// The type of the next heading, whose level would be `wanted`.
    const char* next(std::size_t wanted);

  private:
    std::size_t last_ = 0;
};

/// What a printed band says, item by item; empty for what is not printed.
using Said = std::vector<String>;

class BandBlocks {
  public:
    /// A band of `items`, whose blocks are in the order in which they are read.
    BandBlocks(std::vector<Block> blocks, std::size_t items);

    /// The band is printed and all of it says something.
    void begin();
    /// The band is printed again and says nothing.
    void beginFurniture();
    /// The band of a page is printed, and says `said`. What it said on the page before is new only with something
    /// new beneath its heading. `late` are items that are known only at the page's end and always new.
    void begin(Said said, const std::vector<bool>& late);
    /// Like this, but paragraphs and headings alone say nothing, as below a page.
    void beginFooter(Said said, const std::vector<bool>& late);

    /// What shows the item; nullptr where it says nothing new.
    TaggedContent* contentOf(std::size_t item, StructureTree& structure);
    /// The item says `text`; a chart or a picture is described by it. It is moved down by `down`.
    void say(std::size_t item, StringView text, double down);

    bool isShown() const;
    /// Writes the blocks that are shown; gives their elements, a blank behind each. `place` is what the outline
    /// calls the place.
    std::string write(PdfDocument& document, int parent, HeadingLevels& levels, StringView place);

  private:
    struct Slot {
        std::size_t block = kNone;
        std::size_t content = kNone;
    };
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    void compare(Said said, const std::vector<bool>& late);
    bool isHeading(std::size_t block) const;
    void spreadToHeadings();
    bool isShown(std::size_t block) const;
    /// What a block says that is no table.
    String textOf(std::size_t block) const;
    /// All that shows such a block.
    TaggedContent joined(std::size_t block) const;
    std::string writeTable(PdfDocument& document, int parent, const Block& block, std::size_t first);
    void writeFigure(PdfDocument& document, int parent, std::size_t block, const String& title);

    std::vector<Block> blocks_;
    std::vector<std::size_t> first_; ///< of each block's contents
    std::vector<Slot> slots_;        ///< by item
    std::vector<TaggedContent> contents_;
    std::vector<bool> isNew_;   ///< by block
    std::vector<String> texts_; ///< by content, but for tables
    std::vector<double> down_;  ///< by block
    Said said_;
    bool saidAny_ = false;
};

} // namespace kvtdruck::druckwerk
