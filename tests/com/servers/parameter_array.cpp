#include "servers/parameter_array.h"

#include "values/characters.h"
#include "values/runtime_error.h"
#include "values/variant.h"

#include <vector>

namespace kvtdruck::test {
namespace {

enum Member : Object::MemberId { kValue, kReDim, kCount };

std::int32_t number(const Variant& value) {
    return toLong(value, germanLocale());
}

class ParameterArray final : public Object {
  public:
    MemberId idOf(StringView name) override {
        if (sameWord(name, u"Value"))
            return kValue;
        if (sameWord(name, u"ReDim"))
            return kReDim;
        if (sameWord(name, u"Count"))
            return kCount;
        throw RuntimeError(ErrorNumber::MemberNotFound);
    }

    Variant call(MemberId member, std::span<const Variant> arguments) override {
        switch (member) {
        case kValue:
            return cell(arguments);
        case kReDim:
            expect(arguments, 4);
            rows_ = {number(arguments[0]), number(arguments[1])};
            columns_ = {number(arguments[2]), number(arguments[3])};
            cells_.assign(static_cast<std::size_t>(rows_.size()) * static_cast<std::size_t>(columns_.size()), {});
            return {};
        case kCount:
            expect(arguments, 1);
            return number(arguments[0]) == 1 ? rows_.size() : columns_.size();
        default:
            throw RuntimeError(ErrorNumber::MemberNotFound);
        }
    }

    void put(MemberId member, std::span<const Variant> arguments, const Variant& value) override {
        if (member != kValue)
            throw RuntimeError(ErrorNumber::MemberNotFound);
        cell(arguments) = value;
    }

  private:
    struct Bounds {
        std::int32_t lower = 0;
        std::int32_t upper = -1;

        std::int32_t size() const { return upper - lower + 1; }
        bool contains(std::int32_t index) const { return index >= lower && index <= upper; }
    };

    static void expect(std::span<const Variant> arguments, std::size_t count) {
        if (arguments.size() != count)
            throw RuntimeError(ErrorNumber::InvalidProcedureCall);
    }

    Variant& cell(std::span<const Variant> arguments) {
        expect(arguments, 2);
        const auto row = number(arguments[0]);
        const auto column = number(arguments[1]);
        if (!rows_.contains(row) || !columns_.contains(column))
            throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
        return cells_[static_cast<std::size_t>((row - rows_.lower) * columns_.size() + column - columns_.lower)];
    }

    Bounds rows_;
    Bounds columns_;
    std::vector<Variant> cells_;
};

} // namespace

ObjectRef createParameterArray() {
    return std::make_shared<ParameterArray>();
}

} // namespace kvtdruck::test
