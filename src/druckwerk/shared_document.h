// A document that several jobs print into, as those see it who order the jobs.
#pragma once

#include "platform/posix/atomic_file.h"

#include <memory>

namespace kvtdruck::druckwerk {

/// A document that stays open between the jobs that share it. It is dropped, and its file with it, when it was not
/// finished.
class OpenDocument;

/// A document for the forms of several factories, each of whose jobs says that more follow.
std::shared_ptr<OpenDocument> newDocument();
/// Gives the file of a document that nothing more follows in; none where no job has printed into it.
std::unique_ptr<AtomicFile> finish(OpenDocument& document);

} // namespace kvtdruck::druckwerk
