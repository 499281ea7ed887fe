#include "druckwerk/svg/svg_inspection.h"

#include "druckwerk/common/fault.h"
#include "druckwerk/svg/image_extent.h"
#include "druckwerk/svg/limits.h"
#include "druckwerk/svg/svg_style.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <map>
#include <vector>

namespace kvtdruck::druckwerk {

namespace {

/// Filters whose cost is that of their area; the others (turbulence, convolution, lighting, …) multiply it.
constexpr std::array<std::string_view, 13> kPlainFilters = {"feBlend",     "feColorMatrix",  "feComponentTransfer",
                                                            "feComposite", "feDropShadow",   "feFlood",
                                                            "feFuncA",     "feFuncB",        "feFuncG",
                                                            "feFuncR",     "feGaussianBlur", "feMerge",
                                                            "feOffset"};

std::string at(const xmlNode* node) {
    return lineText(node) + ": ";
}

[[noreturn]] void refuse(const xmlNode* node, const std::string& reason) {
    throw Fault(kLayoutRefused, at(node) + reason);
}

[[noreturn]] void refuseReference(const xmlNode* node, std::string_view what) {
    refuse(node, "Verweis nach außen ist nicht erlaubt: " + std::string(what.substr(0, 80)));
}

/// The ids that "url(#id)" names in `text`; anything else in such a place is refused.
std::vector<std::string> urlsIn(const xmlNode* node, std::string_view text) {
    std::vector<std::string> ids;
    for (std::size_t found = 0; (found = text.find("url(", found)) != std::string_view::npos;) {
        found += 4;
        auto target = trimmedAscii(text.substr(found, text.find(')', found) - found));
        target.remove_prefix(std::min(target.find_first_not_of("'\""), target.size()));
        if (target.empty() || target[0] != '#')
            refuseReference(node, target);
        ids.emplace_back(target.substr(1, target.find_first_of("'\"") - 1));
    }
    return ids;
}

class Inspection {
  public:
    explicit Inspection(const LayoutFiles& files) : files_(files) {}

    void run(xmlNode* root) {
        inspect(root, 1);
        costOf(root, 1);
    }

  private:
    void inspect(xmlNode* node, int depth) {
        if (depth > limits::kDepth)
            refuse(node, "mehr als 64 Ebenen ineinander");
        if (++elements_ > limits::kElements)
            throw Fault(kLayoutRefused, "mehr als 20.000 Elemente");
        inspectName(node);
        inspectAttributes(node);
        if (svgName(node) == "style")
            for (const xmlNode* text = node->children; text != nullptr; text = text->next)
                urlsIn(node, viewOf(text->content));
        forEachChild(node, [&](xmlNode* child) { inspect(child, depth + 1); });
    }

    static void inspectName(const xmlNode* node) {
        const auto name = svgName(node);
        if (name == "script")
            refuse(node, "Skripte sind nicht erlaubt");
        if (name == "foreignObject")
            refuse(node, "fremde Inhalte (foreignObject) sind nicht erlaubt");
        if (node->ns != nullptr && viewOf(node->ns->href) == "http://www.w3.org/2001/XInclude")
            refuseReference(node, "xi:include");
        const bool plain = name == "feMergeNode" ||
                           std::find(kPlainFilters.begin(), kPlainFilters.end(), name) != kPlainFilters.end();
        if (name.substr(0, 2) == "fe" && !plain)
            refuse(node, "der Filter " + std::string(name) + " ist nicht erlaubt");
    }

    /// Every attribute counts, whatever its namespace: which of two with the same name is taken is up to the
    /// reader.
    void inspectAttributes(xmlNode* node) {
        const auto name = svgName(node);
        int count = 0;
        for (const xmlAttr* attr = node->properties; attr != nullptr; attr = attr->next) {
            if (++count > limits::kAttributes)
                refuse(node, "mehr als 250 Attribute");
            const std::string value = valueOf(attr);
            const auto attribute = viewOf(attr->name);
            noteUrls(node, attribute, value);
            if (attribute == "id")
                byId_.emplace(value, node);
            if (attribute != "href" || name.empty() || name == "a")
                continue;
            if (name == "image" || name == "feImage")
                inspectImage(node, value);
            else if (!value.empty() && value[0] != '#')
                refuseReference(node, value);
            else if (!value.empty())
                references_[node].push_back({value.substr(1), 1});
        }
    }

    /// A marker is drawn at each point of its path, anything else once.
    void noteUrls(const xmlNode* node, std::string_view name, std::string_view value) {
        if (name == "style") {
            urlsIn(node, value);
            for (const auto& [property, part] : parseDeclarations(value))
                noteUrls(node, property, part);
            return;
        }
        const std::size_t letters = attribute(node, "d").size() + attribute(node, "points").size();
        const std::uint64_t times = name.substr(0, 6) == "marker" ? 1 + letters / 2 : 1;
        for (auto& id : urlsIn(node, value))
            references_[node].push_back({std::move(id), times});
    }

    void inspectImage(const xmlNode* node, const std::string& value) const {
        if (value.substr(0, 5) == "data:")
            return inspectImageData(node, dataOf(value).value_or(""), "im Layout");
        const auto target = fileBelow(files_, value);
        if (target.empty())
            refuseReference(node, value);
        std::error_code ignored;
        std::string head(1 << 16, '\0');
        std::ifstream in;
        if (std::filesystem::is_regular_file(target, ignored)) // a pipe would be waited for
            in.open(target, std::ios::binary);
        in.read(head.data(), static_cast<std::streamsize>(head.size()));
        head.resize(static_cast<std::size_t>(std::max<std::streamsize>(in.gcount(), 0)));
        if (head.empty())
            throw Fault(kLayoutInvalid, at(node) + "Bild „" + value + "“ fehlt oder ist nicht lesbar");
        inspectImageData(node, head, "„" + value + "“");
    }

    static void inspectImageData(const xmlNode* node, std::string_view head, const std::string& what) {
        const auto extent = imageExtent(head);
        if (!extent)
            throw Fault(kLayoutInvalid, at(node) + "Bild " + what + " ist weder PNG noch JPEG");
        if (extent->first > limits::kPixels || extent->second > limits::kPixels)
            throw Fault(kLayoutRefused, at(node) + "Bild " + what + " ist größer als 8192 Pixel");
    }

    struct Reference {
        std::string id;
        std::uint64_t times; ///< that it is drawn
    };

    /// What drawing an element takes: the elements that are drawn in all, and how deep they lie in one another.
    struct Cost {
        std::uint64_t copies = 1;
        int depth = 1;
    };

    Cost costOf(const xmlNode* node, int level) {
        if (level > limits::kDepth)
            refuse(node, "mehr als 64 Ebenen ineinander");
        const auto [entry, fresh] = costs_.try_emplace(node, Cost{0, 0});
        if (!fresh) {
            if (entry->second.copies == 0)
                refuse(node, "Verwendung im Kreis (use)");
            return entry->second;
        }
        Cost cost;
        const auto add = [&](const Cost& part, std::uint64_t times) {
            cost.copies += std::min(part.copies, limits::kCopies + 1) * times;
            cost.depth = std::max(cost.depth, part.depth + 1);
        };
        forEachChild(const_cast<xmlNode*>(node), [&](const xmlNode* child) { add(costOf(child, level + 1), 1); });
        if (const auto found = references_.find(node); found != references_.end())
            for (const auto& [id, times] : found->second)
                for (auto [target, end] = byId_.equal_range(id); target != end; ++target)
                    add(costOf(target->second, level + 1), times);
        if (cost.depth > limits::kDepth)
            refuse(node, "mehr als 64 Ebenen ineinander");
        if (cost.copies > limits::kCopies)
            refuse(node, "use vervielfacht zu viele Elemente");
        return costs_[node] = cost;
    }

    const LayoutFiles& files_;
    int elements_ = 0;
    std::multimap<std::string, const xmlNode*> byId_;
    std::map<const xmlNode*, std::vector<Reference>> references_;
    std::map<const xmlNode*, Cost> costs_;
};

} // namespace

void refuseDeclarations(xmlDoc* document) {
    if (document->intSubset != nullptr && document->intSubset->children != nullptr)
        throw Fault(kLayoutRefused, "Entitäten und eigene Dokumenttypen sind nicht erlaubt");
    for (const xmlNode* node = document->children; node != nullptr; node = node->next)
        if (node->type == XML_PI_NODE && viewOf(node->name) == "xml-stylesheet")
            throw Fault(kLayoutRefused, "Verweis nach außen ist nicht erlaubt: xml-stylesheet");
    if (xmlDocGetRootElement(document) == nullptr)
        throw Fault(kLayoutMalformed, "Datei ist kein wohlgeformtes XML: kein Element");
}

void inspectSvg(xmlDoc* document, const LayoutFiles& files) {
    Inspection(files).run(xmlDocGetRootElement(document));
}

} // namespace kvtdruck::druckwerk
