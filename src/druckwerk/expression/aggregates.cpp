#include "druckwerk/expression/aggregates.h"

#include <algorithm>

namespace kvtdruck::druckwerk {

std::size_t Aggregates::add(Aggregate aggregate) {
    const auto same = std::find_if(aggregates_.begin(), aggregates_.end(), [&](const Aggregate& other) {
        return other.kind == aggregate.kind && other.source == aggregate.source && other.scope == aggregate.scope;
    });
    if (same != aggregates_.end())
        return static_cast<std::size_t>(same - aggregates_.begin());
    aggregates_.push_back(std::move(aggregate));
    return aggregates_.size() - 1;
}

void Totals::Total::add(double value) {
    const long double addend = value - lost;
    const long double next = sum + addend;
    lost = (next - sum) - addend;
    sum = next;
    minimum = count == 0 ? value : std::min(minimum, value);
    maximum = count == 0 ? value : std::max(maximum, value);
}

void Totals::accumulate(const Scene& scene) {
    const auto& aggregates = aggregates_.list();
    totals_.resize(aggregates.size());
    for (std::size_t i = 0; i < aggregates.size(); ++i) {
        if (aggregates[i].argument)
            totals_[i].add(aggregates[i].argument->evaluate(scene));
        ++totals_[i].count;
    }
}

void Totals::reset(AggregateScope scope) {
    for (std::size_t i = 0; i < totals_.size(); ++i)
        if (aggregates_.list()[i].scope == scope)
            totals_[i] = {};
}

double Totals::value(std::size_t aggregate) const {
    if (aggregate >= totals_.size()) // no line yet
        return 0;
    const Total& total = totals_[aggregate];
    switch (aggregates_.list()[aggregate].kind) {
    case Aggregates::Kind::Sum:
        return static_cast<double>(total.sum);
    case Aggregates::Kind::Average:
        return total.count == 0 ? 0 : static_cast<double>(total.sum / static_cast<long double>(total.count));
    case Aggregates::Kind::Count:
        return static_cast<double>(total.count);
    case Aggregates::Kind::Minimum:
        return total.minimum;
    case Aggregates::Kind::Maximum:
        return total.maximum;
    }
    return 0;
}

} // namespace kvtdruck::druckwerk
