#include "druckwerk/structure/band_blocks.h"

#include "druckwerk/pdf/pdf_syntax.h"

namespace kvtdruck::druckwerk {

namespace {

constexpr std::array kHeadings = {"H1", "H2", "H3", "H4", "H5", "H6"};

const char* typeOf(const Block& block) {
    switch (block.kind) {
    case Block::Kind::Title:
    case Block::Kind::Heading:
        return "H";
    case Block::Kind::Figure:
        return "Figure";
    case Block::Kind::Table:
        return "TD";
    case Block::Kind::Paragraph:
        break;
    }
    return "P";
}

std::string boundingBox(const Box& box, double down, double pageHeight) {
    std::string entry = "/BBox[";
    for (const double value : {box.x, pageHeight - box.bottom() - down, box.right(), pageHeight - box.y - down}) {
        appendNumber(entry, value);
        entry += ' ';
    }
    return entry + "]";
}

} // namespace

const char* HeadingLevels::next(std::size_t wanted) {
    last_ = std::min({wanted, last_ + 1, kHeadings.size()});
    return kHeadings[last_ - 1];
}

BandBlocks::BandBlocks(std::vector<Block> blocks, std::size_t items) : blocks_(std::move(blocks)), slots_(items) {
    std::size_t contents = 0;
    for (std::size_t i = 0; i < blocks_.size(); ++i) {
        const Block& block = blocks_[i];
        first_.push_back(contents);
        std::size_t content = contents;
        const auto assign = [&](const std::vector<std::size_t>& of) {
            for (const std::size_t item : of)
                slots_[item] = {i, content};
            ++content;
        };
        for (const std::size_t item : block.kind == Block::Kind::Table ? std::vector<std::size_t>() : block.items)
            assign({item});
        for (const HeadCell& cell : block.head)
            assign(cell.items);
        for (const TableRow& row : block.rows)
            for (const TableCell& cell : row)
                assign(cell.items);
        contents = content;
    }
    first_.push_back(contents);
    contents_.resize(contents);
}

void BandBlocks::begin() {
    for (std::size_t i = 0; i < blocks_.size(); ++i)
        for (std::size_t content = first_[i]; content < first_[i + 1]; ++content)
            contents_[content] = {.type = typeOf(blocks_[i])};
    isNew_.assign(blocks_.size(), true);
    texts_.assign(contents_.size(), {});
    down_.assign(blocks_.size(), 0);
}

void BandBlocks::beginFurniture() {
    begin();
    isNew_.assign(blocks_.size(), false);
}

void BandBlocks::begin(Said said, const std::vector<bool>& late) {
    begin();
    compare(std::move(said), late);
    spreadToHeadings();
}

void BandBlocks::beginFooter(Said said, const std::vector<bool>& late) {
    begin();
    compare(std::move(said), late);
    for (std::size_t i = 0; i < blocks_.size(); ++i) {
        const auto isLate = [&](std::size_t item) { return late[item]; };
        if (isHeading(i) ||
            (blocks_[i].kind == Block::Kind::Paragraph && std::ranges::none_of(blocks_[i].items, isLate)))
            isNew_[i] = false;
    }
    spreadToHeadings();
}

void BandBlocks::compare(Said said, const std::vector<bool>& late) {
    for (std::size_t i = 0; saidAny_ && i < blocks_.size(); ++i)
        isNew_[i] = std::ranges::any_of(blocks_[i].items,
                                        [&](std::size_t item) { return late[item] || said[item] != said_[item]; });
    said_ = std::move(said);
    saidAny_ = true;
}

bool BandBlocks::isHeading(std::size_t block) const {
    return blocks_[block].kind == Block::Kind::Title || blocks_[block].kind == Block::Kind::Heading;
}

/// A heading is new where something beneath it is; the title heads all.
void BandBlocks::spreadToHeadings() {
    bool any = false;
    bool title = false;
    for (std::size_t i = blocks_.size(); i-- > 0;) {
        if (isHeading(i)) {
            isNew_[i] = isNew_[i] || any || (blocks_[i].kind == Block::Kind::Title && title);
            any = false;
        }
        any = any || (isNew_[i] && !isHeading(i));
        title = title || isNew_[i];
    }
}

/// The items of a block are drawn in any order and read in that of the block, but they are one element.
TaggedContent* BandBlocks::contentOf(std::size_t item, StructureTree& structure) {
    const Slot& slot = slots_[item];
    if (slot.block == kNone || !isNew_[slot.block])
        return nullptr;
    TaggedContent& content = contents_[slot.content];
    if (blocks_[slot.block].kind != Block::Kind::Table) {
        TaggedContent& first = contents_[first_[slot.block]];
        if (first.element == 0)
            first.element = structure.allocate();
        content.element = first.element;
        content.follows = &content != &first;
    }
    return &content;
}

TaggedContent BandBlocks::joined(std::size_t block) const {
    TaggedContent joined = contents_[first_[block]];
    for (std::size_t i = first_[block] + 1; i < first_[block + 1]; ++i)
        joined.kids += contents_[i].kids;
    return joined;
}

void BandBlocks::say(std::size_t item, StringView text, double down) {
    const Slot& slot = slots_[item];
    if (slot.block == kNone || blocks_[slot.block].kind == Block::Kind::Table)
        return;
    texts_[slot.content] = text;
    down_[slot.block] = down;
}

String BandBlocks::textOf(std::size_t block) const {
    String text;
    for (std::size_t i = first_[block]; i < first_[block + 1]; ++i)
        text += (text.empty() || texts_[i].empty() ? u"" : u" ") + texts_[i];
    return text;
}

bool BandBlocks::isShown(std::size_t block) const {
    for (std::size_t i = first_[block]; i < first_[block + 1]; ++i)
        if (!contents_[i].kids.empty())
            return true;
    return false;
}

bool BandBlocks::isShown() const {
    for (std::size_t i = 0; i < blocks_.size(); ++i)
        if (isShown(i))
            return true;
    return false;
}

std::string BandBlocks::write(PdfDocument& document, int parent, HeadingLevels& levels, StringView place) {
    std::string kids;
    String heading;
    for (std::size_t i = 0; i < blocks_.size(); ++i) {
        if (!isShown(i))
            continue;
        const Block& block = blocks_[i];
        const TaggedContent content = joined(i);
        if (block.kind == Block::Kind::Table) {
            kids += writeTable(document, parent, block, first_[i]);
            continue;
        }
        if (isHeading(i)) {
            heading = textOf(i);
            document.structure()->write(content.element, levels.next(block.kind == Block::Kind::Title ? 1 : 2),
                                        parent, shownBy(document, content));
        } else if (block.kind == Block::Kind::Figure) {
            const bool named = place.empty() || heading.empty() || heading.find(place) != String::npos;
            writeFigure(document, parent, i, named ? heading : heading + u" " + String(place));
        } else {
            document.structure()->write(content.element, "P", parent, shownBy(document, content));
        }
        kids += reference(content.element) + " ";
    }
    return kids;
}

std::string BandBlocks::writeTable(PdfDocument& document, int parent, const Block& block, std::size_t first) {
    std::size_t columns = 0;
    for (const TableRow& row : block.rows)
        columns = std::max(columns, row.back().columns.last + 1);
    TableWriter table(document, parent);
    std::size_t content = first;
    if (!block.head.empty())
        table.writeHead(block.head, std::span(contents_).subspan(first, block.head.size()), columns);
    content += block.head.size();
    for (const TableRow& row : block.rows) {
        std::vector<TaggedCell> cells;
        bool any = false;
        for (const TableCell& cell : row) {
            TaggedCell& tagged = cells.emplace_back();
            tagged.columns = cell.columns;
            tagged.span = cell.columns.count();
            tagged.content = contents_[content++];
            any = any || !tagged.content.kids.empty();
            if (cell.columns.holds({block.rowHead, block.rowHead}) && !tagged.content.kids.empty())
                tagged.kind = TaggedCell::Kind::RowHead;
        }
        if (any)
            table.writeRow(cells, "");
    }
    return table.finish();
}

void BandBlocks::writeFigure(PdfDocument& document, int parent, std::size_t block, const String& title) {
    const TaggedContent& content = contents_[first_[block]];
    const String said = textOf(block);
    const String text = title.empty() || said.empty() ? title + said : title + u": " + said;
    document.structure()->write(
        content.element, "Figure", parent,
        shownBy(document, content) + "/Alt" + pdfText(text) + "/A<</O/Layout/Placement/Block" +
            boundingBox(blocks_[block].box, down_[block], document.canvas().height()) + ">>");
}

} // namespace kvtdruck::druckwerk
