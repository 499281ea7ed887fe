#include "druckwerk/pdf/structure_tree.h"

#include <array>
#include <cstdio>

namespace kvtdruck::druckwerk {

namespace {

constexpr std::size_t kEntriesPerLeaf = 64;
constexpr std::string_view kNumbers = "/Nums";
constexpr std::string_view kNames = "/Names";

} // namespace

void StructureTree::write(int element, std::string_view type, int parent, std::string_view entries) {
    body_.assign("<</S/").append(type).append("/P ");
    body_.append(std::to_string(parent)).append(" 0 R").append(entries).append(">>");
    output_.packObject(element, body_);
}

std::string StructureTree::name(int element) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "(%07x)", ++names_); // as wide as any: the tree is in their order
    std::string name = text.data();
    add(named_, kNames, name, reference(element));
    return name;
}

int StructureTree::own(int element) {
    objects_.push_back(element);
    return nextKey_++;
}

void StructureTree::endPage(std::span<const int> owners) {
    std::string elements = "[";
    for (const int owner : owners)
        elements.append(reference(owner)).append(" ");
    const int array = output_.allocate();
    output_.packObject(array, elements + "]");
    add(owned_, kNumbers, std::to_string(pageKey_), reference(array));
    for (std::size_t i = 0; i < objects_.size(); ++i)
        add(owned_, kNumbers, std::to_string(pageKey_ + 1 + static_cast<int>(i)), reference(objects_[i]));
    objects_.clear();
}

void StructureTree::add(Leaves& leaves, std::string_view kind, const std::string& key, const std::string& value) {
    if (leaves.count == 0)
        leaves.first = key;
    leaves.last = key;
    leaves.entries.append(key).append(" ").append(value).append(" ");
    if (++leaves.count == kEntriesPerLeaf)
        close(leaves, kind);
}

void StructureTree::close(Leaves& leaves, std::string_view kind) {
    if (leaves.count == 0)
        return;
    leaves.written.push_back(output_.allocate());
    output_.packObject(leaves.written.back(), "<</Limits[" + leaves.first + " " + leaves.last + "]" +
                                                  std::string(kind) + "[" + leaves.entries + "]>>");
    leaves.entries.clear();
    leaves.count = 0;
}

/// Whole leaves, so that those behind them can be dropped.
StructureTree::Mark StructureTree::mark() {
    close(owned_, kNumbers);
    close(named_, kNames);
    return {parts_.size(), owned_.written.size(), named_.written.size()};
}

void StructureTree::dropSince(const Mark& mark) {
    parts_.resize(mark.parts);
    objects_.clear();
    for (auto [leaves, size] : {std::pair(&owned_, mark.owners), std::pair(&named_, mark.names)}) {
        leaves->written.resize(size);
        leaves->entries.clear();
        leaves->count = 0;
    }
}

std::string StructureTree::treeOf(Leaves& leaves, std::string_view kind) {
    close(leaves, kind);
    std::string kids = "<</Kids[";
    for (const int leaf : leaves.written)
        kids.append(reference(leaf)).append(" ");
    return leaves.written.empty() ? "<<" + std::string(kind) + "[]>>" : kids + "]>>";
}

int StructureTree::finish() {
    std::string kids = "/K[";
    for (const int part : parts_)
        kids.append(reference(part)).append(" ");
    write(document_, "Document", root_, kids + "]");
    output_.packObject(root_, "<</Type/StructTreeRoot/K " + reference(document_) + "/ParentTree" +
                                  treeOf(owned_, kNumbers) + "/ParentTreeNextKey " + std::to_string(nextKey_) +
                                  (names_ > 0 ? "/IDTree" + treeOf(named_, kNames) : "") + ">>");
    return root_;
}

} // namespace kvtdruck::druckwerk
