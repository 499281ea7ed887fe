// XML as a tree of elements, read and written by libxml2.
#pragma once

#include "druckwerk/common/deleter.h"

#include <libxml/tree.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace kvtdruck::druckwerk {

using XmlDocument = std::unique_ptr<xmlDoc, Deleter<xmlFreeDoc>>;

/// Why a text is no well-formed XML.
struct XmlError {
    int line = 0;
    std::string reason; ///< German
};

/// What becomes of CDATA sections.
enum class Cdata { Merge, Keep };

/// The tree of `text`, or none with its error where it is not well-formed. Entities are not expanded, nothing is
/// fetched.
XmlDocument parseXml(const std::string& text, XmlError& error, Cdata cdata = Cdata::Merge);

/// The document as text in UTF-8.
std::string textOf(xmlDoc* document);

/// libxml2's text; "" for nullptr.
std::string_view viewOf(const xmlChar* text);
/// `text` as libxml2 takes it, as long as `text` lives.
const xmlChar* xml(const char* text);
const xmlChar* xml(const std::string& text);

/// The element's name if it is one of SVG, else "".
std::string_view svgName(const xmlNode* node);
/// The element's name, whatever its namespace.
std::string_view localName(const xmlNode* node);
/// An attribute without a namespace, as all of SVG's own are; "" where there is none.
std::string attribute(const xmlNode* node, const char* name);
std::string valueOf(const xmlAttr* attribute);
/// The name that the drawing program shows for an object.
std::string labelOf(const xmlNode* node);
void setLabel(xmlNode* node, const std::string& label);
/// Sets an attribute in the drawing program's namespace, which the document gets where it has none.
void setInkscape(xmlNode* node, const char* name, const std::string& value);
/// The label that makes a group a layer; "" where it is the text of a field (see sample_marks.h).
std::string layerLabel(const xmlNode* node);
/// All text within the element.
std::string textWithin(const xmlNode* node);
/// All text within the element, runs of blanks and line ends as one blank, none at the ends.
std::string contentOf(const xmlNode* node);
bool hasAttribute(const xmlNode* node, const char* name);
bool hasClass(const xmlNode* node, std::string_view cssClass);
/// The class of what only a drawing program shows.
inline constexpr const char* kSampleClass = "sample";
long lineOf(const xmlNode* node);
/// The attribute of what was put into a document: the name of its file.
inline constexpr const char* kFromFile = "from-file";
/// The name of the file that the element was put in from; "" for the document's own.
std::string fileOf(const xmlNode* node);
/// Its file, where it was put in from one, and its line, for messages: "„kopf.svg“, Zeile 3".
std::string lineText(const xmlNode* node);
/// Calls `visit` for each child element.
void forEachChild(xmlNode* node, const std::function<void(xmlNode*)>& visit);
/// The element and everything within it, in order.
void forEachElement(xmlNode* node, const std::function<void(xmlNode*)>& visit);
/// Takes the element, and what is within it, out of its document.
void removeNode(xmlNode* node);
/// Numbers the elements of a document from 1 on, in the order of `forEachElement`.
void numberElements(xmlNode* root);
/// The element's number; 0 before it has got one.
int numberOf(const xmlNode* node);

} // namespace kvtdruck::druckwerk
