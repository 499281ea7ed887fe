// The engine adapter as a COM class, and adapters of other makers.
#pragma once

#include "KDVTDruck_idl.h"
#include "engine/DruckFormular.h"

#include <memory>

namespace kvtdruck::com {

IUnknown* createFormular();

/// The adapter that a host hands to a report class: the component's own behind `object`, or a foreign one reached
/// late bound, by its operations' names. Empty for a null pointer. The adapter is valid while the result lives.
std::shared_ptr<DruckFormular> formularOf(_clsDruckFormular* object);

} // namespace kvtdruck::com
