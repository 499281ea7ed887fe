#include "catalog/parameter_array.h"

#include "dataaccess/members.h"
#include "values/characters.h"
#include "values/runtime_error.h"

namespace kvtdruck::catalog {
namespace {

constexpr Object::MemberId kValueId = 1;
constexpr Object::MemberId kCountId = 2;

std::int32_t argument(std::span<const Variant> arguments, std::size_t index) {
    if (index >= arguments.size())
        throw RuntimeError(ErrorNumber::InvalidProcedureCall);
    return toLong(arguments[index], germanLocale());
}

} // namespace

Object::MemberId ParameterArray::idOf(StringView name) {
    if (sameWord(name, kValue))
        return kValueId;
    if (sameWord(name, kCount))
        return kCountId;
    throw RuntimeError(ErrorNumber::MemberNotFound);
}

Variant ParameterArray::call(MemberId member, std::span<const Variant> arguments) {
    if (member == kValueId)
        return addressed(arguments);
    if (argument(arguments, 0) == 1)
        return static_cast<std::int32_t>(rows());
    return static_cast<std::int32_t>(columns());
}

void ParameterArray::put(MemberId, std::span<const Variant> arguments, const Variant& value) {
    addressed(arguments) = value;
}

Variant& ParameterArray::addressed(std::span<const Variant> arguments) {
    const auto row = argument(arguments, 0);
    const auto column = argument(arguments, 1);
    if (row < 0 || column < 0 || std::size_t(row) >= rows() || std::size_t(column) >= columns_)
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    return cell(std::size_t(row), std::size_t(column));
}

} // namespace kvtdruck::catalog
