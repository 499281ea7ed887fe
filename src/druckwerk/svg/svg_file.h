// An SVG file as a tree of elements, checked for everything that a layout must not ask for.
#pragma once

#include <libxml/tree.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kvtdruck::druckwerk {

/// The parsed file. Entities are not expanded, nothing is fetched.
class SvgFile {
  public:
    /// Raises a Fault, with the line where it is known, where `source` is malformed, or asks for something outside
    /// of `folder`, or would take unbounded time.
    SvgFile(const std::string& source, const std::filesystem::path& folder);

    xmlNode* root() const;
    /// The document as text, with the ids that were given meanwhile.
    std::string text() const;

  private:
    struct Release {
        void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
    };
    std::unique_ptr<xmlDoc, Release> document_;
};

/// The element's name if it is one of SVG, else "".
std::string_view svgName(const xmlNode* node);
/// The element's name, whatever its namespace.
std::string_view localName(const xmlNode* node);
/// An attribute by its name without prefix; "" where there is none.
std::string attribute(const xmlNode* node, const char* name);
bool hasAttribute(const xmlNode* node, const char* name);
bool hasClass(const xmlNode* node, std::string_view cssClass);
long lineOf(const xmlNode* node);
/// Calls `visit` for each child element.
void forEachChild(xmlNode* node, const std::function<void(xmlNode*)>& visit);
/// The element and everything within it, in order.
void forEachElement(xmlNode* node, const std::function<void(xmlNode*)>& visit);

} // namespace kvtdruck::druckwerk
