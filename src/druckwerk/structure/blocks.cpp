#include "druckwerk/structure/blocks.h"

#include "druckwerk/structure/reading_order.h"

#include <cmath>
#include <optional>

namespace kvtdruck::druckwerk {

namespace {

constexpr double kSameEdge = 2;        // points that edges of one width may differ by
constexpr double kSameLine = 1;        // points between edges at one height
constexpr double kLowestRow = 6;       // points
constexpr double kAboveTable = 12;     // points above its first edge that a table's head may stand
constexpr double kHeadingFactor = 1.1; // of the usual size
constexpr double kTitleFactor = 1.3;   // of the usual size
constexpr double kSameSize = 0.99;
constexpr double kSameTextLine = 1.0; // of the size
constexpr double kSameBaseline = 3;   // points between baselines of one line

bool isWithin(const Piece& piece, const Span& span) {
    return piece.box.x >= span.left - kSameEdge && piece.box.right() <= span.right + kSameEdge;
}

Box around(const Box& one, const Box& other) {
    const double x = std::min(one.x, other.x);
    const double y = std::min(one.y, other.y);
    return {x, y, std::max(one.right(), other.right()) - x, std::max(one.bottom(), other.bottom()) - y};
}

/// A row between two edges.
struct Strip {
    double top, bottom;
    std::vector<Piece> pieces;
};
using Chain = std::vector<Strip>;

/// Edges of one width.
struct Ladder {
    Span span;
    std::vector<double> heights;
};

std::vector<Ladder> laddersOf(const std::vector<Edge>& edges) {
    std::vector<Ladder> ladders;
    for (const Edge& edge : edges) {
        const auto same = std::ranges::find_if(ladders, [&](const Ladder& ladder) {
            return std::fabs(ladder.span.left - edge.span.left) < kSameEdge &&
                   std::fabs(ladder.span.right - edge.span.right) < kSameEdge;
        });
        (same == ladders.end() ? ladders.emplace_back(Ladder{edge.span, {}}) : *same).heights.push_back(edge.y);
    }
    for (Ladder& ladder : ladders) {
        auto& heights = ladder.heights;
        std::ranges::sort(heights);
        const auto isSame = [](double one, double other) { return other - one < kSameLine; };
        heights.erase(std::unique(heights.begin(), heights.end(), isSame), heights.end());
    }
    std::ranges::stable_sort(ladders, {}, [](const Ladder& ladder) { return ladder.span.width(); });
    return ladders;
}

/// Takes the pieces of a band, step by step, into blocks.
class Finder {
  public:
    Finder(std::vector<Piece> pieces, std::vector<Edge> edges, const TextSizes& sizes)
        : pieces_(std::move(pieces)), edges_(std::move(edges)), sizes_(sizes) {}

    std::vector<Block> find() {
        findTitle();
        findHeadings();
        for (const Ladder& ladder : laddersOf(edges_))
            findRows(ladder);
        for (const Piece& piece : pieces_)
            addBlock(piece.kind == Piece::Kind::Text ? Block::Kind::Paragraph : Block::Kind::Figure, piece);
        putInReadingOrder(blocks_);
        return std::move(blocks_);
    }

  private:
    Block& addBlock(Block::Kind kind, const Piece& piece) {
        Block& block = blocks_.emplace_back();
        block.kind = kind;
        block.box = piece.box;
        block.items = {piece.item};
        return block;
    }

    /// Takes the pieces for which `condition` holds out of those that are left.
    template <class Condition>
    std::vector<Piece> take(const Condition& condition) {
        std::vector<Piece> taken;
        std::ranges::copy_if(pieces_, std::back_inserter(taken), condition);
        std::erase_if(pieces_, condition);
        return taken;
    }

    /// One block of all that stands in the line of the first such text.
    void findTitle() {
        const auto isLargest = [&](const Piece& piece) {
            return piece.kind == Piece::Kind::Text && piece.size >= sizes_.usual * kTitleFactor &&
                   piece.size >= sizes_.largest * kSameSize;
        };
        const auto first = std::ranges::find_if(pieces_, isLargest);
        if (first == pieces_.end())
            return;
        const double baseline = first->baseline;
        auto line = take([&](const Piece& piece) {
            return isLargest(piece) && std::fabs(piece.baseline - baseline) < kSameTextLine * piece.size;
        });
        std::ranges::stable_sort(line, {}, [](const Piece& piece) { return piece.box.x; });
        addJoined(Block::Kind::Title, line);
    }

    void addJoined(Block::Kind kind, const std::vector<Piece>& pieces) {
        Block& block = addBlock(kind, pieces.front());
        for (std::size_t i = 1; i < pieces.size(); ++i) {
            block.box = around(block.box, pieces[i].box);
            block.items.push_back(pieces[i].item);
        }
    }

    void findHeadings() {
        const auto lineOf = [&](const Piece& piece) {
            return std::ranges::find_if(edges_, [&](const Edge& edge) {
                return edge.y > piece.baseline && edge.y <= piece.baseline + piece.size &&
                       std::fabs(edge.span.left - piece.box.x) < kSameEdge;
            });
        };
        const auto headings = take([&](const Piece& piece) {
            return piece.kind == Piece::Kind::Text && piece.bold && piece.size > sizes_.usual * kHeadingFactor &&
                   lineOf(piece) != edges_.end();
        });
        for (const Piece& heading : headings) {
            Box& box = addBlock(Block::Kind::Heading, heading).box;
            box = around(box, {box.x, box.y, lineOf(heading)->span.width(), box.height});
        }
    }

    /// What stands between the edges at these heights, if it is a row.
    std::vector<Piece> takeRow(const Span& span, double top, double bottom) {
        if (bottom - top < kLowestRow || bottom - top > kTallestRow)
            return {};
        const auto isInside = [&](const Piece& piece) {
            return piece.baseline > top && piece.baseline <= bottom && isWithin(piece, span);
        };
        return take([&](const Piece& piece) { return piece.kind == Piece::Kind::Text && isInside(piece); });
    }

    void findRows(const Ladder& ladder) {
        Chain chain;
        for (std::size_t i = 0; i + 1 < ladder.heights.size(); ++i) {
            const double top = ladder.heights[i];
            const double bottom = ladder.heights[i + 1];
            if (auto row = takeRow(ladder.span, top, bottom); !row.empty()) {
                chain.push_back({top, bottom, std::move(row)});
            } else {
                addRows(ladder.span, chain);
                chain.clear();
            }
        }
        addRows(ladder.span, chain);
    }

    void addRows(const Span& span, Chain& chain) {
        if (chain.empty())
            return;
        std::vector<Piece> head = takeHead(span, chain);
        std::vector<Span> cells;
        for (const Strip& strip : chain)
            for (const Piece& piece : strip.pieces)
                cells.push_back(piece.span());
        const TableGrid grid(std::move(cells));
        if (grid.size() > 1 && chain.size() + (head.empty() ? 0 : 1) > 1)
            return addTable(span, chain, head, grid);
        if (!head.empty())
            addSorted(head);
        for (Strip& strip : chain)
            addSorted(strip.pieces);
    }

    /// A tile, or a row that stands alone: one paragraph, line by line.
    void addSorted(std::vector<Piece>& pieces) {
        std::ranges::stable_sort(pieces, {}, &Piece::baseline);
        for (auto line = pieces.begin(); line != pieces.end();) {
            const auto end = std::find_if(line, pieces.end(), [&](const Piece& piece) {
                return piece.baseline > line->baseline + kSameBaseline;
            });
            std::stable_sort(line, end,
                             [](const Piece& one, const Piece& other) { return one.box.x < other.box.x; });
            line = end;
        }
        addJoined(Block::Kind::Paragraph, pieces);
    }

    std::vector<Piece> takeHead(const Span& span, Chain& chain) {
        auto& first = chain.front();
        if (chain.size() > 1 && first.pieces.size() > 1 && std::ranges::all_of(first.pieces, &Piece::constant)) {
            auto head = std::move(first.pieces);
            chain.erase(chain.begin());
            return head;
        }
        return take([&](const Piece& piece) {
            return piece.kind == Piece::Kind::Text && piece.constant && piece.baseline <= first.top &&
                   piece.baseline > first.top - kAboveTable && isWithin(piece, span);
        });
    }

    void addTable(const Span& span, const Chain& chain, const std::vector<Piece>& head, const TableGrid& grid) {
        Block& table = blocks_.emplace_back();
        table.kind = Block::Kind::Table;
        table.box = {span.left, chain.front().top, span.width(), chain.back().bottom - chain.front().top};
        table.head = headOver(grid, head, edges_);
        std::vector<Piece> all;
        for (const Piece& piece : head)
            table.items.push_back(piece.item);
        for (const Strip& strip : chain) {
            TableRow& row = table.rows.emplace_back();
            for (const Piece& piece : strip.pieces) {
                place(row, grid.of(piece.span()), piece.item);
                table.items.push_back(piece.item);
                all.push_back(piece);
            }
            spread(row, grid.size());
        }
        table.rowHead = rowHeadOf(grid, all);
    }

    /// Puts the item into the cell that stands where it stands, or into one of its own.
    static void place(TableRow& row, const Columns& columns, std::size_t item) {
        for (TableCell& cell : row)
            if (columns.first <= cell.columns.last && cell.columns.first <= columns.last) {
                cell.columns.last = std::max(columns.last, cell.columns.last);
                cell.items.push_back(item);
                return;
            }
        row.push_back({columns, {item}});
    }

    std::vector<Piece> pieces_;
    std::vector<Edge> edges_;
    TextSizes sizes_;
    std::vector<Block> blocks_;
};

} // namespace

std::vector<Block> blocksOf(std::vector<Piece> pieces, std::vector<Edge> edges, const TextSizes& sizes) {
    return Finder(std::move(pieces), std::move(edges), sizes).find();
}

std::size_t rowHeadOf(const TableGrid& grid, std::span<const Piece> pieces) {
    std::size_t found = grid.size();
    for (const Piece& piece : pieces)
        if (piece.kind == Piece::Kind::Text && !piece.loneNumber)
            found = std::min(found, grid.of(piece.span()).first);
    return found == grid.size() ? 0 : found;
}

void spread(TableRow& row, std::size_t columns) {
    std::ranges::sort(row, {}, [](const TableCell& cell) { return cell.columns.first; });
    for (std::size_t i = 0; i < row.size(); ++i) {
        if (i == 0)
            row[i].columns.first = 0;
        row[i].columns.last = i + 1 < row.size() ? row[i + 1].columns.first - 1 : columns - 1;
    }
}

} // namespace kvtdruck::druckwerk
