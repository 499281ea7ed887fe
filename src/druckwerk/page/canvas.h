// The content of the page in hand, as PDF operators.
#pragma once

#include "druckwerk/common/geometry.h"
#include "druckwerk/pdf/pdf_output.h"
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

/// A part of the document's structure that is drawn: its element, and what of the page shows it (ISO
/// 32000-1, 14.7.4).
struct TaggedContent {
    const char* type = "P";
    int element = 0;       ///< the element's object; allocated when something is drawn
    std::string kids = {}; ///< the element's entries of K, a blank behind each
    bool follows = false;  ///< other text of the element stands before
};

/// Why a part of a page says nothing of its own (ISO 32000-1, 14.8.2.2; ISO 14289-1, 7.8).
enum class Furniture : std::uint8_t { Drawing, Header, Footer, Carried };

/// The content of one page.
class Canvas {
  public:
    explicit Canvas(double pageHeight = 0) : height_(pageHeight) {}

    /// From now on everything that is drawn says what it belongs to; `output` has the numbers of the elements.
    void beginTagging(PdfOutput& output) { output_ = &output; }
    /// What is drawn from now on shows `content`, which outlives that; nullptr: it is `furniture`.
    void belongTo(TaggedContent* content, Furniture furniture = Furniture::Drawing);
    TaggedContent* content() const { return content_; }
    /// What the next text says, where its characters alone don't (ISO 32000-1, 14.9.4); empty: what they say.
    void setActualText(std::string pdfString);
    /// The element of each mark of the page, by the mark's number.
    const std::vector<int>& owners() const { return owners_; }

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
    void beginMark();
    void endMark();
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
    PdfOutput* output_ = nullptr; ///< where the document is tagged
    TaggedContent* content_ = nullptr;
    Furniture furniture_ = Furniture::Drawing;
    bool marked_ = false;
    std::string actualText_;
    std::vector<int> owners_;
};

} // namespace kvtdruck::druckwerk
