#include "druckwerk/structure/table_grid.h"

#include <cmath>

namespace kvtdruck::druckwerk {

namespace {

constexpr double kSameLine = 3;   // points between baselines
constexpr double kTouching = 0.5; // points that cells may overlap by and still stand side by side

/// How far the text reaches: as its line does, where there is one between it and the texts that it heads.
Span reachOf(const Piece& text, std::span<const Piece> texts, std::span<const Edge> edges) {
    for (const Edge& edge : edges) {
        const auto isOver = [&](const Piece& other) {
            return other.baseline > edge.y && edge.span.shared(other.span()) > 0;
        };
        const auto isBetween = [&](const Piece& other) {
            return other.baseline > text.baseline && other.baseline < edge.y && edge.span.shared(other.span()) > 0;
        };
        const double middle = text.span().middle();
        if (edge.y > text.baseline && edge.span.left <= middle && middle <= edge.span.right &&
            std::ranges::any_of(texts, isOver) && std::ranges::none_of(texts, isBetween))
            return edge.span;
    }
    return text.span();
}

bool crosses(const Columns& one, const Columns& other) {
    return one.first <= other.last && other.first <= one.last && !one.holds(other) && !other.holds(one);
}

/// Cells by their columns. What can't lie within each other becomes one.
std::vector<HeadCell> cellsOf(const TableGrid& grid, std::span<const Piece> texts, std::span<const Edge> edges) {
    std::vector<HeadCell> cells;
    for (const Piece& text : texts) {
        const Columns columns = grid.of(reachOf(text, texts, edges));
        const auto same = std::ranges::find_if(
            cells, [&](const HeadCell& cell) { return cell.columns == columns || crosses(cell.columns, columns); });
        if (same == cells.end())
            cells.push_back({columns, 0, 1, {text.item}});
        else
            same->items.push_back(text.item);
    }
    return cells;
}

/// Fills the columns of a row of the head that no cell reaches over.
void fillGaps(std::vector<HeadCell>& cells, std::size_t columns, std::size_t level, std::size_t depth) {
    std::vector<bool> filled(columns);
    for (const HeadCell& cell : cells)
        for (std::size_t i = cell.columns.first;
             cell.level <= level && level < cell.level + cell.rows && i <= cell.columns.last; ++i)
            filled[i] = true;
    for (std::size_t i = 0; i < columns; ++i)
        if (!filled[i])
            cells.push_back({{i, i}, level, depth - level, {}});
}

} // namespace

TableGrid::TableGrid(std::vector<Span> cells) {
    std::ranges::sort(cells, {}, &Span::left);
    for (const Span& cell : cells) {
        if (columns_.empty() || !columns_.back().meets(cell))
            columns_.push_back(cell);
        else
            columns_.back().right = std::max(columns_.back().right, cell.right);
    }
}

void TableGrid::addBeside(const Span& cell) {
    if (std::ranges::any_of(columns_, [&](const Span& column) { return column.shared(cell) > kTouching; }))
        return;
    columns_.insert(std::ranges::upper_bound(columns_, cell.left, {}, &Span::left), cell);
}

Columns TableGrid::of(const Span& cell) const {
    std::size_t nearest = 0;
    Columns found{columns_.size(), 0};
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        if (columns_[i].meets(cell))
            found = {std::min(found.first, i), i};
        if (std::fabs(columns_[i].middle() - cell.middle()) < std::fabs(columns_[nearest].middle() - cell.middle()))
            nearest = i;
    }
    return found.first == columns_.size() ? Columns{nearest, nearest} : found;
}

std::vector<double> linesOf(const TableGrid& grid, std::span<const Piece> row) {
    std::vector<double> lines;
    for (const Piece& piece : row)
        for (const Piece& other : row)
            if (piece.constant && other.constant && std::fabs(piece.baseline - other.baseline) > kSameLine &&
                grid.of(piece.span()) == grid.of(other.span()))
                lines.push_back(piece.baseline);
    std::ranges::sort(lines);
    const auto isSame = [](double one, double other) { return other - one < kSameLine; };
    lines.erase(std::unique(lines.begin(), lines.end(), isSame), lines.end());
    return lines.empty() ? std::vector<double>{0} : lines;
}

std::size_t lineOf(const Piece& piece, const std::vector<double>& lines) {
    const auto nearest =
        std::ranges::min_element(lines, {}, [&](double y) { return std::fabs(y - piece.baseline); });
    return static_cast<std::size_t>(nearest - lines.begin());
}

std::vector<HeadCell> headOver(const TableGrid& grid, std::span<const Piece> texts, std::span<const Edge> edges) {
    std::vector<HeadCell> cells = cellsOf(grid, texts, edges);
    if (cells.empty())
        return cells;
    std::size_t depth = 1;
    for (HeadCell& cell : cells) {
        cell.level = static_cast<std::size_t>(std::ranges::count_if(cells, [&](const HeadCell& other) {
            return other.columns.holds(cell.columns) && !(other.columns == cell.columns);
        }));
        depth = std::max(depth, cell.level + 1);
    }
    for (HeadCell& cell : cells) {
        const auto isBelow = [&](const HeadCell& other) {
            return cell.columns.holds(other.columns) && !(other.columns == cell.columns);
        };
        cell.rows = std::ranges::any_of(cells, isBelow) ? 1 : depth - cell.level;
    }
    for (std::size_t level = 0; level < depth; ++level)
        fillGaps(cells, grid.size(), level, depth);
    std::ranges::sort(cells, {}, [](const HeadCell& cell) { return std::pair(cell.level, cell.columns.first); });
    return cells;
}

const HeadCell* headOf(const std::vector<HeadCell>& head, std::size_t column) {
    const HeadCell* nearest = nullptr;
    for (const HeadCell& cell : head)
        if (!cell.items.empty() && cell.columns.holds({column, column}) &&
            (nearest == nullptr || cell.columns.count() < nearest->columns.count()))
            nearest = &cell;
    return nearest;
}

const HeadCell* headAbove(const std::vector<HeadCell>& head, const HeadCell& cell) {
    const HeadCell* nearest = nullptr;
    for (const HeadCell& other : head)
        if (!other.items.empty() && other.columns.holds(cell.columns) && !(other.columns == cell.columns) &&
            (nearest == nullptr || other.columns.count() < nearest->columns.count()))
            nearest = &other;
    return nearest;
}

} // namespace kvtdruck::druckwerk
