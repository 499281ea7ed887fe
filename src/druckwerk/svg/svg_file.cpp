#include "druckwerk/svg/svg_file.h"

#include "druckwerk/common/fault.h"
#include "druckwerk/svg/svg_inspection.h"

namespace kvtdruck::druckwerk {

SvgFile::SvgFile(const std::string& source, const LayoutFiles& files) {
    XmlError error;
    document_ = parseXml(source, error);
    if (!document_) {
        const bool entities = source.find("<!ENTITY") != std::string::npos;
        throw Fault(entities ? kLayoutRefused : kLayoutMalformed,
                    "Zeile " + std::to_string(error.line) + ": " +
                        (entities ? "Entitäten und eigene Dokumenttypen sind nicht erlaubt"
                                  : "Datei ist kein wohlgeformtes XML: " + error.reason));
    }
    refuseDeclarations(document_.get());
    numberElements(root()); // as they stand in the layout itself
    hasPlaceForLogo_ = compose(document_.get(), files);
    inspectSvg(document_.get(), files);
}

xmlNode* SvgFile::root() const {
    return xmlDocGetRootElement(document_.get());
}

std::string SvgFile::text() const {
    return textOf(document_.get());
}

} // namespace kvtdruck::druckwerk
