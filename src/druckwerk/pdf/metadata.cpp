#include "druckwerk/pdf/metadata.h"

#include "druckwerk/common/xml_text.h"
#include "druckwerk/pdf/pdf_syntax.h"
#include "values/code_points.h"

#include <array>
#include <cstdio>
#include <cstdlib>

namespace kvtdruck::druckwerk {

namespace {

constexpr const char* kAccessibilityNamespace = "http://www.aiim.org/pdfua/ns/id/";

/// `text` as both places can carry it: XML knows no control characters and no noncharacters.
String carried(StringView text) {
    String out;
    for (const char16_t c : wellFormed(text))
        out += c < 0x20 || c == 0x7F ? u' ' : c >= 0xFFFE ? u'\uFFFD' : c;
    return out;
}

String keywordsOf(const DocumentInfo& info) {
    String out;
    for (const String& keyword : info.keywords)
        if (!keyword.empty())
            out += (out.empty() ? u"" : u", ") + keyword;
    return out;
}

/// The date, written by `pattern`, and the zone with `separator` and `end`.
std::string dateText(const PrintDate& date, const char* pattern, const char* separator, const char* end) {
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), pattern, date.year, date.month, date.day, date.hour, date.minute,
                  date.second);
    std::string out = text.data();
    if (date.utcOffset) {
        const int minutes = std::abs(*date.utcOffset);
        std::snprintf(text.data(), text.size(), "%c%02d%s%02d%s", *date.utcOffset < 0 ? '-' : '+', minutes / 60,
                      separator, minutes % 60, end);
        out += text.data();
    }
    return out;
}

std::string element(const std::string& name, const std::string& content) {
    return "<" + name + ">" + content + "</" + name + ">\n";
}

std::string ifAny(const std::string& name, const std::string& before, StringView text, const std::string& after) {
    return text.empty() ? "" : element(name, before + xmlText(carried(text)) + after);
}

/// The identification of PDF/A, ISO 19005-3, 6.6.4, and of PDF/UA, ISO 14289-1, 5.
std::string identification(PdfLevel level) {
    if (level == PdfLevel::Plain)
        return {};
    const bool accessible = level == PdfLevel::Accessible;
    return element("pdfaid:part", "3") + element("pdfaid:conformance", accessible ? "A" : "U") +
           (accessible ? element("pdfuaid:part", "1") : "");
}

/// PDF/A does not know the property that names PDF/UA, so the file describes it (ISO 19005-3, 6.6.2.3.3).
std::string schemaOfAccessibility() {
    const std::string resource = " rdf:parseType=\"Resource\">";
    return "<rdf:Description rdf:about=\"\" xmlns:pdfaExtension=\"http://www.aiim.org/pdfa/ns/extension/\" "
           "xmlns:pdfaSchema=\"http://www.aiim.org/pdfa/ns/schema#\" "
           "xmlns:pdfaProperty=\"http://www.aiim.org/pdfa/ns/property#\">\n"
           "<pdfaExtension:schemas><rdf:Bag><rdf:li" +
           resource + "\n" + element("pdfaSchema:schema", "PDF/UA Universal Accessibility Schema") +
           element("pdfaSchema:namespaceURI", kAccessibilityNamespace) + element("pdfaSchema:prefix", "pdfuaid") +
           "<pdfaSchema:property><rdf:Seq><rdf:li" + resource + "\n" + element("pdfaProperty:name", "part") +
           element("pdfaProperty:valueType", "Integer") + element("pdfaProperty:category", "internal") +
           element("pdfaProperty:description", "Indicates, which part of ISO 14289 standard is followed") +
           "</rdf:li></rdf:Seq></pdfaSchema:property></rdf:li></rdf:Bag></pdfaExtension:schemas>\n"
           "</rdf:Description>\n";
}

} // namespace

std::string pdfDate(const PrintDate& date) {
    return "(D:" + dateText(date, "%04d%02d%02d%02d%02d%02d", "'", "'") + ")";
}

std::string infoDictionary(const DocumentInfo& info) {
    std::string out = "<<";
    const auto add = [&](const char* name, StringView text) {
        if (!text.empty())
            out += name + pdfText(carried(text));
    };
    add("/Title", info.title);
    add("/Author", info.author);
    add("/Subject", info.subject);
    add("/Keywords", keywordsOf(info));
    add("/Creator", info.creator);
    add("/Producer", info.creator);
    const std::string date = pdfDate(info.date);
    return out + "/CreationDate" + date + "/ModDate" + date + ">>";
}

std::string xmpPacket(const DocumentInfo& info, PdfLevel level) {
    const std::string date = dateText(info.date, "%04d-%02d-%02dT%02d:%02d:%02d", ":", "");
    const bool accessible = level == PdfLevel::Accessible;
    const std::string language = "<rdf:Alt><rdf:li xml:lang=\"x-default\">";
    return "<?xpacket begin=\"\xef\xbb\xbf\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n"
           "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">\n"
           "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n"
           "<rdf:Description rdf:about=\"\" xmlns:dc=\"http://purl.org/dc/elements/1.1/\" "
           "xmlns:xmp=\"http://ns.adobe.com/xap/1.0/\" xmlns:pdf=\"http://ns.adobe.com/pdf/1.3/\" "
           "xmlns:pdfaid=\"http://www.aiim.org/pdfa/ns/id/\"" +
           (accessible ? std::string(" xmlns:pdfuaid=\"") + kAccessibilityNamespace + "\"" : "") + ">\n" +
           element("dc:format", "application/pdf") +
           ifAny("dc:title", language, info.title, "</rdf:li></rdf:Alt>") +
           ifAny("dc:creator", "<rdf:Seq><rdf:li>", info.author, "</rdf:li></rdf:Seq>") +
           ifAny("dc:description", language, info.subject, "</rdf:li></rdf:Alt>") +
           element("dc:language", "<rdf:Bag><rdf:li>de-DE</rdf:li></rdf:Bag>") +
           ifAny("pdf:Keywords", "", keywordsOf(info), "") + ifAny("xmp:CreatorTool", "", info.creator, "") +
           ifAny("pdf:Producer", "", info.creator, "") + element("xmp:CreateDate", date) +
           element("xmp:ModifyDate", date) + element("xmp:MetadataDate", date) + identification(level) +
           "</rdf:Description>\n" + (accessible ? schemaOfAccessibility() : "") +
           "</rdf:RDF>\n</x:xmpmeta>\n<?xpacket end=\"w\"?>";
}

} // namespace kvtdruck::druckwerk
