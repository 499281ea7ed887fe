// Whether this process has ever been refused memory.
#pragma once

namespace kvtdruck {

/// Whether an allocation has failed, be it in a library: many go on with what they have then, and give something
/// else than they should. What was made may be wrong. A process that is refused memory again and again without end
/// is aborted, with a German message.
bool memoryWasRefused();

/// Aborts the process with the message that its memory does not suffice: for a library that never comes back.
[[noreturn]] void giveUpForWantOfMemory();

} // namespace kvtdruck
