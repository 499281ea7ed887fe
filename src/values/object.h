// Objects of foreign libraries, reached late bound: by a member's number, which its name is resolved to once.
#pragma once

#include "values/text.h"

#include <cstdint>
#include <memory>
#include <span>

namespace kvtdruck {

class Variant;

/// An object that answers to member names, as Automation objects do. Every operation may raise a run-time error.
class Object {
  public:
    using MemberId = std::int32_t;

    Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object() = default;

    /// The number of member `name` (letter case does not matter); run-time error 438 where there is none. The
    /// number stays valid for the object's life.
    virtual MemberId idOf(StringView name) = 0;

    /// Reads a property or calls an operation, with its arguments in order and by value; gives its result, or
    /// Empty.
    virtual Variant call(MemberId member, std::span<const Variant> arguments) = 0;

    /// The result of `call` without arguments, put into `value`. What is read again and again need not take new
    /// room every time.
    virtual void read(MemberId member, Variant& value);

    /// Writes a property: `arguments` address it, `value` is what it takes.
    virtual void put(MemberId member, std::span<const Variant> arguments, const Variant& value) = 0;
};

/// A shared reference to a foreign object; empty where Automation would say Nothing.
using ObjectRef = std::shared_ptr<Object>;

} // namespace kvtdruck
