#include "druckwerk/open_document.h"

#include "druckwerk/common/fault.h"
#include "druckwerk/document_info.h"
#include "druckwerk/shared_document.h"

#include <system_error>

namespace kvtdruck::druckwerk {

namespace {

String joined(const std::vector<std::string>& texts) {
    String all;
    for (const auto& text : texts)
        all += (all.empty() ? u"" : u", ") + fromUtf8(text);
    return all;
}

DocumentInfo infoOf(const Collection& collection, DocumentInfo info) {
    info.title = fromUtf8(collection.title);
    info.author = joined(collection.companies);
    info.subject = subjectOf(joined(collection.lists), info.date);
    info.keywords = {joined(collection.lists), info.author};
    return info;
}

} // namespace

std::unique_ptr<TemporaryFolder> newTemporaryFolder() {
    try {
        return std::make_unique<TemporaryFolder>();
    } catch (const std::system_error&) {
        throw Fault(kOutputFailed, "Im Ordner für temporäre Dateien kann nichts angelegt werden");
    }
}

std::shared_ptr<OpenDocument> newDocument() {
    return std::make_shared<OpenDocument>();
}

std::unique_ptr<AtomicFile> finish(OpenDocument& document, const Collection* collection) {
    if (!document.isOpen())
        return nullptr;
    auto file =
        document.pdf().finish(collection == nullptr ? document.info() : infoOf(*collection, document.info()));
    document.drop();
    return file;
}

} // namespace kvtdruck::druckwerk
