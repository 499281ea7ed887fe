// A reader of the data-access library.
#pragma once

#include "dataaccess/member.h"
#include "dataaccess/members.h"
#include "module/component_state.h"

#include <initializer_list>

namespace kvtdruck {

/// A reader of the data-access library: created fresh, connected, filled by one read operation, then walked.
class RecordReader {
  public:
    /// Creates the object; run-time error 429 where that fails.
    RecordReader(ComponentState& state, const DataClass& dataClass);

    bool connect(const ObjectRef& pADOCon);
    bool read(StringView operation, std::initializer_list<Variant> arguments);
    bool atEnd();
    void MoveFirst();
    void MoveNext();

    /// The current record's value, until `getter` is read again; `getter` belongs to this reader.
    const Variant& value(Member& getter) { return getter.read(object_, state_.locale()); }

  private:
    ComponentState& state_;
    ObjectRef object_;
    Member eof_{kEOF, ValueType::Boolean};
    Member moveFirst_{kMoveFirst, ValueType::Variant};
    Member moveNext_{kMoveNext, ValueType::Variant};
};

} // namespace kvtdruck
