// The one rule by which every procedure answers a run-time error.
#pragma once

#include "module/component_state.h"
#include "values/runtime_error.h"

#include <utility>

namespace kvtdruck {

/// Runs a procedure's `body`; a run-time error in it is reported once under the procedure's name, and the result is
/// then False (or whatever its type's zero is).
template <class Body>
auto guarded(ComponentState& state, const Procedure& procedure, Body&& body) noexcept -> decltype(body()) {
    try {
        return body();
    } catch (...) {
        state.reportRuntimeError(procedure);
        return decltype(body())();
    }
}

/// Runs one step of a procedure that suppresses run-time errors: a failing step is skipped without a word.
template <class Step>
void skippingErrors(Step&& step) noexcept {
    try {
        step();
    } catch (...) { // NOLINT(bugprone-empty-catch): skipping is what these procedures promise
    }
}

/// The object that `pointer` names; run-time error 91 where there is none.
template <class Pointer>
decltype(auto) required(const Pointer& pointer) {
    if (!pointer)
        throw RuntimeError(ErrorNumber::ObjectNotSet);
    return *pointer;
}

} // namespace kvtdruck
