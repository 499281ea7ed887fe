#include "druckwerk/open_document.h"

#include "druckwerk/common/fault.h"
#include "druckwerk/shared_document.h"

#include <system_error>

namespace kvtdruck::druckwerk {

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

std::unique_ptr<AtomicFile> finish(OpenDocument& document) {
    if (!document.isOpen())
        return nullptr;
    auto file = document.pdf().finish(document.info(), nullptr);
    document.drop();
    return file;
}

} // namespace kvtdruck::druckwerk
