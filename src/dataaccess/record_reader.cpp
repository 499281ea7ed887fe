#include "dataaccess/record_reader.h"

namespace kvtdruck {

RecordReader::RecordReader(ComponentState& state, const DataClass& dataClass)
    : state_(state), object_(state.dataLibrary().create(dataClass.name)) {}

bool RecordReader::connect(const ObjectRef& pADOCon) {
    return read(kVerbinde, {pADOCon, state_.pSelmoraFuer});
}

bool RecordReader::read(StringView operation, std::initializer_list<Variant> arguments) {
    return toBoolean(Member(operation, ValueType::Boolean).call(object_, state_.locale(), arguments),
                     state_.locale());
}

bool RecordReader::atEnd() {
    return toBoolean(value(eof_), state_.locale());
}

void RecordReader::MoveFirst() {
    value(moveFirst_);
}

void RecordReader::MoveNext() {
    value(moveNext_);
}

} // namespace kvtdruck
