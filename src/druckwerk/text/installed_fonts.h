// Where font faces come from: the fonts that are installed.
#pragma once

#include "druckwerk/common/font_request.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kvtdruck::druckwerk {

/// A face in a file, of a kind that can be embedded.
struct FontFile {
    std::string file;
    int index = 0;
    std::vector<std::string> families; ///< its names, the usual one first
    bool pictures = false;             ///< it has pictures of characters in the place of outlines

    bool hasFamily(const std::string& name) const;
};

class InstalledFonts {
  public:
    /// Begins to read beside the calling thread what is installed, which takes as long as loading the data of a
    /// page.
    static void prepare();
    /// Waits until that has ended, where it was begun. Fontconfig is not to be at work where the process is copied.
    static void awaitPreparation();

    /// Answers whether the font is taken, which ends the search.
    using Visit = std::function<bool(const FontFile&)>;

    InstalledFonts();
    ~InstalledFonts();

    /// Offers the fonts with outlines that are like `request`, the most similar one first; gives whether one was
    /// taken.
    bool findLike(const FontRequest& request, const Visit& visit) const;
    /// Offers the fonts that have the character; gives whether one was taken.
    bool findWith(char32_t c, const Visit& visit);

  private:
    struct Sorted;
    std::unique_ptr<Sorted> sorted_; ///< all fonts in the order in which they stand in for one another, once needed
};

} // namespace kvtdruck::druckwerk
