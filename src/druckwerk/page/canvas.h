// The content of the page in hand, as PDF operators.
#pragma once

#include "druckwerk/common/geometry.h"
#include "druckwerk/text/face.h"
#include "druckwerk/text/shaped_text.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace kvtdruck::druckwerk {

/// A place in a page whose content is known only when the number of pages is.
struct LateText {
    int face = 0;
    double size = 0;
    Anchor anchor = Anchor::Start;
    bool shift = false; ///< moves the text so that it keeps to its anchor; otherwise the number itself
    bool operator<(const LateText& other) const {
        return std::tie(face, size, anchor, shift) < std::tie(other.face, other.size, other.anchor, other.shift);
    }
};

/// The content of one page.
class Canvas {
  public:
    explicit Canvas(double pageHeight = 0) : height_(pageHeight) {}

    /// Sets a line of text; `at` is the left end of its baseline.
    void show(const ShapedText& text, Point at, double size, Rgb color);
    /// Sets a line that consists of `parts` with the number of pages between them, anchored at `at`.
    void showPageCount(std::span<const ShapedText> parts, Face& face, Point at, double size, Rgb color,
                       Anchor anchor);
    /// PDF operators for graphics, moved down by `down`; graphics with the same offset share one state.
    void draw(std::string_view operators, double down);
    /// Text shown by `show` until `endTransform` is mapped by `matrix`.
    void beginTransform(const Matrix& matrix);
    void endTransform();
    /// Clips everything until `endClip`.
    void beginClip(const Box& box);
    void endClip();
    void fillBox(const Box& box, Rgb color);
    void strokeLine(Point from, Point to, double width, Rgb color);

    double height() const { return height_; }
    /// The height of the pages to come.
    void setHeight(double pageHeight) { height_ = pageHeight; }
    bool isEmpty() const { return parts_.empty() && buffer_.empty(); }
    void clear();

  private:
    friend class PdfDocument;
    struct Part {
        std::string operators;
        LateText late;
    };
    void endText();
    void endGraphics();
    void moveText(Point at, Rgb color);
    void setFont(const Face& face, double size) {
        if (font_ != face.number() || size_ != size)
            changeFont(face, size);
    }
    void changeFont(const Face& face, double size);
    void showRun(const ShapedRun& run);
    void drawPicture(const GlyphPicture& picture, Point at, double size);
    void addLate(const LateText& late);
    void resetState();

    double height_;
    std::string buffer_;
    std::vector<Part> parts_;
    bool inText_ = false;
    bool inGraphics_ = false;
    double down_ = 0;
    std::int64_t lineX_ = 0; ///< where the current line of text begins, in hundredths of a point
    std::int64_t lineY_ = 0;
    int font_ = -1;
    double size_ = 0;
    bool colorKnown_ = false;
    Rgb color_;
};

} // namespace kvtdruck::druckwerk
