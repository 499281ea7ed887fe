// What a print job adds to the structure of its document: each band as rows of its table or as blocks of their own.
#pragma once

#include "druckwerk/structure/band_blocks.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kvtdruck::druckwerk {

/// Told by the print job what it prints. A job is a part of the document, in sections, each of them with the blocks
/// of a page and the table, if one follows, over all of its pages.
class JobStructure {
  public:
    /// Layout and document outlive it.
    JobStructure(const Layout& layout, PdfDocument& document, const Measure& measure);
    JobStructure(const JobStructure&) = delete;
    JobStructure& operator=(const JobStructure&) = delete;
    ~JobStructure() { canvas_.belongTo(nullptr); }

    void beginPage() { freshPage_ = true; }
    void endPage();
    void finish();

    /// What follows, as the outline names it, from the outermost entry on.
    void setPlace(std::span<const String> path);
    /// The group that was opened at this level is at its end.
    void closeGroup(std::size_t level);

    /// The band is printed from now on, or the rest of it, below a page.
    void begin(const Band& band, const Scene& scene);
    /// What is drawn from now on is the item, which says `text`, moved down by `down`.
    void show(const Item& item, StringView text = {}, double down = 0);
    /// The band is printed.
    void end();

  private:
    struct BandTags {
        enum class Role : std::uint8_t { Page, Footer, ColumnHead, Line, GroupHead, Closing, Carried };
        Role role = Role::Page;
        std::size_t level = 0; ///< of the group that it opens; of one that it closes, the next one
        const Band* band = nullptr;
        bool isRow = false; ///< of the table, or its head
        std::vector<Piece> pieces;
        std::vector<bool> late;
        std::optional<BandBlocks> blocks; ///< of a band that is no row
    };

    static constexpr std::size_t kNoCell = static_cast<std::size_t>(-1);

    void addBand(const Band& band, BandTags::Role role, const Measure& measure, std::size_t level = 0);
    void addBands(const Measure& measure);
    void findBlocks();
    TextSizes sizes() const;

    Said whatIsSaid(const BandTags& tags, const Scene& scene) const;
    String placeOf(const BandTags& tags) const;
    void beginBlocks(BandTags& tags, const Scene& scene);
    void endBlocks(BandTags& tags);
    void beginHead(const BandTags& tags, const Scene& scene);
    void beginRow(const BandTags& tags, const Scene& scene);
    /// What shows an item of the band in hand; nullptr where it says nothing.
    TaggedContent* contentOf(std::size_t item);
    TaggedContent* headContentOf(std::size_t item);
    TaggedContent* cellFor(std::size_t item);
    void endLine();
    void endRow(const BandTags& tags);
    std::string endRowLine(std::span<TaggedCell> row, bool headsGroup, const std::string& outer);
    std::string innermost(std::size_t levels) const;

    void startOnPage();
    int section();
    void closeSection();
    void openTable(const Scene& scene);
    void placeLine(const BandTags& line);
    void closeTable();

    const Layout& layout_;
    PdfDocument& document_;
    Canvas& canvas_;
    bool lineIsRow_ = false;
    std::map<const Band*, BandTags> bands_;
    BandTags* current_ = nullptr;
    BandTags* unfinished_ = nullptr; ///< the footer, until the page closes
    Furniture furniture_ = Furniture::Drawing;
    HeadingLevels levels_;
    std::vector<String> place_; ///< in the outline

    int part_;
    std::string sections_;
    int section_ = 0; ///< 0 where none is open
    std::string blocks_;
    bool freshPage_ = true;

    std::optional<TableWriter> table_;
    TableGrid grid_;
    std::size_t rowHead_ = 0;
    std::vector<double> lines_;          ///< that the row in hand is divided into, by their baselines
    std::size_t lineCount_ = 1;          ///< of those of a line of the report
    std::size_t wordColumn_ = 0;         ///< where words name them
    std::vector<std::size_t> lineCells_; ///< of the items of a line of the report
    std::vector<HeadCell> head_;
    std::vector<TaggedContent> headContents_;
    Said headSaid_;
    bool writesRow_ = false;        ///< the band in hand is a row, or the head, and no furniture
    std::vector<TaggedCell> cells_; ///< of the row in hand
    std::vector<std::string> groupNames_;
    std::vector<bool> headIsSaid_; ///< by level: of the group in hand, where its head is no row
};

} // namespace kvtdruck::druckwerk
