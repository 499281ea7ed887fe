#include "druckwerk/svg/svg_file.h"

#include "druckwerk/common/fault.h"
#include "druckwerk/svg/svg_style.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <optional>

namespace kvtdruck::druckwerk {

namespace {

constexpr int kMaximumDepth = 64;
constexpr int kMaximumElements = 20000;
constexpr long kMaximumCopies = 10000; // elements that `use` may make
constexpr std::uint32_t kMaximumPixels = 8192;

std::string at(const xmlNode* node) {
    return "Zeile " + std::to_string(lineOf(node)) + ": ";
}

/// Goes through the whole tree once, before anything is made of it.
class Inspection {
  public:
    Inspection(xmlDoc* document, const std::filesystem::path& folder) : folder_(folder) {
        if (document->intSubset != nullptr && document->intSubset->children != nullptr)
            throw Fault(kLayoutRefused, "Entitäten und eigene Dokumenttypen sind nicht erlaubt");
        for (const xmlNode* node = document->children; node != nullptr; node = node->next)
            if (node->type == XML_PI_NODE && viewOf(node->name) == "xml-stylesheet")
                throw Fault(kLayoutRefused, "Verweis nach außen ist nicht erlaubt: xml-stylesheet");
        xmlNode* root = xmlDocGetRootElement(document);
        if (root == nullptr)
            throw Fault(kLayoutMalformed, "Datei ist kein wohlgeformtes XML: kein Element");
        inspect(root, 1);
        for (const auto& [id, node] : byId_)
            copies(node);
    }

  private:
    void inspect(xmlNode* node, int depth) {
        if (depth > kMaximumDepth)
            throw Fault(kLayoutRefused, at(node) + "mehr als 64 Ebenen ineinander");
        if (++elements_ > kMaximumElements)
            throw Fault(kLayoutRefused, "mehr als 20.000 Elemente");
        const auto name = svgName(node);
        if (name == "script")
            throw Fault(kLayoutRefused, at(node) + "Skripte sind nicht erlaubt");
        if (name == "foreignObject")
            throw Fault(kLayoutRefused, at(node) + "fremde Inhalte (foreignObject) sind nicht erlaubt");
        if (node->nsDef != nullptr || node->properties != nullptr)
            inspectAttributes(node, name);
        if (name == "style")
            for (const xmlNode* text = node->children; text != nullptr; text = text->next)
                inspectUrls(node, viewOf(text->content));
        if (const std::string id = attribute(node, "id"); !id.empty())
            byId_.emplace(id, node);
        forEachChild(node, [&](xmlNode* child) { inspect(child, depth + 1); });
    }

    void inspectAttributes(xmlNode* node, std::string_view name) {
        for (const xmlAttr* attr = node->properties; attr != nullptr; attr = attr->next) {
            const std::string value = attribute(node, reinterpret_cast<const char*>(attr->name));
            inspectUrls(node, value);
            if (viewOf(attr->name) != "href" || name.empty() || name == "a")
                continue;
            if (name == "image")
                inspectImage(node, value);
            else if (!value.empty() && value[0] != '#')
                refuse(node, value);
        }
    }

    [[noreturn]] static void refuse(const xmlNode* node, std::string_view what) {
        throw Fault(kLayoutRefused,
                    at(node) + "Verweis nach außen ist nicht erlaubt: " + std::string(what.substr(0, 80)));
    }

    static void inspectUrls(const xmlNode* node, std::string_view text) {
        for (std::size_t found = 0; (found = text.find("url(", found)) != std::string_view::npos;) {
            found += 4;
            const auto target = trimmedAscii(text.substr(found, text.find(')', found) - found));
            const auto plain = target.find_first_not_of("'\"");
            if (plain == std::string_view::npos || target[plain] != '#')
                refuse(node, target);
        }
    }

    void inspectImage(const xmlNode* node, const std::string& value) const {
        if (value.substr(0, 5) == "data:")
            return;
        const std::filesystem::path path(value);
        std::error_code error;
        const auto base = std::filesystem::weakly_canonical(folder_, error);
        const auto target = std::filesystem::weakly_canonical(folder_ / path, error);
        const auto [end, rest] = std::mismatch(base.begin(), base.end(), target.begin(), target.end());
        if (error || value.find("://") != std::string::npos || path.is_absolute() || end != base.end())
            refuse(node, value);
        inspectImageFile(node, value, target);
    }

    /// Size in pixels from the file's head, before any decoder sees it.
    static void inspectImageFile(const xmlNode* node, const std::string& value, const std::filesystem::path& file) {
        std::ifstream in(file, std::ios::binary);
        std::string head(1 << 16, '\0');
        in.read(head.data(), static_cast<std::streamsize>(head.size()));
        head.resize(static_cast<std::size_t>(std::max<std::streamsize>(in.gcount(), 0)));
        if (head.empty())
            throw Fault(kLayoutInvalid, at(node) + "Bild „" + value + "“ fehlt oder ist nicht lesbar");
        const auto extent = imageExtent(head);
        if (!extent)
            throw Fault(kLayoutInvalid, at(node) + "Bild „" + value + "“ ist weder PNG noch JPEG");
        if (extent->first > kMaximumPixels || extent->second > kMaximumPixels)
            throw Fault(kLayoutRefused, at(node) + "Bild „" + value + "“ ist größer als 8192 Pixel");
    }

    static std::optional<std::pair<std::uint32_t, std::uint32_t>> imageExtent(const std::string& head) {
        const auto number = [&](std::size_t offset, int bytes) {
            std::uint32_t value = 0;
            for (int i = 0; i < bytes; ++i)
                value = value << 8 | static_cast<unsigned char>(head[offset + static_cast<std::size_t>(i)]);
            return value;
        };
        if (head.size() > 24 && head.compare(0, 8, "\x89PNG\r\n\x1a\n") == 0)
            return std::pair(number(16, 4), number(20, 4));
        if (head.size() < 4 || head.compare(0, 2, "\xff\xd8") != 0)
            return std::nullopt;
        for (std::size_t i = 2; i + 9 < head.size();) { // JPEG: from marker to marker up to the frame's header
            const auto marker = number(i, 2);
            if (marker >= 0xFFC0 && marker <= 0xFFCF && marker != 0xFFC4 && marker != 0xFFC8 && marker != 0xFFCC)
                return std::pair(number(i + 7, 2), number(i + 5, 2));
            i += 2 + number(i + 2, 2);
        }
        return std::nullopt;
    }

    /// How many elements `use` makes of the element.
    long copies(const xmlNode* node) {
        if (const auto known = copies_.find(node); known != copies_.end()) {
            if (known->second < 0)
                throw Fault(kLayoutRefused, at(node) + "Verwendung im Kreis (use)");
            return known->second;
        }
        copies_[node] = -1;
        long count = 1;
        forEachChild(const_cast<xmlNode*>(node), [&](const xmlNode* child) { count += copies(child); });
        if (svgName(node) == "use") {
            const std::string target = attribute(node, "href");
            if (const auto found = target.size() > 1 ? byId_.find(target.substr(1)) : byId_.end();
                found != byId_.end())
                count += copies(found->second);
        }
        if (count > kMaximumCopies + kMaximumElements)
            throw Fault(kLayoutRefused, at(node) + "use vervielfacht zu viele Elemente");
        return copies_[node] = count;
    }

    const std::filesystem::path& folder_;
    int elements_ = 0;
    std::map<std::string, const xmlNode*> byId_;
    std::map<const xmlNode*, long> copies_;
};

} // namespace

SvgFile::SvgFile(const std::string& source, const std::filesystem::path& folder) {
    XmlError error;
    document_ = parseXml(source, error);
    if (!document_) {
        const bool entities = source.find("<!ENTITY") != std::string::npos;
        throw Fault(entities ? kLayoutRefused : kLayoutMalformed,
                    "Zeile " + std::to_string(error.line) + ": " +
                        (entities ? "Entitäten und eigene Dokumenttypen sind nicht erlaubt"
                                  : "Datei ist kein wohlgeformtes XML: " + error.reason));
    }
    const Inspection inspection(document_.get(), folder);
}

xmlNode* SvgFile::root() const {
    return xmlDocGetRootElement(document_.get());
}

std::string SvgFile::text() const {
    return textOf(document_.get());
}

} // namespace kvtdruck::druckwerk
