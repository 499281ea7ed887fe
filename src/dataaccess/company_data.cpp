#include "dataaccess/company_data.h"

#include "dataaccess/member.h"

namespace kvtdruck {

Variant CompanyData::call(StringView name, ValueType type, std::initializer_list<Variant> arguments) {
    return Member(name, type).call(object_, state_.locale(), arguments);
}

bool CompanyData::connect(const ObjectRef& pADOCon) {
    return toBoolean(call(kVerbinde, ValueType::Boolean, {pADOCon, state_.pSelmoraFuer}), state_.locale());
}

bool CompanyData::read(double pFnr) {
    return toBoolean(call(kLeseFirmaAllg, ValueType::Boolean, {pFnr}), state_.locale());
}

String CompanyData::text(StringView getter) {
    return toText(call(getter, ValueType::Text), state_.locale());
}

double CompanyData::number(StringView getter) {
    return toDouble(call(getter, ValueType::Double), state_.locale());
}

} // namespace kvtdruck
