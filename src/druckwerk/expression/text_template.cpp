#include "druckwerk/expression/text_template.h"

#include "druckwerk/common/fault.h"
#include "values/conversion.h"
#include "values/overloaded.h"

#include <algorithm>

namespace kvtdruck::druckwerk {

namespace {

bool isName(StringView text) {
    return !text.empty() && std::none_of(text.begin(), text.end(), [](char16_t c) {
        return c < u'0' || (c > u'9' && c < u'A') || (c > u'Z' && c < u'_') || c == u'`' || (c > u'z' && c < 0x80);
    });
}

/// Appends what comes from the report, where the mark for the number of pages is but a sign that no font has.
void appendContent(StringView text, String& out) {
    out += text;
    std::replace(out.end() - static_cast<std::ptrdiff_t>(text.size()), out.end(), kPageCountMark, u'\xfffd');
}

} // namespace

TextTemplate::TextTemplate(StringView source, Definitions& definitions, Aggregates& aggregates,
                           AggregateScope scope) {
    std::size_t at = 0;
    while (at < source.size()) {
        const auto begin = std::min(source.find(u"{{", at), source.size());
        if (begin > at)
            pieces_.emplace_back(String(source.substr(at, begin - at)));
        if (begin == source.size())
            break;
        const auto end = source.find(u"}}", begin);
        if (end == StringView::npos)
            throw Fault(kLayoutInvalid, "Platzhalter ohne Ende „}}“: " + toUtf8(source.substr(begin, 60)));
        pieces_.push_back(
            placeholder(trimmed(source.substr(begin + 2, end - begin - 2)), definitions, aggregates, scope));
        at = end + 2;
    }
    if (pieces_.size() == 1) {
        const auto* value = std::get_if<Value>(&pieces_[0]);
        const auto* computed = std::get_if<Computed>(&pieces_[0]);
        loneNumber_ = (computed != nullptr && !computed->expression.isText()) ||
                      (value != nullptr && std::holds_alternative<NumberPattern>(value->pattern));
    }
}

TextTemplate::Piece TextTemplate::placeholder(StringView content, Definitions& definitions, Aggregates& aggregates,
                                              AggregateScope scope) {
    const auto bar = content.rfind(u'|');
    const StringView what = trimmed(content.substr(0, bar));
    const StringView pattern = bar == StringView::npos ? StringView() : trimmed(content.substr(bar + 1));
    if (!what.empty() && what[0] == u'=')
        return Computed{
            Expression(what.substr(1), definitions, &aggregates, scope, Expression::Result::NumberOrText),
            NumberPattern(pattern.empty() ? StringView(u"0,##########") : pattern)};
    if (!isName(what))
        throw Fault(kLayoutInvalid, "Ungültiger Platzhalter „{{" + toUtf8(content) +
                                        "}}“: ein Name, oder ein Ausdruck nach einem Gleichheitszeichen");
    if (what == u"Seite")
        return Counter::Page;
    if (what == u"Zeilennummer")
        return Counter::Line;
    if (what == u"Seitenzeile")
        return Counter::PageLine;
    if (what == u"Seiten") {
        hasPageCount_ = true;
        return Counter::Pages;
    }
    const bool date = DatePattern::describes(pattern);
    if (what == u"Druckdatum")
        return PrintDateText{date ? std::optional<DatePattern>(pattern) : std::nullopt};
    Value value{definitions.slotOf(what), {}};
    if (date)
        value.pattern = DatePattern(pattern);
    else if (!pattern.empty())
        value.pattern = NumberPattern(pattern);
    return value;
}

void TextTemplate::appendValue(const Value& piece, const Scene& scene, String& out) {
    const auto& value = scene.definitions.value(piece.slot, scene.moment);
    if (const auto* pattern = std::get_if<NumberPattern>(&piece.pattern)) {
        const Number& number = scene.definitions.number(piece.slot, scene.moment);
        if (number.isNumber())
            return pattern->append(number, scene.definitions.locale(), out);
    } else if (const auto* dates = std::get_if<DatePattern>(&piece.pattern)) {
        if (const auto date = scene.definitions.date(piece.slot, scene.moment, dates->isMonth())) {
            if (date->days != 0) // the zero date is none
                dates->append(*date, scene.definitions.locale(), out);
            return;
        }
    }
    appendContent(value.text, out);
}

void TextTemplate::appendComputed(const Computed& piece, const Scene& scene, String& out) {
    if (piece.expression.isText()) {
        String text;
        piece.expression.append(scene, text);
        return appendContent(text, out);
    }
    const Number number = Number::of(piece.expression.evaluate(scene));
    if (number.isNumber())
        piece.pattern.append(number, scene.definitions.locale(), out);
    else
        out += u'–';
}

void TextTemplate::appendCounter(Counter piece, const Scene& scene, String& out) {
    if (piece == Counter::Pages)
        out += kPageCountMark;
    else
        out += decimal(piece == Counter::Page ? scene.page : piece == Counter::Line ? scene.line : scene.pageLine);
}

void TextTemplate::append(const Scene& scene, String& out) const {
    const Locale& locale = scene.definitions.locale();
    for (const auto& piece : pieces_)
        std::visit(Overloaded{[&](const String& text) { out += text; },
                              [&](const Value& value) { appendValue(value, scene, out); },
                              [&](const Computed& computed) { appendComputed(computed, scene, out); },
                              [&](Counter counter) { appendCounter(counter, scene, out); },
                              [&](const PrintDateText& date) {
                                  if (date.pattern)
                                      date.pattern->append(scene.printDate, locale, out);
                                  else
                                      out += shortDateOf(scene.printDate, locale);
                              }},
                   piece);
}

bool TextTemplate::hasAggregates() const {
    return std::any_of(pieces_.begin(), pieces_.end(), [](const Piece& piece) {
        const auto* computed = std::get_if<Computed>(&piece);
        return computed != nullptr && computed->expression.hasAggregates();
    });
}

bool TextTemplate::isConstant() const {
    return std::all_of(pieces_.begin(), pieces_.end(),
                       [](const Piece& piece) { return std::holds_alternative<String>(piece); });
}

bool TextTemplate::hasPageNumber() const {
    return std::ranges::any_of(pieces_, [](const Piece& piece) {
        const auto* counter = std::get_if<Counter>(&piece);
        return counter != nullptr && (*counter == Counter::Page || *counter == Counter::Pages);
    });
}

std::vector<std::size_t> TextTemplate::slots() const {
    std::vector<std::size_t> slots;
    for (const auto& piece : pieces_) {
        if (const auto* value = std::get_if<Value>(&piece))
            slots.push_back(value->slot);
        else if (const auto* computed = std::get_if<Computed>(&piece))
            slots.insert(slots.end(), computed->expression.slots().begin(), computed->expression.slots().end());
    }
    return slots;
}

std::vector<std::size_t> TextTemplate::aggregatedSlots() const {
    std::vector<std::size_t> slots;
    for (const auto& piece : pieces_)
        if (const auto* computed = std::get_if<Computed>(&piece)) {
            const auto& found = computed->expression.aggregatedSlots();
            slots.insert(slots.end(), found.begin(), found.end());
        }
    return slots;
}

} // namespace kvtdruck::druckwerk
