#include "values/runtime_error.h"

#include <utility>

namespace kvtdruck {

StringView describe(long number) {
    switch (static_cast<ErrorNumber>(number)) {
    case ErrorNumber::InvalidProcedureCall:
        return u"Ungültiger Prozeduraufruf oder ungültiges Argument";
    case ErrorNumber::Overflow:
        return u"Überlauf";
    case ErrorNumber::OutOfMemory:
        return u"Nicht genügend Speicher";
    case ErrorNumber::SubscriptOutOfRange:
        return u"Index außerhalb des gültigen Bereichs";
    case ErrorNumber::DivisionByZero:
        return u"Division durch Null";
    case ErrorNumber::TypeMismatch:
        return u"Typen unverträglich";
    case ErrorNumber::InternalError:
        return u"Interner Fehler";
    case ErrorNumber::FileNotFound:
        return u"Datei nicht gefunden";
    case ErrorNumber::DeviceIoError:
        return u"Geräte-E/A-Fehler";
    case ErrorNumber::FileAlreadyExists:
        return u"Datei existiert bereits";
    case ErrorNumber::DiskFull:
        return u"Datenträger voll";
    case ErrorNumber::PermissionDenied:
        return u"Zugriff verweigert";
    case ErrorNumber::PathFileAccess:
        return u"Fehler beim Zugriff auf Pfad/Datei";
    case ErrorNumber::PathNotFound:
        return u"Pfad nicht gefunden";
    case ErrorNumber::ObjectNotSet:
        return u"Objektvariable oder With-Blockvariable nicht festgelegt";
    case ErrorNumber::InvalidUseOfNull:
        return u"Unzulässige Verwendung von Null";
    case ErrorNumber::CannotCreateObject:
        return u"Objekterstellung durch ActiveX-Komponente nicht möglich";
    case ErrorNumber::MemberNotFound:
        return u"Objekt unterstützt diese Eigenschaft oder Methode nicht";
    case ErrorNumber::ActionNotSupported:
        return u"Objekt unterstützt diese Aktion nicht";
    }
    return u"Anwendungs- oder objektdefinierter Fehler";
}

RuntimeError::RuntimeError(ErrorNumber number)
    : RuntimeError(static_cast<long>(number), String(describe(static_cast<long>(number)))) {}

RuntimeError::RuntimeError(long number, String description)
    : number_(number), description_(std::move(description)),
      what_("Laufzeitfehler " + std::to_string(number_) + ": " + toUtf8(description_)) {}

} // namespace kvtdruck
