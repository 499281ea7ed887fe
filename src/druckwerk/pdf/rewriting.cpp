#include "druckwerk/pdf/rewriting.h"

#include <qpdf/Buffer.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFWriter.hh>

namespace kvtdruck::druckwerk {

std::string written(QPDF& pdf) {
    QPDFWriter writer(pdf);
    writer.setOutputMemory();
    writer.setDeterministicID(true);
    writer.setStreamDataMode(qpdf_s_preserve);
    writer.setNewlineBeforeEndstream(true); // so that a stream is as long as it says (ISO 19005-3, 6.1.7.1)
    writer.write();
    const auto buffer = writer.getBufferSharedPointer();
    return {reinterpret_cast<const char*>(buffer->getBuffer()), buffer->getSize()};
}

} // namespace kvtdruck::druckwerk
