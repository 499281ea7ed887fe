// A reader as a report uses it: members by name, results as C++ values.
#pragma once

#include "kvtzug/kvtzug.h"
#include "values/locale.h"
#include "values/variant.h"

#include <vector>

namespace kvtdruck::test {

class ReaderAccess {
  public:
    ReaderAccess(DataLibrary& library, StringView className) : object_(library.create(className)) {}
    /// Created and connected.
    ReaderAccess(DataLibrary& library, StringView className, StringView connectionString,
                 std::int16_t productMode = 0)
        : ReaderAccess(library, className) {
        call(u"Verbinde", {ObjectRef(std::make_shared<HostConnection>(String(connectionString))), productMode});
    }

    Variant call(StringView member, const std::vector<Variant>& arguments = {}) const {
        return object_->call(object_->idOf(member), arguments);
    }
    bool truth(StringView member, const std::vector<Variant>& arguments = {}) const {
        return *call(member, arguments).as<bool>();
    }
    double number(StringView member) const { return toDouble(call(member), germanLocale()); }
    String text(StringView member) const { return *call(member).as<String>(); }

    /// The values of `member` in all records from here on.
    std::vector<Variant> column(StringView member) const {
        std::vector<Variant> values;
        for (; !truth(u"EOF"); call(u"MoveNext"))
            values.push_back(call(member));
        return values;
    }
    std::vector<double> numbers(StringView member) const {
        std::vector<double> values;
        for (const auto& value : column(member))
            values.push_back(toDouble(value, germanLocale()));
        return values;
    }

    Object& object() const { return *object_; }

  private:
    ObjectRef object_;
};

} // namespace kvtdruck::test
