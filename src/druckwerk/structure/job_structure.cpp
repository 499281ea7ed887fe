#include "druckwerk/structure/job_structure.h"

#include "druckwerk/structure/chart_description.h"

namespace kvtdruck::druckwerk {
namespace {

bool isShown(const Item& item, const Scene& scene) {
    return std::ranges::all_of(item.conditions, [&](const auto& condition) { return condition->holds(scene); });
}

std::vector<Piece> shownPieces(const std::vector<Piece>& pieces, const Band& band, const Scene& scene) {
    std::vector<Piece> shown;
    std::ranges::copy_if(pieces, std::back_inserter(shown),
                         [&](const Piece& piece) { return isShown(band.items[piece.item], scene); });
    return shown;
}

bool saysMoreThanText(const std::vector<Piece>& pieces) {
    return std::ranges::any_of(pieces, [](const Piece& piece) { return piece.kind != Piece::Kind::Text; });
}

} // namespace

JobStructure::JobStructure(const Layout& layout, PdfDocument& document, const Measure& measure)
    : layout_(layout), document_(document), canvas_(document.canvas()), part_(document.structure()->allocate()),
      groupNames_(layout.groups.size()), headIsSaid_(layout.groups.size()) {
    addBands(measure);
    findBlocks();
}

void JobStructure::addBand(const Band& band, BandTags::Role role, const Measure& measure, std::size_t level) {
    BandTags& tags = bands_[&band];
    tags.role = role;
    tags.level = level;
    tags.band = &band;
    tags.pieces = piecesOf(band, layout_, measure);
    for (const Item& item : band.items)
        tags.late.push_back(item.late);
    tags.isRow = lineIsRow_ && role != BandTags::Role::Page && role != BandTags::Role::Footer &&
                 !saysMoreThanText(tags.pieces);
    if (role == BandTags::Role::ColumnHead && !tags.isRow)
        tags.role = BandTags::Role::Page;
}

void JobStructure::addBands(const Measure& measure) {
    using Role = BandTags::Role;
    const auto addAny = [&](const std::optional<Band>& band, Role role, std::size_t level = 0) {
        if (band)
            addBand(*band, role, measure, level);
    };
    lineIsRow_ = layout_.row && layout_.row->height <= kTallestRow &&
                 !saysMoreThanText(piecesOf(*layout_.row, layout_, measure));
    for (const Band& band : layout_.page)
        addBand(band, Role::Page, measure);
    addAny(layout_.footer, Role::Footer);
    addAny(layout_.columnHead, Role::ColumnHead);
    addAny(layout_.row, Role::Line);
    for (std::size_t level = 0; level < layout_.groups.size(); ++level) {
        addAny(layout_.groups[level].head, Role::GroupHead, level);
        addAny(layout_.groups[level].foot, Role::Closing, level + 1);
    }
    addAny(layout_.sum, Role::Closing);
    addAny(layout_.carriedIn, Role::Carried);
    addAny(layout_.carriedOut, Role::Carried);
}

/// The usual size is that of the text in the middle, by size; the largest one is no row's.
TextSizes JobStructure::sizes() const {
    std::vector<double> all;
    TextSizes sizes;
    for (const auto& [band, tags] : bands_)
        for (const Piece& piece : tags.pieces)
            if (piece.kind == Piece::Kind::Text) {
                all.push_back(piece.size);
                if (!tags.isRow)
                    sizes.largest = std::max(sizes.largest, piece.size);
            }
    if (all.empty())
        return sizes;
    std::ranges::sort(all);
    sizes.usual = all[all.size() / 2];
    return sizes;
}

void JobStructure::findBlocks() {
    const TextSizes found = sizes();
    for (auto& [band, tags] : bands_)
        if (!tags.isRow && tags.role != BandTags::Role::Carried)
            tags.blocks.emplace(blocksOf(tags.pieces, edgesOf(*band), found), band->items.size());
}

void JobStructure::setPlace(std::span<const String> path) {
    place_.assign(path.begin(), path.end());
}

/// A sum is of all places, what closes a group of the outermost one alone.
String JobStructure::placeOf(const BandTags& tags) const {
    const bool closes = tags.role == BandTags::Role::Closing;
    const std::size_t entries = !closes           ? place_.size()
                                : tags.level == 0 ? 0
                                                  : std::min<std::size_t>(place_.size(), 1);
    String place;
    for (std::size_t i = 0; i < entries; ++i)
        place += (place.empty() ? u"" : u", ") + place_[i];
    return place;
}

// --- Bands ---

void JobStructure::begin(const Band& band, const Scene& scene) {
    using Role = BandTags::Role;
    BandTags& tags = bands_.at(&band);
    current_ = &tags;
    furniture_ = tags.role == Role::Footer    ? Furniture::Footer
                 : tags.role == Role::Carried ? Furniture::Carried
                                              : Furniture::Header;
    if (unfinished_ == current_)
        return;
    if (tags.blocks)
        beginBlocks(tags, scene);
    else if (tags.role == Role::ColumnHead)
        beginHead(tags, scene);
    else
        beginRow(tags, scene);
}

TaggedContent* JobStructure::contentOf(std::size_t item) {
    if (current_->blocks)
        return current_->blocks->contentOf(item, *document_.structure());
    if (!writesRow_)
        return nullptr;
    if (current_->role == BandTags::Role::ColumnHead)
        return headContentOf(item);
    if (current_->role == BandTags::Role::Line)
        return lineCells_[item] == kNoCell ? nullptr : &cells_[lineCells_[item]].content;
    return cellFor(item);
}

void JobStructure::show(const Item& item, StringView text, double down) {
    const auto index = static_cast<std::size_t>(&item - current_->band->items.data());
    TaggedContent* content = contentOf(index);
    if (content != nullptr && current_->blocks)
        current_->blocks->say(index, text, down);
    const bool isDrawing = content != nullptr || std::holds_alternative<Shape>(item.content);
    canvas_.belongTo(content, isDrawing ? Furniture::Drawing : furniture_);
}

void JobStructure::end() {
    using Role = BandTags::Role;
    canvas_.belongTo(nullptr);
    BandTags& tags = *current_;
    if (tags.role == Role::Footer)
        unfinished_ = &tags;
    else if (tags.blocks)
        endBlocks(tags);
    else if (!writesRow_)
        return;
    else if (tags.role == Role::ColumnHead)
        table_->writeHead(head_, headContents_, grid_.size());
    else if (tags.role == Role::Line)
        endLine();
    else
        endRow(tags);
}

// --- Blocks ---

/// What each text of the band says, and what describes its charts and pictures.
Said JobStructure::whatIsSaid(const BandTags& tags, const Scene& scene) const {
    Said said(tags.band->items.size());
    for (const Piece& piece : tags.pieces) {
        const Item& item = tags.band->items[piece.item];
        if (!isShown(item, scene))
            continue;
        if (const auto* text = std::get_if<TextItem>(&item.content))
            text->text.append(scene, said[piece.item]);
        else if (const auto* chart = std::get_if<std::unique_ptr<Chart>>(&item.content); chart && !(*chart)->rows)
            said[piece.item] = describe(**chart, pointsOf(**chart, scene), scene.definitions.locale());
        else if (const auto* foreign = std::get_if<ForeignItem>(&item.content))
            said[piece.item] = fromUtf8(layout_.foreign[foreign->drawing].title);
    }
    return said;
}

void JobStructure::beginBlocks(BandTags& tags, const Scene& scene) {
    if (tags.role == BandTags::Role::Page)
        tags.blocks->begin(whatIsSaid(tags, scene), tags.late);
    else if (tags.role == BandTags::Role::Footer)
        tags.blocks->beginFooter(whatIsSaid(tags, scene), tags.late);
    else if (tags.role == BandTags::Role::GroupHead && headIsSaid_[tags.level])
        tags.blocks->beginFurniture();
    else
        tags.blocks->begin();
}

void JobStructure::endBlocks(BandTags& tags) {
    if (!tags.blocks->isShown())
        return;
    if (tags.role == BandTags::Role::Page || tags.role == BandTags::Role::Line)
        startOnPage();
    if (tags.role == BandTags::Role::GroupHead)
        headIsSaid_[tags.level] = true;
    if (table_ && table_->hasRows()) // a head alone waits for the rows that follow
        closeTable();
    freshPage_ = false;
    const int parent = section();
    blocks_ += tags.blocks->write(document_, parent, levels_, placeOf(tags));
}

// --- The table ---

/// The head of a table that goes on from the page before is furniture.
void JobStructure::beginHead(const BandTags& tags, const Scene& scene) {
    Said said = whatIsSaid(tags, scene);
    writesRow_ = !table_ || said != headSaid_;
    if (!writesRow_)
        return;
    startOnPage();
    openTable(scene);
    headSaid_ = std::move(said);
    head_ = headOver(grid_, shownPieces(tags.pieces, *tags.band, scene), edgesOf(*tags.band));
    headContents_.assign(head_.size(), {.type = "TH"});
}

TaggedContent* JobStructure::headContentOf(std::size_t item) {
    for (std::size_t i = 0; i < head_.size(); ++i)
        if (std::ranges::find(head_[i].items, item) != head_[i].items.end())
            return &headContents_[i];
    return nullptr;
}

/// A group's head that is printed again is furniture.
void JobStructure::beginRow(const BandTags& tags, const Scene& scene) {
    const bool isRepeated = tags.role == BandTags::Role::GroupHead && !groupNames_[tags.level].empty();
    writesRow_ = tags.role != BandTags::Role::Carried && !isRepeated;
    if (!writesRow_)
        return;
    if (!table_) {
        startOnPage();
        openTable(scene);
    }
    freshPage_ = false;
    if (tags.role != BandTags::Role::Line) {
        lines_ = linesOf(grid_, tags.pieces);
        cells_.clear();
        cells_.reserve((grid_.size() + 1) * lines_.size()); // no more cells than columns: they stay where they are
        return;
    }
    cells_.resize(grid_.size() * lineCount_);
    for (std::size_t i = 0; i < cells_.size(); ++i) {
        const std::size_t column = i % grid_.size();
        cells_[i].columns = {column, column};
        cells_[i].span = cells_[i].rows = 1;
        cells_[i].kind = TaggedCell::Kind::Data;
        cells_[i].content.type = "TD";
        cells_[i].content.element = 0;
        cells_[i].content.kids.clear();
    }
}

/// The cell of a row that has its own, such as a sum's: where the item stands, together with what stands there too.
TaggedContent* JobStructure::cellFor(std::size_t item) {
    const auto piece = std::ranges::find(current_->pieces, item, &Piece::item);
    if (piece == current_->pieces.end())
        return nullptr;
    const Columns columns = grid_.of(piece->span());
    const std::size_t line = lineOf(*piece, lines_);
    for (TaggedCell& cell : cells_)
        if (cell.line == line && columns.first <= cell.columns.last && cell.columns.first <= columns.last) {
            cell.columns.last = std::max(columns.last, cell.columns.last);
            return &cell.content;
        }
    TaggedCell& cell = cells_.emplace_back();
    cell.columns = columns;
    cell.line = line;
    cell.kind = piece->loneNumber ? TaggedCell::Kind::Data : TaggedCell::Kind::RowHead;
    cell.content.type = "TD";
    return &cell.content;
}

/// The name of the innermost head of the groups down to `levels`.
std::string JobStructure::innermost(std::size_t levels) const {
    for (std::size_t level = std::min(levels, groupNames_.size()); level-- > 0;)
        if (!groupNames_[level].empty())
            return groupNames_[level];
    return {};
}

/// What names the line heads all of its rows, each of which has a head of its own where there are several.
void JobStructure::endLine() {
    const auto isEmpty = [](const TaggedCell& cell) { return cell.content.kids.empty(); };
    if (std::ranges::all_of(cells_, isEmpty))
        return;
    TaggedCell& name = cells_[rowHead_];
    name.rows = lineCount_;
    if (!isEmpty(name))
        name.kind = TaggedCell::Kind::RowHead;
    std::string outer = innermost(groupNames_.size());
    for (std::size_t line = 0; line < lineCount_; ++line) {
        std::span row = std::span(cells_).subspan(line * grid_.size(), grid_.size());
        if (lineCount_ > 1 && !isEmpty(row[wordColumn_]))
            row[wordColumn_].kind = TaggedCell::Kind::RowHead;
        if (line > 0) { // what names the line reaches down here
            std::rotate(row.begin(), row.begin() + static_cast<std::ptrdiff_t>(rowHead_),
                        row.begin() + static_cast<std::ptrdiff_t>(rowHead_) + 1);
            row = row.subspan(1);
        }
        const std::string head = table_->writeRow(row, outer);
        if (line == 0 && !isEmpty(name))
            outer = head;
    }
}

void JobStructure::endRow(const BandTags& tags) {
    std::erase_if(cells_, [](const TaggedCell& cell) { return cell.content.kids.empty(); });
    std::ranges::sort(cells_, {}, [](const TaggedCell& cell) { return std::pair(cell.line, cell.columns.first); });
    std::string outer = innermost(tags.level);
    for (std::span<TaggedCell> rest(cells_); !rest.empty();) {
        const auto isOther = [&](const TaggedCell& cell) { return cell.line != rest.front().line; };
        const auto count = static_cast<std::size_t>(std::ranges::find_if(rest, isOther) - rest.begin());
        const std::string name = endRowLine(rest.first(count), tags.role == BandTags::Role::GroupHead, outer);
        if (tags.role == BandTags::Role::GroupHead)
            groupNames_[tags.level] = name;
        outer = name.empty() ? outer : name;
        rest = rest.subspan(count);
    }
}

/// Each cell reaches to the next one, so that the row has all columns. Its first word heads it, and the one behind
/// it where it is one of several lines.
std::string JobStructure::endRowLine(std::span<TaggedCell> row, bool headsGroup, const std::string& outer) {
    using Kind = TaggedCell::Kind;
    for (std::size_t i = 0; i < row.size(); ++i) {
        const std::size_t next = i + 1 < row.size() ? row[i + 1].columns.first : grid_.size();
        row[i].span = next - (i == 0 ? 0 : row[i].columns.first);
        if (i > 1 || (i == 1 && lines_.size() == 1))
            row[i].kind = Kind::Data;
    }
    if (row.size() == 1)
        row.front().kind = headsGroup ? Kind::GroupHead : Kind::Data;
    return table_->writeRow(row, outer);
}

void JobStructure::closeGroup(std::size_t level) {
    groupNames_[level].clear();
    headIsSaid_[level] = false;
}

/// The columns are those of what the line shows, and of what it never shows together with that.
void JobStructure::openTable(const Scene& scene) {
    closeTable();
    table_.emplace(document_, section());
    const BandTags& line = bands_.at(&*layout_.row);
    const std::vector<Piece> shown = shownPieces(line.pieces, *line.band, scene);
    std::vector<Span> spans(shown.size());
    std::ranges::transform(shown, spans.begin(), &Piece::span);
    grid_ = TableGrid(std::move(spans));
    for (const Piece& piece : line.pieces)
        grid_.addBeside(piece.span());
    rowHead_ = grid_.empty() ? 0 : rowHeadOf(grid_, shown.empty() ? line.pieces : shown);
    placeLine(line);
}

/// The cell of each item of a line of the report.
void JobStructure::placeLine(const BandTags& line) {
    const auto lines = linesOf(grid_, line.pieces);
    lineCount_ = lines.size();
    wordColumn_ = rowHead_;
    lineCells_.assign(line.band->items.size(), kNoCell);
    for (const Piece& piece : line.pieces) {
        const std::size_t column = grid_.of(piece.span()).first;
        const std::size_t row = column == rowHead_ ? 0 : lineOf(piece, lines);
        lineCells_[piece.item] = row * grid_.size() + column;
        if (lineCount_ > 1 && piece.constant && column != rowHead_)
            wordColumn_ = wordColumn_ == rowHead_ ? column : std::min(wordColumn_, column);
    }
    if (wordColumn_ != rowHead_)
        return;
    lineCount_ = 1; // no line has a word of its own
    for (std::size_t& cell : lineCells_)
        cell = cell == kNoCell ? cell : cell % grid_.size();
}

void JobStructure::closeTable() {
    if (!table_)
        return;
    blocks_ += table_->finish();
    table_.reset();
    headSaid_.clear();
    groupNames_.assign(groupNames_.size(), "");
}

// --- Sections and pages ---

/// What begins on this page, and does not go on from the one before, begins a section.
void JobStructure::startOnPage() {
    if (!freshPage_)
        return;
    closeTable();
    closeSection();
    freshPage_ = false;
}

int JobStructure::section() {
    if (section_ == 0)
        section_ = document_.structure()->allocate();
    return section_;
}

void JobStructure::closeSection() {
    if (blocks_.empty())
        return;
    document_.structure()->write(section_, "Sect", part_, "/K[" + blocks_ + "]");
    sections_ += reference(section_) + " ";
    section_ = 0;
    blocks_.clear();
}

void JobStructure::endPage() {
    if (unfinished_ != nullptr)
        endBlocks(*unfinished_);
    unfinished_ = nullptr;
    if (table_)
        table_->endPage();
}

void JobStructure::finish() {
    closeTable();
    closeSection();
    if (sections_.empty())
        return;
    document_.structure()->write(part_, "Part", document_.structure()->document(), "/K[" + sections_ + "]");
    document_.structure()->addPart(part_);
}

} // namespace kvtdruck::druckwerk
