// The reporting engine's control, `ListLabel.ListLabel`, as a test wants it: it answers by a script, and keeps a
// record of its calls and of the way it is hosted.
#pragma once

#include <unknwn.h>

namespace kvtdruck::test {

/// A new control, with one reference. The environment says how it behaves when it is made:
/// - KVT_TEST_ANSWERS: a file whose lines "Operation N code" let the N-th call (every call with "*") answer a code,
/// and
///   "Operation N !number" let it fail with a run-time error.
/// - KVT_TEST_RECORD: the file to which calls are appended, in the form of the component's own record.
/// - KVT_TEST_HOSTING: the file to which the steps of its host are appended.
/// - KVT_TEST_CONTROL: "invisible" (no window at run time), "site first" (wants its site before it is initialised),
///   "bare" (nothing but calls), "mute" (everything but calls), "stored" (keeps its data in a storage), "licensed"
///   (created with a key only); else an ordinary control.
/// A print into a preview leaves its file in the folder that was set for it.
IUnknown* createControl();

/// The control's class object: one for licences where the environment asks for it.
IClassFactory* createControlFactory();

} // namespace kvtdruck::test
