// Sums, averages and counts over the lines of a table: what a layout asks for, and how far it has come.
#pragma once

#include "druckwerk/expression/expression.h"

#include <optional>

namespace kvtdruck::druckwerk {

/// The aggregates that a layout's expressions ask for.
class Aggregates {
  public:
    enum class Kind : std::uint8_t { Sum, Average, Count, Minimum, Maximum };
    struct Aggregate {
        Kind kind;
        String source; ///< of the argument; empty for a count
        AggregateScope scope;
        std::optional<Expression> argument;
    };

    /// The number of the aggregate; equal ones share it.
    std::size_t add(Aggregate aggregate);
    const std::vector<Aggregate>& list() const { return aggregates_; }

  private:
    std::vector<Aggregate> aggregates_;
};

/// The running values of aggregates, which must outlive it.
class Totals {
  public:
    explicit Totals(const Aggregates& aggregates) : aggregates_(aggregates) {}

    /// Takes the line that is being printed into account.
    void accumulate(const Scene& scene);
    /// Begins anew what runs over `scope`.
    void reset(AggregateScope scope);
    double value(std::size_t aggregate) const;

  private:
    struct Total {
        long double sum = 0;
        long double lost = 0; ///< what rounding has cost so far (Kahan's summation)
        std::int64_t count = 0;
        double minimum = 0;
        double maximum = 0;
        void add(double value);
    };
    const Aggregates& aggregates_;
    std::vector<Total> totals_; ///< by the aggregate's number
};

} // namespace kvtdruck::druckwerk
