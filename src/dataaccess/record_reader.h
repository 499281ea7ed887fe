// The foreign objects as the reports use them: the company's general data, a reader with its cursor, the parameter
// array.
#pragma once

#include "dataaccess/members.h"
#include "module/component_state.h"
#include "values/variant.h"

#include <initializer_list>
#include <optional>

namespace kvtdruck {

/// A member of one foreign object with the type of its value. Its number is asked for at the first use and kept, so
/// that no name is looked up per record; one `Mitglied` belongs to one object.
class Mitglied {
  public:
    Mitglied(StringView name, ValueType typ) : name_(name), typ_(typ) {}

    /// Reads the property or calls the operation on `objekt` (run-time error 91 where it is Nothing) and coerces
    /// the result.
    Variant rufe(const ObjectRef& objekt, const Locale& locale, std::initializer_list<Variant> argumente = {});

    /// Writes the property on `objekt`.
    void setze(const ObjectRef& objekt, std::initializer_list<Variant> argumente, const Variant& wert);

  private:
    Object::MemberId nummer(Object& objekt);

    StringView name_;
    ValueType typ_;
    std::optional<Object::MemberId> nummer_;
};

/// The company's general data (`clsZugFirmaAllg`), connected and positioned by the print manager.
class FirmaAllg {
  public:
    FirmaAllg(ComponentState& state, ObjectRef objekt) : state_(state), objekt_(std::move(objekt)) {}

    const ObjectRef& objekt() const { return objekt_; }
    bool Verbinde(const ObjectRef& pADOCon);
    bool LeseFirmaAllg(double pFnr);
    String text(StringView getter);
    double zahl(StringView getter);

  private:
    Variant rufe(StringView name, ValueType typ, std::initializer_list<Variant> argumente = {});

    ComponentState& state_;
    ObjectRef objekt_;
};

/// A reader of the data-access library: created fresh, connected, filled by one read operation, then walked.
class Leser {
  public:
    /// Creates the object; run-time error 429 where that fails.
    Leser(ComponentState& state, const Zugklasse& klasse);

    bool Verbinde(const ObjectRef& pADOCon);
    bool Lese(StringView operation, std::initializer_list<Variant> argumente);
    bool Ende();
    void MoveFirst();
    void MoveNext();

    /// The current record's value; `getter` belongs to this reader.
    Variant wert(Mitglied& getter) { return getter.rufe(objekt_, state_.locale()); }

    const Zugklasse& klasse() const { return klasse_; }

  private:
    ComponentState& state_;
    const Zugklasse& klasse_;
    ObjectRef objekt_;
    Mitglied eof_{kEOF, ValueType::Boolean};
    Mitglied moveFirst_{kMoveFirst, ValueType::Variant};
    Mitglied moveNext_{kMoveNext, ValueType::Variant};
};

/// The host's parameter array (`XArrayDB`), addressed by row and column.
class Parameterfeld {
  public:
    Parameterfeld(ComponentState& state, ObjectRef objekt) : state_(state), objekt_(std::move(objekt)) {}

    /// The cell's value; run-time error 9 where the array has no such cell.
    Variant Value(std::int32_t zeile, std::int32_t spalte);
    /// Changes the cell in the host's array.
    void Value(std::int32_t zeile, std::int32_t spalte, const Variant& wert);
    /// The size of a dimension (1 = rows).
    std::int32_t Count(std::int32_t dimension);

    // The cell's value compared or converted, as Automation does it.
    bool ist(std::int32_t zeile, std::int32_t spalte, bool wahrheit);
    bool ist(std::int32_t zeile, std::int32_t spalte, double zahl);
    float single(std::int32_t zeile, std::int32_t spalte);
    String text(std::int32_t zeile, std::int32_t spalte);

    /// Puts the selection of row 0 into its normal form, in the host's own array: without the all-flag in column 0,
    /// two bounds of 0 set it, a missing lower bound takes the upper one, and a lower bound that is given always
    /// overwrites the upper one. So a selection means everything or exactly one, never a range; hosts rely on it.
    void normalisiereBereich();

  private:
    ComponentState& state_;
    ObjectRef objekt_;
    Mitglied value_{kValue, ValueType::Variant};
    Mitglied count_{kCount, ValueType::Long};
};

} // namespace kvtdruck
