// Text that is set: glyphs by their codes, widths in ems.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace kvtdruck::druckwerk {

class Face;

/// A picture of a character (an emoji), placed as an image. Lengths are in ems.
struct GlyphPicture {
    int image = 0; ///< number of the image in the document's resources
    double left = 0, bottom = 0, width = 0, height = 0;
};

/// A stretch of text in one font and on one height.
struct ShapedRun {
    Face* face = nullptr;
    std::string
        glyphs; ///< "[(…)-20(…)", the operand of TJ without its end; where `kerned` is false, "[" is not needed
    bool kerned = false;
    double width = 0;                      ///< in ems
    double rise = 0;                       ///< in ems
    const GlyphPicture* picture = nullptr; ///< drawn in the place of the glyphs, which then are blank
};

/// One line of text, ready to be placed; it can be used again and again.
class ShapedText {
  public:
    double width = 0; ///< in ems
    std::size_t count = 0;
    const ShapedRun& run(std::size_t i) const { return runs_[i]; }

    void clear() {
        count = 0;
        width = 0;
    }
    ShapedRun& add(Face& face) {
        if (count == runs_.size())
            runs_.emplace_back();
        ShapedRun& run = runs_[count++];
        run.face = &face;
        run.glyphs.assign("[(");
        run.kerned = false;
        run.width = run.rise = 0;
        run.picture = nullptr;
        return run;
    }

  private:
    std::vector<ShapedRun> runs_;
};

} // namespace kvtdruck::druckwerk
