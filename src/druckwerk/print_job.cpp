#include "druckwerk/print_job.h"

#include "druckwerk/page/artwork.h"
#include "druckwerk/structure/chart_description.h"
#include "values/conversion.h"

namespace kvtdruck::druckwerk {

namespace {

constexpr double kSpare = 0.01; // of a point

double heightOf(const std::optional<Band>& band) {
    return band ? band->height : 0;
}

} // namespace

PrintJob::PrintJob(Layout layout, Definitions& definitions, PdfDocument& document,
                   const std::filesystem::path& layoutFolder, std::vector<String> bookmark, const PrintDate& date,
                   FontLibrary::Warn warn, TightFieldSink tight, SampleSink sampled)
    : layout_(std::move(layout)), totals_(layout_.aggregates), definitions_(definitions), warn_(warn),
      printDate_(dateOf(date.year, date.month, date.day, date.hour, date.minute, date.second)), document_(document),
      bookmark_(std::move(bookmark)), begin_(document.mark()),
      setter_(document_, layout_.fonts, std::move(warn), std::move(tight)), points_(layout_.rowCharts.size()),
      sampled_(std::move(sampled)), top_(layout_.flowTop()), bottom_(layout_.flowBottom()) {
    document_.setPageSize(layout_.width, layout_.height);
    if (sampled_)
        sampler_.emplace(layout_, points_, setter_);
    for (const auto& [fill, stroke] : layout_.opacities)
        document_.useOpacity(fill, stroke);
    if (!layout_.foreign.empty())
        firstForm_ = embedArtwork(document_, layout_, layoutFolder);
    if (document_.structure() != nullptr)
        structure_ = std::make_unique<JobStructure>(layout_, document_, measure());
}

PrintJob::~PrintJob() {
    if (!finished_)
        document_.dropSince(begin_);
}

Measure PrintJob::measure() {
    const auto width = [this](const TextItem& item) {
        text_.clear();
        item.text.append(scene(Moment::Now), text_);
        document_.fonts().setPlace(&item.place);
        return setter_.width(text_, setter_.face(item.font), item.size);
    };
    const auto ink = [this](const ForeignItem& item) { return document_.form(firstForm_ + item.drawing).ink; };
    return {width, ink};
}

Scene PrintJob::scene(Moment moment) const {
    return {definitions_, totals_, moment, document_.pages(), tableLines_, pageLines_, printDate_};
}

// --- Pages ---

void PrintJob::beginPage() {
    if (pageOpen_) {
        // A caller that turns the page by itself may have defined the next record already.
        if (!pageFull_ && pageLines_ > 0)
            closeGroups(firstBrokenGroup());
        closePage();
    }
    document_.beginPage();
    if (structure_)
        structure_->beginPage();
    if (!bookmark_.empty() && static_cast<std::size_t>(document_.pages()) == begin_.pages + 1)
        document_.bookmark(bookmark_, 0);
    definitions_.mark(Moment::PageBegin);
    totals_.reset(kPageScope);
    pageOpen_ = true;
    pageBound_ = pageFull_ = carries_ = false;
    pageLines_ = 0;
    y_ = top_;
}

void PrintJob::bindPage(bool withLine) {
    if (pageBound_)
        return;
    pageBound_ = true;
    const Moment moment = withLine ? Moment::Now : Moment::PageBegin;
    for (const Band& band : layout_.page)
        draw(band, moment, 0);
    if (withLine && layout_.columnHead)
        draw(*layout_.columnHead, moment, 0);
    if (layout_.footer)
        draw(*layout_.footer, moment, 0, 0, Pass::Early);
}

void PrintJob::closePage() {
    bindPage(false);
    carriedIn_ = carries_;
    if (carries_ && layout_.carriedOut)
        flow(*layout_.carriedOut, Moment::Printed, 0);
    if (layout_.footer)
        draw(*layout_.footer, Moment::Printed, 0, 0, Pass::Late);
    if (structure_)
        structure_->endPage();
    document_.endPage();
    pageOpen_ = false;
}

// --- Lines ---

bool PrintJob::printLine() {
    if (!layout_.row)
        return printSheet();
    if (!holds(*layout_.row, Moment::Now))
        return true;
    const std::size_t broken = firstBrokenGroup();
    const bool fresh = pageLines_ == 0;
    const bool closed = closeGroups(broken);
    const bool requested = !fresh && closed && wantsNewPage(broken);
    const double growth = growthOf(*layout_.row, Moment::Now);
    const double needed = heightOfHeads(fresh) + layout_.row->height + growth + reserve();
    if (!fresh && (!closed || requested || y_ + needed > bottom_ + kSpare)) {
        pageFull_ = true;
        carries_ = closed && !requested && (layout_.groups.empty() || openGroups_ > 0);
        return false;
    }
    bindPage(true);
    if (fresh) {
        if (carriedIn_ && layout_.carriedIn && (layout_.groups.empty() || openGroups_ > 0))
            flow(*layout_.carriedIn, Moment::Printed, 0);
        carriedIn_ = false;
        repeatGroupHeads();
    }
    openGroups();
    takeLineIntoAccount();
    drawRow(growth);
    definitions_.mark(Moment::Printed);
    return true;
}

/// A layout without lines: one page for each record.
bool PrintJob::printSheet() {
    if (pageLines_ > 0) {
        pageFull_ = true;
        return false;
    }
    takeLineIntoAccount();
    bindPage(true);
    definitions_.mark(Moment::Printed);
    return true;
}

void PrintJob::takeLineIntoAccount() {
    ++pageLines_;
    ++tableLines_;
    totals_.accumulate(scene(Moment::Now));
    for (std::size_t i = 0; i < points_.size(); ++i)
        collectPoint(*layout_.rowCharts[i], scene(Moment::Now), points_[i], warn_);
}

void PrintJob::drawRow(double growth) {
    const bool tooTall = y_ + layout_.row->height + growth > bottom_ + kSpare;
    if (tooTall) {
        warn_(layout_.row->place + ": Zeile ist höher als die Seite und wurde abgeschnitten");
        document_.canvas().beginClip({0, 0, layout_.width, bottom_});
    }
    flow(*layout_.row, Moment::Now, growth);
    if (tooTall)
        document_.canvas().endClip();
}

bool PrintJob::wantsNewPage(std::size_t brokenGroup) const {
    const auto asks = [&](const std::optional<Band>& band) {
        return band && band->newPage && band->newPage->holds(scene(Moment::Now));
    };
    for (std::size_t level = brokenGroup; level < layout_.groups.size(); ++level)
        if (asks(layout_.groups[level].head))
            return true;
    return asks(layout_.row);
}

// --- Groups ---

std::size_t PrintJob::firstBrokenGroup() const {
    for (std::size_t level = 0; level < openGroups_; ++level)
        for (const std::size_t key : layout_.groups[level].keys)
            if (definitions_.value(key, Moment::Now).text != definitions_.value(key, Moment::Printed).text)
                return level;
    return openGroups_;
}

/// Prints the feet of the open groups from the innermost to `level`; false where one does not fit.
bool PrintJob::closeGroups(std::size_t level) {
    for (; openGroups_ > level; leaveGroup()) {
        const auto& foot = layout_.groups[openGroups_ - 1].foot;
        if (!foot || !holds(*foot, Moment::Printed))
            continue;
        const double growth = growthOf(*foot, Moment::Printed);
        if (pageLines_ > 0 && y_ + foot->height + growth > bottom_ + kSpare)
            return false;
        bindPage(true);
        flow(*foot, Moment::Printed, growth);
    }
    return true;
}

void PrintJob::leaveGroup() {
    --openGroups_;
    if (structure_)
        structure_->closeGroup(openGroups_);
}

void PrintJob::openGroups() {
    for (; openGroups_ < layout_.groups.size(); ++openGroups_) {
        const auto level = static_cast<AggregateScope>(openGroups_);
        totals_.reset(level);
        for (std::size_t i = 0; i < points_.size(); ++i)
            if (layout_.rowCharts[i]->scope == level)
                points_[i] = {};
        const auto& head = layout_.groups[openGroups_].head;
        if (head && holds(*head, Moment::Now))
            flow(*head, Moment::Now, 0);
    }
}

void PrintJob::repeatGroupHeads() {
    for (std::size_t level = 0; level < openGroups_; ++level) {
        const auto& head = layout_.groups[level].head;
        if (head && head->repeats && holds(*head, Moment::Now))
            flow(*head, Moment::Now, 0);
    }
}

double PrintJob::heightOfHeads(bool freshPage) const {
    double height = freshPage && carriedIn_ ? heightOf(layout_.carriedIn) : 0;
    for (std::size_t level = 0; level < layout_.groups.size(); ++level) {
        const auto& head = layout_.groups[level].head;
        if (head && (level >= openGroups_ || (freshPage && head->repeats)) && holds(*head, Moment::Now))
            height += head->height;
    }
    return height;
}

/// Room for what may have to follow the line. A band whose condition does not hold for the line itself won't.
double PrintJob::reserve() const {
    const auto room = [&](const std::optional<Band>& band) {
        const bool follows = band && !band->alone &&
                             (!band->condition || band->condition->hasAggregates() || holds(*band, Moment::Now));
        return follows ? band->height : 0;
    };
    double closing = room(layout_.sum);
    for (const Group& group : layout_.groups)
        closing += room(group.foot);
    return std::max(closing, room(layout_.carriedOut));
}

// --- The end ---

void PrintJob::closeTable() {
    if (tableClosed_ || !pageOpen_)
        return;
    while (!closeGroups(0))
        beginPage();
    tableClosed_ = true;
    if (!layout_.sum || tableLines_ == 0 || !holds(*layout_.sum, Moment::Printed))
        return;
    const double growth = growthOf(*layout_.sum, Moment::Printed);
    if (pageLines_ > 0 && y_ + layout_.sum->height + growth > bottom_ + kSpare)
        beginPage();
    bindPage(true);
    flow(*layout_.sum, Moment::Printed, growth);
}

void PrintJob::finish(const String& heading) {
    if (pageOpen_)
        closePage();
    if (structure_)
        structure_->finish();
    document_.bookmarkSince(begin_, {heading});
    if (sampler_ && tableLines_ > 0)
        sampled_(sampler_->finish(scene(Moment::Printed), document_.pages()));
    finished_ = true;
}

// --- Bands ---

bool PrintJob::holds(const Band& band, Moment moment) const {
    return !band.condition || band.condition->holds(scene(moment));
}

void PrintJob::flow(const Band& band, Moment moment, double growth) {
    draw(band, moment, y_ - band.top, growth);
    y_ += band.height + growth;
}

double PrintJob::growthOf(const Band& band, Moment moment) {
    double growth = 0;
    if (band.grows)
        for (const Item& item : band.items) {
            const auto* text = std::get_if<TextItem>(&item.content);
            if (text == nullptr || !text->grows)
                continue;
            text_.clear();
            text->text.append(scene(moment), text_);
            growth = std::max(growth, setter_.growthFor(*text, text_));
        }
    return growth;
}

void PrintJob::draw(const Band& band, Moment moment, double down, double growth, Pass pass) {
    const Scene now = scene(moment);
    if (band.condition && !band.condition->holds(now))
        return;
    if (sampler_)
        sampler_->take(band, now, pass == Pass::All ? std::nullopt : std::optional(pass == Pass::Late));
    if (!band.bookmark.empty() && pass != Pass::Late)
        addBookmark(band, now, band.top + down);
    if (structure_)
        structure_->begin(band, now);
    for (const Item& item : band.items) {
        if (pass != Pass::All && item.late != (pass == Pass::Late))
            continue;
        bool shown = true;
        for (const auto& condition : item.conditions)
            shown = shown && condition->holds(now);
        if (shown)
            drawItem(item, band, now, down, growth);
    }
    if (structure_)
        structure_->end();
}

void PrintJob::drawItem(const Item& item, const Band& band, const Scene& now, double down, double growth) {
    Canvas& canvas = document_.canvas();
    if (const auto* text = std::get_if<TextItem>(&item.content)) {
        text_.clear();
        text->text.append(now, text_);
        show(item, text_, down);
        setter_.set(*text, text_, down, growth);
    } else if (const auto* shape = std::get_if<Shape>(&item.content)) {
        show(item);
        constexpr double kEdge = 0.5 * 72 / 25.4; // what lies this close to the lower edge moves with it
        if (growth > 0 && shape->atEdge)
            canvas.draw(shape->operators(layout_.height, band.bottom() - kEdge, growth), down);
        else
            canvas.draw(shape->compiled, down);
    } else if (const auto* found = std::get_if<std::unique_ptr<Chart>>(&item.content)) {
        const Chart& chart = **found;
        ChartPoints points = chart.rows ? points_[chart.rowChart] : pointsOf(chart, now);
        if (structure_)
            show(item, describe(chart, points, definitions_.locale()), down);
        PageSurface surface(canvas, setter_);
        drawChart(chart, std::move(points), definitions_.locale(), down, surface, setter_, warn_);
    } else if (const auto* foreign = std::get_if<ForeignItem>(&item.content)) {
        if (structure_)
            show(item, fromUtf8(layout_.foreign[foreign->drawing].title), down);
        canvas.draw("/X" + std::to_string(firstForm_ + foreign->drawing) + " Do\n", down);
    }
}

void PrintJob::show(const Item& item, StringView text, double down) {
    if (structure_)
        structure_->show(item, text, down);
}

void PrintJob::addBookmark(const Band& band, const Scene& now, double y) {
    std::vector<String> path = bookmark_;
    for (const TextTemplate& level : band.bookmark)
        level.append(now, path.emplace_back());
    if (structure_)
        structure_->setPlace(std::span(path).subspan(bookmark_.size()));
    document_.bookmark(path, y);
}

} // namespace kvtdruck::druckwerk
