#include "druckwerk/svg/xml_tree.h"

#include "druckwerk/svg/svg_style.h"

#include <algorithm>
#include <cstdint>
#include <libxml/parser.h>
#include <new>

namespace kvtdruck::druckwerk {

namespace {

constexpr std::string_view kSvgNamespace = "http://www.w3.org/2000/svg";
constexpr const char* kInkscapeNamespace = "http://www.inkscape.org/namespaces/inkscape";

std::string reasonOf(const xmlError& error) {
    switch (error.code) {
    case XML_ERR_DOCUMENT_EMPTY:
        return "die Datei ist leer";
    case XML_ERR_TAG_NAME_MISMATCH:
        return "öffnendes und schließendes Element passen nicht zusammen";
    case XML_ERR_TAG_NOT_FINISHED:
    case XML_ERR_DOCUMENT_END:
        return "das Ende fehlt oder dahinter steht noch etwas";
    case XML_ERR_INVALID_CHAR:
    case XML_ERR_INVALID_ENCODING:
    case XML_ERR_UNKNOWN_ENCODING:
        return "ungültige Zeichenkodierung (erwartet wird UTF-8)";
    case XML_ERR_UNDECLARED_ENTITY:
    case XML_WAR_UNDECLARED_ENTITY:
        return "unbekannte Entität";
    case XML_ERR_ENTITY_LOOP:
        return "Entität im Kreis";
    default:
        return std::string(trimmedAscii(error.message == nullptr ? "" : error.message));
    }
}

} // namespace

std::string_view viewOf(const xmlChar* text) {
    return text == nullptr ? std::string_view() : std::string_view(reinterpret_cast<const char*>(text));
}

XmlDocument parseXml(const std::string& text, XmlError& error, Cdata cdata) {
    const std::unique_ptr<xmlParserCtxt, Deleter<xmlFreeParserCtxt>> context(xmlNewParserCtxt());
    if (!context)
        throw std::bad_alloc();
    XmlDocument document(xmlCtxtReadMemory(context.get(), text.data(), static_cast<int>(text.size()), nullptr,
                                           nullptr,
                                           XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING |
                                               (cdata == Cdata::Merge ? XML_PARSE_NOCDATA : 0)));
    const xmlError* found = xmlCtxtGetLastError(context.get());
    if (document && (found == nullptr || found->level < XML_ERR_ERROR))
        return document;
    error = found == nullptr ? XmlError{} : XmlError{found->line, reasonOf(*found)};
    return nullptr;
}

const xmlChar* xml(const char* text) {
    return reinterpret_cast<const xmlChar*>(text);
}

const xmlChar* xml(const std::string& text) {
    return xml(text.c_str());
}

std::string textOf(xmlDoc* document) {
    xmlChar* buffer = nullptr;
    int size = 0;
    xmlDocDumpMemoryEnc(document, &buffer, &size, "UTF-8");
    std::string text(reinterpret_cast<const char*>(buffer), static_cast<std::size_t>(size));
    xmlFree(buffer);
    return text;
}

std::string_view svgName(const xmlNode* node) {
    return node->ns != nullptr && viewOf(node->ns->href) == kSvgNamespace ? viewOf(node->name) : std::string_view();
}

std::string_view localName(const xmlNode* node) {
    return viewOf(node->name);
}

std::string valueOf(const xmlAttr* attribute) {
    xmlChar* value = xmlNodeListGetString(attribute->doc, attribute->children, 1);
    std::string text(viewOf(value));
    xmlFree(value);
    return text;
}

namespace {

const xmlAttr* find(const xmlNode* node, std::string_view name, std::string_view space) {
    for (const xmlAttr* attr = node->properties; attr != nullptr; attr = attr->next)
        if (viewOf(attr->name) == name && (attr->ns == nullptr ? "" : viewOf(attr->ns->href)) == space)
            return attr;
    return nullptr;
}

} // namespace

std::string attribute(const xmlNode* node, const char* name) {
    const xmlAttr* found = find(node, name, "");
    return found == nullptr ? "" : valueOf(found);
}

bool hasAttribute(const xmlNode* node, const char* name) {
    return find(node, name, "") != nullptr;
}

std::string labelOf(const xmlNode* node) {
    const xmlAttr* found = find(node, "label", kInkscapeNamespace);
    return found == nullptr ? "" : valueOf(found);
}

void setLabel(xmlNode* node, const std::string& label) {
    setInkscape(node, "label", label);
}

void setInkscape(xmlNode* node, const char* name, const std::string& value) {
    xmlNs* inkscape = xmlSearchNsByHref(node->doc, node, xml(kInkscapeNamespace));
    if (inkscape == nullptr)
        inkscape = xmlNewNs(xmlDocGetRootElement(node->doc), xml(kInkscapeNamespace), xml("inkscape"));
    xmlSetNsProp(node, inkscape, xml(name), xml(value));
}

std::string layerLabel(const xmlNode* node) {
    std::string label = labelOf(node);
    return label.find("{{") == std::string::npos ? label : "";
}

std::string textWithin(const xmlNode* node) {
    xmlChar* content = xmlNodeGetContent(node);
    std::string text(viewOf(content));
    xmlFree(content);
    return text;
}

std::string contentOf(const xmlNode* node) {
    std::string text;
    for (const std::string all = textWithin(node); const auto word : splitWords(all, " \t\r\n"))
        if (!word.empty())
            text.append(text.empty() ? "" : " ").append(word);
    return text;
}

bool hasClass(const xmlNode* node, std::string_view cssClass) {
    const std::string classes = attribute(node, "class");
    const auto words = splitWords(classes);
    return std::find(words.begin(), words.end(), cssClass) != words.end();
}

long lineOf(const xmlNode* node) {
    return xmlGetLineNo(node);
}

std::string fileOf(const xmlNode* node) {
    for (; node != nullptr && node->type == XML_ELEMENT_NODE; node = node->parent)
        if (std::string file = attribute(node, kFromFile); !file.empty())
            return file;
    return "";
}

std::string lineText(const xmlNode* node) {
    const std::string file = fileOf(node);
    std::string place = file.empty() ? "" : "„" + file + "“";
    if (lineOf(node) <= 0) // a style sheet that was put in
        return place;
    return place + (place.empty() ? "" : ", ") + "Zeile " + std::to_string(lineOf(node));
}

void forEachChild(xmlNode* node, const std::function<void(xmlNode*)>& visit) {
    for (xmlNode* child = node->children; child != nullptr; child = child->next)
        if (child->type == XML_ELEMENT_NODE)
            visit(child);
}

void forEachElement(xmlNode* node, const std::function<void(xmlNode*)>& visit) {
    visit(node);
    forEachChild(node, [&](xmlNode* child) { forEachElement(child, visit); });
}

void removeNode(xmlNode* node) {
    xmlUnlinkNode(node);
    xmlFreeNode(node);
}

void numberElements(xmlNode* root) {
    std::intptr_t number = 0;
    forEachElement(root, [&](xmlNode* node) { node->_private = reinterpret_cast<void*>(++number); });
}

int numberOf(const xmlNode* node) {
    return static_cast<int>(reinterpret_cast<std::intptr_t>(node->_private));
}

} // namespace kvtdruck::druckwerk
