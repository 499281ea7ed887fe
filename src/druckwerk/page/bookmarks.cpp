#include "druckwerk/page/bookmarks.h"

#include "druckwerk/pdf/pdf_syntax.h"

#include <map>

namespace kvtdruck::druckwerk {

namespace {

constexpr std::size_t kMaximumBookmarks = 20000;
constexpr std::size_t kNamesPerLeaf = 64;

std::string destination(int page, double y) {
    std::string text = "[" + reference(page) + "/XYZ null ";
    appendNumber(text, y);
    return text + " null]";
}

} // namespace

bool Bookmarks::add(const std::vector<String>& path, int page, double y) {
    if (path == path_)
        return true;
    std::size_t level = 0;
    while (level < path.size() && level < path_.size() && path[level] == path_[level])
        ++level;
    for (; level < path.size(); ++level) {
        if (entries_.size() == kMaximumBookmarks)
            return false;
        entries_.push_back({level, path[level], page, y});
    }
    path_ = path;
    return true;
}

void Bookmarks::shrink(std::size_t size) {
    entries_.resize(size);
    path_.clear();
}

int Bookmarks::write(PdfOutput& output) const {
    std::vector<int> objects(entries_.size() + 1); // the last one is the outline itself
    for (int& object : objects)
        object = output.allocate();
    const auto links = link(objects);
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        const Entry& entry = entries_[i];
        output.writeObject(objects[i], "<<" + links[i].entries() + "/Title " + pdfText(entry.text) + "/Dest" +
                                           destination(entry.page, entry.y) + ">>");
    }
    output.writeObject(objects.back(), "<<" + links.back().entries() + "/Type/Outlines>>");
    return objects.back();
}

int Bookmarks::writeNames(PdfOutput& output) const {
    std::map<String, std::size_t> names; // in the order of their bytes, as the tree wants them
    std::vector<String> path;
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        path.resize(entries_[i].level);
        path.push_back((path.empty() ? u"" : path.back() + u"/") + entries_[i].text);
        names.try_emplace(path.back(), i);
    }
    std::string kids;
    for (auto name = names.begin(); name != names.end();) {
        const String& first = name->first;
        const String* last = &first;
        std::string entries;
        for (std::size_t count = 0; count < kNamesPerLeaf && name != names.end(); ++count, ++name) {
            last = &name->first;
            const Entry& entry = entries_[name->second];
            entries += pdfText(name->first) + destination(entry.page, entry.y);
        }
        const int leaf = output.allocate();
        output.writeObject(leaf, "<</Limits[" + pdfText(first) + pdfText(*last) + "]/Names[" + entries + "]>>");
        kids += reference(leaf) + " ";
    }
    const int root = output.allocate();
    output.writeObject(root, "<</Kids[" + kids + "]>>");
    return root;
}

/// The links of each entry, and behind them those of the outline itself.
std::vector<Bookmarks::Links> Bookmarks::link(const std::vector<int>& objects) const {
    const std::size_t outline = entries_.size();
    std::vector<Links> links(outline + 1);
    std::vector<std::size_t> lastChild(outline + 1);
    std::vector<std::size_t> ancestors = {outline};
    for (std::size_t i = 0; i < outline; ++i) {
        ancestors.resize(entries_[i].level + 1);
        const std::size_t parent = ancestors.back();
        links[i].parent = objects[parent];
        links[i].previous = links[parent].last;
        (links[parent].last == 0 ? links[parent].first : links[lastChild[parent]].next) = objects[i];
        links[parent].last = objects[i];
        lastChild[parent] = i;
        --links[parent].count; // below the first level entries begin closed
        ancestors.push_back(i);
    }
    links.back().count = -links.back().count;
    return links;
}

std::string Bookmarks::Links::entries() const {
    std::string text;
    const auto link = [&](const char* name, int object) {
        if (object != 0)
            text += std::string(name) + " " + reference(object);
    };
    link("/Parent", parent);
    link("/Prev", previous);
    link("/Next", next);
    link("/First", first);
    link("/Last", last);
    return count == 0 ? text : text + "/Count " + std::to_string(count);
}

} // namespace kvtdruck::druckwerk
