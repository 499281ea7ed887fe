#include "dataaccess/member.h"

#include "module/error_rule.h"

#include <span>

namespace kvtdruck {

Object::MemberId Member::memberId(Object& object) {
    if (!id_)
        id_ = object.idOf(name_);
    return *id_;
}

Variant Member::call(const ObjectRef& object, const Locale& locale, std::initializer_list<Variant> arguments) {
    Object& target = required(object);
    const auto id = memberId(target);
    auto result = target.call(id, std::span(arguments.begin(), arguments.size()));
    coerce(result, type_, locale);
    return result;
}

const Variant& Member::read(const ObjectRef& object, const Locale& locale) {
    Object& target = required(object);
    target.read(memberId(target), value_);
    coerce(value_, type_, locale);
    return value_;
}

void Member::put(const ObjectRef& object, std::initializer_list<Variant> arguments, const Variant& value) {
    Object& target = required(object);
    const auto id = memberId(target);
    target.put(id, std::span(arguments.begin(), arguments.size()), value);
}

} // namespace kvtdruck
