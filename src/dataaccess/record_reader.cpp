#include "dataaccess/record_reader.h"

#include "module/error_rule.h"

#include <span>
#include <utility>

namespace kvtdruck {

Object::MemberId Mitglied::nummer(Object& objekt) {
    if (!nummer_)
        nummer_ = objekt.idOf(name_);
    return *nummer_;
}

Variant Mitglied::rufe(const ObjectRef& objekt, const Locale& locale, std::initializer_list<Variant> argumente) {
    Object& ziel = required(objekt);
    const auto mitglied = nummer(ziel);
    auto ergebnis = ziel.call(mitglied, std::span(argumente.begin(), argumente.size()));
    return typ_ == ValueType::Variant ? ergebnis : coerced(ergebnis, typ_, locale);
}

void Mitglied::setze(const ObjectRef& objekt, std::initializer_list<Variant> argumente, const Variant& wert) {
    Object& ziel = required(objekt);
    const auto mitglied = nummer(ziel);
    ziel.put(mitglied, std::span(argumente.begin(), argumente.size()), wert);
}

Variant FirmaAllg::rufe(StringView name, ValueType typ, std::initializer_list<Variant> argumente) {
    return Mitglied(name, typ).rufe(objekt_, state_.locale(), argumente);
}

bool FirmaAllg::Verbinde(const ObjectRef& pADOCon) {
    return toBoolean(rufe(kVerbinde, ValueType::Boolean, {pADOCon, state_.pSelmoraFuer}), state_.locale());
}

bool FirmaAllg::LeseFirmaAllg(double pFnr) {
    return toBoolean(rufe(kLeseFirmaAllg, ValueType::Boolean, {pFnr}), state_.locale());
}

String FirmaAllg::text(StringView getter) {
    return toText(rufe(getter, ValueType::Text), state_.locale());
}

double FirmaAllg::zahl(StringView getter) {
    return toDouble(rufe(getter, ValueType::Double), state_.locale());
}

Leser::Leser(ComponentState& state, const Zugklasse& klasse)
    : state_(state), klasse_(klasse), objekt_(state.dataLibrary().create(klasse.name)) {}

bool Leser::Verbinde(const ObjectRef& pADOCon) {
    return Lese(kVerbinde, {pADOCon, state_.pSelmoraFuer});
}

bool Leser::Lese(StringView operation, std::initializer_list<Variant> argumente) {
    return toBoolean(Mitglied(operation, ValueType::Boolean).rufe(objekt_, state_.locale(), argumente),
                     state_.locale());
}

bool Leser::Ende() {
    return toBoolean(wert(eof_), state_.locale());
}

void Leser::MoveFirst() {
    wert(moveFirst_);
}

void Leser::MoveNext() {
    wert(moveNext_);
}

Variant Parameterfeld::Value(std::int32_t zeile, std::int32_t spalte) {
    return value_.rufe(objekt_, state_.locale(), {zeile, spalte});
}

void Parameterfeld::Value(std::int32_t zeile, std::int32_t spalte, const Variant& wert) {
    value_.setze(objekt_, {zeile, spalte}, wert);
}

std::int32_t Parameterfeld::Count(std::int32_t dimension) {
    return toLong(count_.rufe(objekt_, state_.locale(), {dimension}), state_.locale());
}

bool Parameterfeld::ist(std::int32_t zeile, std::int32_t spalte, bool wahrheit) {
    return equals(Value(zeile, spalte), wahrheit, state_.locale());
}

bool Parameterfeld::ist(std::int32_t zeile, std::int32_t spalte, double zahl) {
    return equals(Value(zeile, spalte), zahl, state_.locale());
}

float Parameterfeld::single(std::int32_t zeile, std::int32_t spalte) {
    return toSingle(Value(zeile, spalte), state_.locale());
}

String Parameterfeld::text(std::int32_t zeile, std::int32_t spalte) {
    return toText(Value(zeile, spalte), state_.locale());
}

void Parameterfeld::normalisiereBereich() {
    if (!ist(0, 0, false))
        return;
    const bool ohneUntere = ist(0, 1, 0.0);
    const bool ohneObere = ist(0, 2, 0.0);
    if (ohneUntere && ohneObere)
        Value(0, 0, true);
    else if (ohneUntere)
        Value(0, 1, Value(0, 2));
    else
        Value(0, 2, Value(0, 1));
}

} // namespace kvtdruck
