// Texts with placeholders, compiled once and filled for every line.
#pragma once

#include "druckwerk/expression/aggregates.h"
#include "druckwerk/expression/date_pattern.h"
#include "druckwerk/expression/number_pattern.h"

#include <optional>
#include <variant>

namespace kvtdruck::druckwerk {

/// Stands for the number of pages in a filled text; it is no character, so it occurs in no sensible value.
inline constexpr char16_t kPageCountMark = 0xFFFF;

/// "Seite {{Seite}} von {{Seiten}}" and its like.
class TextTemplate {
  public:
    /// Raises a Fault with the reason where a placeholder can't be understood.
    TextTemplate(StringView source, Definitions& definitions, Aggregates& aggregates, AggregateScope scope);

    void append(const Scene& scene, String& out) const;

    /// Whether it is one placeholder with a number pattern and nothing else.
    bool isLoneNumber() const { return loneNumber_; }
    bool hasAggregates() const;
    bool hasPageCount() const { return hasPageCount_; }
    bool isConstant() const;
    /// Whether it shows which page of how many it stands on.
    bool hasPageNumber() const;
    std::vector<std::size_t> slots() const;
    /// The slots of the names within its aggregates.
    std::vector<std::size_t> aggregatedSlots() const;

  private:
    enum class Counter : std::uint8_t { Page, Pages, Line, PageLine };
    struct PrintDateText {
        std::optional<DatePattern> pattern;
    };
    struct Value {
        std::size_t slot;
        std::variant<std::monostate, NumberPattern, DatePattern> pattern;
    };
    struct Computed {
        Expression expression;
        NumberPattern pattern;
    };
    static void appendValue(const Value& piece, const Scene& scene, String& out);
    static void appendComputed(const Computed& piece, const Scene& scene, String& out);
    static void appendCounter(Counter piece, const Scene& scene, String& out);

    using Piece = std::variant<String, Value, Computed, Counter, PrintDateText>;

    Piece placeholder(StringView content, Definitions& definitions, Aggregates& aggregates, AggregateScope scope);

    std::vector<Piece> pieces_;
    bool loneNumber_ = false;
    bool hasPageCount_ = false;
};

} // namespace kvtdruck::druckwerk
