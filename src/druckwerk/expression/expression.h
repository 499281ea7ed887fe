// Expressions of layouts: conditions, computed placeholders, points of charts.
#pragma once

#include "druckwerk/expression/definitions.h"

#include <array>
#include <cstdint>
#include <vector>

namespace kvtdruck::druckwerk {

class Aggregates;
class Totals;

/// What an expression or a placeholder is evaluated in.
struct Scene {
    const Definitions& definitions;
    const Totals& totals;
    Moment moment = Moment::Now;
    int page = 0;
    std::int64_t line = 0;
    std::int64_t pageLine = 0;
    Date printDate = {}; ///< with the time of day
};

/// Which lines an aggregate runs over: a group's level from 0, the table, or the page.
using AggregateScope = int;
inline constexpr AggregateScope kTableScope = -1;
inline constexpr AggregateScope kPageScope = -2;

/// One expression, compiled once. It gives a number; where `Result` allows, a text.
class Expression {
  public:
    enum class Result : std::uint8_t { Number, NumberOrText };

    /// Raises a Fault with the reason where `source` can't be understood. Aggregates in it are added to
    /// `aggregates` with `scope`; without `aggregates` they are refused.
    Expression(StringView source, Definitions& definitions, Aggregates* aggregates, AggregateScope scope,
               Result result = Result::Number);

    /// NaN or an infinity where there is no result (a division by zero).
    double evaluate(const Scene& scene) const { return number(root_, scene); }
    bool holds(const Scene& scene) const { return evaluate(scene) != 0; }

    bool isText() const { return isText_; }
    /// Appends the text that it gives; only where `isText`.
    void append(const Scene& scene, String& out) const;

    /// The slots of all names in it, those within aggregates left out.
    const std::vector<std::size_t>& slots() const { return slots_; }
    /// The slots of the names within its aggregates.
    const std::vector<std::size_t>& aggregatedSlots() const { return aggregatedSlots_; }
    bool hasAggregates() const { return hasAggregates_; }

  private:
    friend class ExpressionParser;
    using NodeNumber = std::uint16_t;

    /// A step of the evaluation; its operands are other nodes.
    struct Node {
        enum class Kind : std::uint8_t {
            Constant,
            Value,
            Total,
            Page,
            Line,
            PageLine,
            IsEmpty,
            SameText,
            SameValue, ///< two names: equal as numbers where both are some, else as texts
            Unary,
            Binary,
            And,
            Or,
            Choice,
            // these give texts
            Literal,
            ValueText,
            Join,
        };
        Kind kind = Kind::Constant;
        double constant = 0;
        std::size_t slot = 0; // or the aggregate's number
        std::array<NodeNumber, 3> operands{};
        double (*unary)(double) = nullptr;
        double (*binary)(double, double) = nullptr;
        String literal = {};
    };

    Expression() = default;
    double number(NodeNumber node, const Scene& scene) const;
    /// The text of a node; `scratch` holds it where it has to be put together.
    StringView text(NodeNumber node, const Scene& scene, String& scratch) const;
    bool sameText(const Node& node, const Scene& scene) const;
    bool sameValue(const Node& node, const Scene& scene) const;

    std::vector<Node> nodes_;
    NodeNumber root_ = 0;
    bool isText_ = false;
    bool hasAggregates_ = false;
    std::vector<std::size_t> slots_;
    std::vector<std::size_t> aggregatedSlots_;
};

} // namespace kvtdruck::druckwerk
