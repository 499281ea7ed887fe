// The company's general data.
#pragma once

#include "dataaccess/members.h"
#include "module/component_state.h"
#include "values/variant.h"

#include <initializer_list>

namespace kvtdruck {

/// The company's general data (`clsZugFirmaAllg`), connected and positioned by the print manager.
class CompanyData {
  public:
    CompanyData(ComponentState& state, ObjectRef object) : state_(state), object_(std::move(object)) {}

    const ObjectRef& object() const { return object_; }
    bool connect(const ObjectRef& pADOCon);
    bool read(double pFnr);
    String text(StringView getter);
    double number(StringView getter);

  private:
    Variant call(StringView name, ValueType type, std::initializer_list<Variant> arguments = {});

    ComponentState& state_;
    ObjectRef object_;
};

} // namespace kvtdruck
