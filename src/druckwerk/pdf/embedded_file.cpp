#include "druckwerk/pdf/embedded_file.h"

#include "druckwerk/common/engine_codes.h"
#include "druckwerk/common/fault.h"
#include "druckwerk/pdf/metadata.h"
#include "druckwerk/pdf/pdf_syntax.h"
#include "platform/posix/input_file.h"

#include <system_error>

namespace kvtdruck::druckwerk {

namespace {

std::string contentOf(const std::filesystem::path& file) {
    try {
        return readInput(file);
    } catch (const std::system_error&) {
        throw Fault(kOutputFailed, "Die Beilage " + file.filename().string() + " kann nicht gelesen werden");
    }
}

/// A MIME type as a PDF name: of its characters only the slash has to be escaped.
std::string nameOf(std::string mimeType) {
    mimeType.replace(mimeType.find('/'), 1, "#2F");
    return "/" + mimeType;
}

} // namespace

int writeEmbeddedFile(PdfOutput& output, const Attachment& attachment, const PrintDate& date) {
    const int data = output.allocate();
    const std::string content = contentOf(attachment.file);
    output.writeStream(data,
                       "/Type/EmbeddedFile/Subtype" + nameOf(attachment.mimeType) + "/Params<</Size " +
                           std::to_string(content.size()) + "/ModDate" + pdfDate(date) + ">>",
                       content);
    const std::string name = attachment.file.filename().string();
    const int filespec = output.allocate();
    output.writeObject(filespec, "<</Type/Filespec/F" + hexadecimalString(name) + "/UF" + pdfText(fromUtf8(name)) +
                                     "/Desc" + pdfText(fromUtf8(attachment.description)) +
                                     "/AFRelationship/Data/EF<</F " + reference(data) + "/UF " + reference(data) +
                                     ">>>>");
    return filespec;
}

} // namespace kvtdruck::druckwerk
