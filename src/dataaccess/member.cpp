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
    return coerced(target.call(id, std::span(arguments.begin(), arguments.size())), type_, locale);
}

void Member::put(const ObjectRef& object, std::initializer_list<Variant> arguments, const Variant& value) {
    Object& target = required(object);
    const auto id = memberId(target);
    target.put(id, std::span(arguments.begin(), arguments.size()), value);
}

} // namespace kvtdruck
