#include "druckwerk/pdf/page_selection.h"

#include "druckwerk/pdf/rewriting.h"

#include <algorithm>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFNameTreeObjectHelper.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
#include <set>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace kvtdruck::druckwerk {

namespace {

class Ranges {
  public:
    explicit Ranges(const std::string& text) {
        std::istringstream ranges(text);
        for (std::string range; std::getline(ranges, range, ',');) {
            const auto dash = range.find('-');
            const int first = std::stoi(range.substr(0, dash));
            ranges_.emplace_back(first, dash == std::string::npos ? first : std::stoi(range.substr(dash + 1)));
        }
    }
    bool hold(int page) const {
        return std::any_of(ranges_.begin(), ranges_.end(),
                           [page](const auto& range) { return page >= range.first && page <= range.second; });
    }

  private:
    std::vector<std::pair<int, int>> ranges_;
};

/// What leads to pages is left where these are kept.
class Pruning {
  public:
    explicit Pruning(std::set<QPDFObjGen> kept) : kept_(std::move(kept)) {}

    bool leadsToKept(QPDFObjectHandle destination) const {
        if (destination.isDictionary())
            destination = destination.getKey("/D");
        return destination.isArray() && destination.getArrayNItems() > 0 &&
               kept_.count(destination.getArrayItem(0).getObjGen()) > 0;
    }

    /// Takes the entries below `parent` that lead nowhere, and have none below them that leads anywhere, out of
    /// their chain; gives how many are left.
    int prune(QPDFObjectHandle parent) const {
        std::vector<QPDFObjectHandle> left;
        for (auto entry = parent.getKey("/First"); entry.isDictionary(); entry = entry.getKey("/Next")) {
            const int below = prune(entry);
            if (leadsToKept(entry.getKey("/Dest")) || below > 0)
                left.push_back(entry);
            if (below > 0 && !leadsToKept(entry.getKey("/Dest")))
                entry.replaceKey("/Dest", entry.getKey("/First").getKey("/Dest"));
        }
        relink(parent, left);
        return int(left.size());
    }

  private:
    static void relink(QPDFObjectHandle parent, std::vector<QPDFObjectHandle>& entries) {
        for (const char* key : {"/First", "/Last", "/Count"})
            parent.removeKey(key);
        for (std::size_t i = 0; i < entries.size(); ++i) {
            entries[i].removeKey("/Prev");
            entries[i].removeKey("/Next");
            if (i > 0) {
                entries[i].replaceKey("/Prev", entries[i - 1]);
                entries[i - 1].replaceKey("/Next", entries[i]);
            }
        }
        if (entries.empty())
            return;
        parent.replaceKey("/First", entries.front());
        parent.replaceKey("/Last", entries.back());
        const bool isOutline = !parent.hasKey("/Parent"); // entries below the first level begin closed
        parent.replaceKey("/Count", QPDFObjectHandle::newInteger(int(entries.size()) * (isOutline ? 1 : -1)));
    }

    std::set<QPDFObjGen> kept_;
};

void pruneNames(QPDF& pdf, const Pruning& pruning) {
    auto names = pdf.getRoot().getKey("/Names");
    if (!names.isDictionary() || !names.hasKey("/Dests"))
        return;
    QPDFNameTreeObjectHelper tree(names.getKey("/Dests"), pdf);
    auto kept = QPDFNameTreeObjectHelper::newEmpty(pdf);
    bool any = false;
    for (const auto& [name, destination] : tree)
        if (pruning.leadsToKept(destination)) {
            kept.insert(name, destination);
            any = true;
        }
    if (any)
        names.replaceKey("/Dests", kept.getObjectHandle());
    else
        names.removeKey("/Dests");
}

} // namespace

std::string selectedPages(const std::filesystem::path& document, const std::string& ranges) {
    QPDF pdf;
    pdf.processFile(document.c_str());
    QPDFPageDocumentHelper pages(pdf);
    const Ranges wanted(ranges);
    std::set<QPDFObjGen> kept;
    int number = 0;
    for (auto& page : pages.getAllPages()) {
        if (wanted.hold(++number))
            kept.insert(page.getObjectHandle().getObjGen());
        else
            pages.removePage(page);
    }
    if (kept.empty())
        throw std::out_of_range("Das Dokument hat keine der Seiten " + ranges + ", sondern nur " +
                                std::to_string(number));
    const Pruning pruning(std::move(kept));
    pruneNames(pdf, pruning);
    if (auto root = pdf.getRoot(); root.hasKey("/Outlines") && pruning.prune(root.getKey("/Outlines")) == 0) {
        root.removeKey("/Outlines");
        root.removeKey("/PageMode");
    }
    return written(pdf);
}

} // namespace kvtdruck::druckwerk
