// A document that several jobs print into, as those see it who order the jobs.
#pragma once

#include "platform/posix/atomic_file.h"

#include <memory>
#include <string>
#include <vector>

namespace kvtdruck::druckwerk {

/// A document that stays open between the jobs that share it. It is dropped, and its file with it, when it was not
/// finished.
class OpenDocument;

/// A document for the forms of several factories, each of whose jobs says that more follow.
std::shared_ptr<OpenDocument> newDocument();
/// What a document of several lists says that it is; texts in UTF-8.
struct Collection {
    std::string title;
    std::vector<std::string> companies;
    std::vector<std::string> lists;
};
/// Gives the file of a document that nothing more follows in; none where no job has printed into it. Without a
/// collection it says of itself what its first job did.
std::unique_ptr<AtomicFile> finish(OpenDocument& document, const Collection* collection = nullptr);

} // namespace kvtdruck::druckwerk
