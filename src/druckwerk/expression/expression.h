// Expressions of layouts: conditions, computed placeholders, and the aggregates within them.
#pragma once

#include "druckwerk/expression/definitions.h"

#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace kvtdruck::druckwerk {

class Aggregates;

/// What an expression or a placeholder is evaluated in.
struct Scene {
    const Definitions& definitions;
    const Aggregates& aggregates;
    Moment moment = Moment::Now;
    int page = 0;
    std::int64_t line = 0;
    std::int64_t pageLine = 0;
};

/// Which lines an aggregate runs over: a group's level from 0, the table, or the page.
using AggregateScope = int;
inline constexpr AggregateScope kTableScope = -1;
inline constexpr AggregateScope kPageScope = -2;

/// One expression, compiled once.
class Expression {
  public:
    /// Raises a Fault with the reason where `source` can't be understood. Aggregates in it are added to
    /// `aggregates` with `scope`.
    Expression(StringView source, Definitions& definitions, Aggregates* aggregates, AggregateScope scope);
    Expression(Expression&&) noexcept;
    Expression& operator=(Expression&&) noexcept;
    ~Expression();

    double evaluate(const Scene& scene) const;
    bool holds(const Scene& scene) const { return evaluate(scene) != 0; }

    /// The slots of all names in it, those within aggregates left out.
    const std::vector<std::size_t>& slots() const { return slots_; }
    bool hasAggregates() const;

  private:
    class Reader;
    struct Program;
    std::unique_ptr<Program> program_;
    std::vector<std::size_t> slots_;
};

/// The running sums and counts of a layout.
class Aggregates {
  public:
    enum class Kind : std::uint8_t { Sum, Average, Count, Minimum, Maximum };

    /// The number of the aggregate; equal ones share it. `argument` is empty for a count.
    std::size_t add(Kind kind, StringView argument, AggregateScope scope, Definitions& definitions);
    /// Takes the line that is being printed into account.
    void accumulate(const Scene& scene);
    /// Begins anew what runs over `scope`.
    void reset(AggregateScope scope);
    double value(std::size_t aggregate) const;

  private:
    struct Aggregate {
        Kind kind;
        String argument;
        AggregateScope scope;
        std::unique_ptr<Expression> expression;
        long double sum = 0;
        long double lost = 0; ///< what rounding has cost so far (Kahan's summation)
        std::int64_t count = 0;
        double minimum = 0;
        double maximum = 0;
    };
    std::vector<Aggregate> aggregates_;
};

} // namespace kvtdruck::druckwerk
