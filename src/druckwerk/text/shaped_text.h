// Text that is set: glyphs by their codes, widths in ems.
#pragma once

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace kvtdruck::druckwerk {

class Face;

/// A picture of a character (an emoji), placed as an image. Lengths are in ems.
struct GlyphPicture {
    int image = 0; ///< number of the image in the document's resources
    double left = 0, bottom = 0, width = 0, height = 0;
};

/// A stretch of text in one font and on one height. Its glyphs are written where those of the last text were.
class ShapedRun {
  public:
    Face* face = nullptr;
    bool kerned = false;                   ///< some glyph is moved
    double width = 0;                      ///< in ems
    double rise = 0;                       ///< in ems
    const GlyphPicture* picture = nullptr; ///< drawn in the place of the glyphs, which then are blank

    void begin(Face& used) {
        face = &used;
        kerned = false;
        width = rise = 0;
        picture = nullptr;
        used_ = kBegin.size();
    }
    /// Room for `count` more bytes of the operand of TJ. `take` tells where they end.
    char* room(std::size_t count) {
        if (bytes_.size() < used_ + count)
            bytes_.resize(2 * (used_ + count));
        return bytes_.data() + used_;
    }
    void take(const char* end) { used_ = static_cast<std::size_t>(end - bytes_.data()); }
    void append(std::string_view bytes) {
        std::memcpy(room(bytes.size()), bytes.data(), bytes.size());
        used_ += bytes.size();
    }
    void end() {
        constexpr std::size_t kLongest = 5;
        std::memcpy(room(kLongest), kerned ? ")]TJ\n" : ")Tj\n", kLongest);
        used_ += kerned ? kLongest : kLongest - 1;
    }

    /// What shows the glyphs: "(…)Tj", or "[(…)-20(…)]TJ" where some are moved.
    std::string_view operators() const {
        const std::size_t begin = kerned ? 0 : 1;
        return {bytes_.data() + begin, used_ - begin};
    }

  private:
    static constexpr std::string_view kBegin = "[(";
    std::string bytes_{kBegin}; ///< as much as there is room for
    std::size_t used_ = 0;
};

/// One line of text, ready to be placed; it can be used again and again.
class ShapedText {
  public:
    double width = 0; ///< in ems
    std::size_t count = 0;
    const ShapedRun& run(std::size_t i) const { return runs_[i]; }
    ShapedRun& run(std::size_t i) { return runs_[i]; }

    void clear() {
        count = 0;
        width = 0;
    }
    ShapedRun& add(Face& face) {
        if (count == runs_.size())
            runs_.emplace_back();
        ShapedRun& run = runs_[count++];
        run.begin(face);
        return run;
    }

  private:
    std::vector<ShapedRun> runs_;
};

} // namespace kvtdruck::druckwerk
