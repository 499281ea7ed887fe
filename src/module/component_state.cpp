#include "module/component_state.h"

#include "module/error_rule.h"

#include <new>

namespace kvtdruck {

void ComponentState::report(const Procedure& procedure, StringView text) noexcept {
    report(procedure, 0, text, false);
}

void ComponentState::reportRuntimeError(const Procedure& procedure) noexcept {
    const auto reportNumber = [&](ErrorNumber number) {
        const auto code = static_cast<long>(number);
        report(procedure, code, describe(code), true);
    };
    try {
        throw;
    } catch (const RuntimeError& error) {
        report(procedure, error.number(), error.description(), true);
    } catch (const std::bad_alloc&) {
        reportNumber(ErrorNumber::OutOfMemory);
    } catch (...) {
        reportNumber(ErrorNumber::InternalError);
    }
}

// A report that can't be delivered must not become an error of its own: nothing ever leaves the component.
void ComponentState::report(const Procedure& procedure, long number, StringView text, bool runtime) noexcept {
    skippingErrors([&] {
        if (!errorReport_) {
            auto created = errorReports_.create(); // foreign code, which may cause a report of its own
            if (!errorReport_)
                errorReport_ = std::move(created);
        }
        required(errorReport_).fkt_Fehlermeldung(procedure.className, procedure.name, number, text, runtime);
    });
}

} // namespace kvtdruck
