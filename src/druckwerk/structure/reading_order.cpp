#include "druckwerk/structure/reading_order.h"

#include <numeric>

namespace kvtdruck::druckwerk {

namespace {

constexpr double kOverlap = 0.5; // points by which blocks may overlap and still are apart

using Indices = std::vector<std::size_t>;

struct Extent {
    double begin, end;
};

Extent upright(const Box& box) {
    return {box.y, box.bottom()};
}
Extent level(const Box& box) {
    return {box.x, box.right()};
}

/// The parts that can be told apart along one axis.
std::vector<Indices> cut(const std::vector<Box>& boxes, Indices blocks, Extent (*extent)(const Box&)) {
    std::ranges::stable_sort(blocks, {}, [&](std::size_t i) { return extent(boxes[i]).begin; });
    std::vector<Indices> parts;
    double end = 0;
    for (const std::size_t block : blocks) {
        const Extent here = extent(boxes[block]);
        if (parts.empty() || here.begin >= end - kOverlap)
            parts.emplace_back();
        end = parts.back().empty() ? here.end : std::max(end, here.end);
        parts.back().push_back(block);
    }
    return parts;
}

void order(const std::vector<Box>& boxes, const Indices& blocks, Indices& out) {
    for (const auto extent : {upright, level}) {
        const auto parts = cut(boxes, blocks, extent);
        if (parts.size() < 2)
            continue;
        for (const Indices& part : parts)
            order(boxes, part, out);
        return;
    }
    Indices rest = blocks; // they lie over each other
    std::ranges::stable_sort(rest, {}, [&](std::size_t i) { return std::pair(boxes[i].y, boxes[i].x); });
    out.insert(out.end(), rest.begin(), rest.end());
}

/// The boxes, those of headings down into what they head.
std::vector<Box> joined(const std::vector<Block>& blocks) {
    std::vector<Box> boxes;
    for (const Block& block : blocks) {
        Box box = block.box;
        double next = 1e9;
        for (const Block& other : blocks)
            if (block.kind == Block::Kind::Heading && other.box.y >= box.bottom() - kOverlap && &other != &block &&
                Span{box.x, box.right()}.shared({other.box.x, other.box.right()}) > 0)
                next = std::min(next, other.box.y);
        if (next < 1e9)
            box.height = next + 2 * kOverlap - box.y;
        boxes.push_back(box);
    }
    return boxes;
}

} // namespace

void putInReadingOrder(std::vector<Block>& blocks) {
    Indices all(blocks.size());
    std::iota(all.begin(), all.end(), std::size_t{0});
    Indices sorted;
    order(joined(blocks), all, sorted);
    std::vector<Block> out;
    out.reserve(blocks.size());
    for (const std::size_t i : sorted)
        out.push_back(std::move(blocks[i]));
    blocks = std::move(out);
}

} // namespace kvtdruck::druckwerk
