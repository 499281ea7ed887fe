// The engine adapter as a COM class, and adapters of other makers.
#pragma once

#include "KDVTDruck_idl.h"
#include "com/com_ptr.h"
#include "engine/DruckFormular.h"
#include "module/component_state.h"

#include <memory>

namespace kvtdruck::com {

IUnknown* createFormular();

/// The adapter that a host hands to a report class: the component's own behind `object`, or a foreign one reached
/// late bound, by its operations' names. Empty for a null pointer. The adapter is valid while the result lives, and
/// `state` outlives it.
std::shared_ptr<DruckFormular> formularOf(const ComPtr<_clsDruckFormular>& object, ComponentState& state);

} // namespace kvtdruck::com
