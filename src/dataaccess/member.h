// A member of a foreign object, with the type of its value.
#pragma once

#include "values/variant.h"

#include <initializer_list>
#include <optional>

namespace kvtdruck {

/// A member of one foreign object with the type of its value. Its number is asked for at the first use and kept, so
/// that no name is looked up per record; one `Member` belongs to one object.
class Member {
  public:
    Member(StringView name, ValueType type) : name_(name), type_(type) {}

    /// Reads the property or calls the operation on `object` (run-time error 91 where it is Nothing) and coerces
    /// the result.
    Variant call(const ObjectRef& object, const Locale& locale, std::initializer_list<Variant> arguments = {});

    /// The property's value on `object`, coerced likewise. It stays until the next reading.
    const Variant& read(const ObjectRef& object, const Locale& locale);

    /// Writes the property on `object`.
    void put(const ObjectRef& object, std::initializer_list<Variant> arguments, const Variant& value);

  private:
    Object::MemberId memberId(Object& object);

    StringView name_;
    ValueType type_;
    std::optional<Object::MemberId> id_;
    Variant value_; ///< as read last
};

} // namespace kvtdruck
