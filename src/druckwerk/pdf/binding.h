// Binding finished documents to one: what leads to their chapters goes before them.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace kvtdruck::druckwerk {

/// A place in a document, as its outline names it.
struct Chapter {
    std::string title; ///< UTF-8
    int level = 0;     ///< 0 for the outermost
    int page = 0;      ///< from 1
};

/// The entries of the outline of `document` down to `deepest`, in their order.
std::vector<Chapter> chaptersOf(const std::filesystem::path& document, int deepest);

/// The PDF that holds the pages of `front` before those of `document`, whose outline stays; it says of itself what
/// `front` does: its title is the cover's, and not that of the first chapter. The outline of `front`
/// tells where its lines stand: each of them leads to the chapter of its number. Viewers count the front in small
/// Roman numbers, so that what they show is what is printed on the pages behind it. The same input gives the same
/// bytes.
std::string bound(const std::filesystem::path& front, const std::filesystem::path& document,
                  const std::vector<Chapter>& chapters);

} // namespace kvtdruck::druckwerk
