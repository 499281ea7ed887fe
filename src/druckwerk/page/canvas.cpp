#include "druckwerk/page/canvas.h"

#include "druckwerk/pdf/pdf_syntax.h"

#include <array>
#include <charconv>
#include <cmath>

namespace kvtdruck::druckwerk {

namespace {

/// To the nearest, halves away from zero.
std::int64_t hundredths(double value) {
    if (!(std::fabs(value) < 1e9))
        return 0;
    const double exact = value * 100;
    const auto whole = static_cast<std::int64_t>(exact);
    const double rest = exact - static_cast<double>(whole);
    return whole + (rest >= 0.5 ? 1 : rest <= -0.5 ? -1 : 0);
}

/// How furniture is marked, by its kind.
constexpr std::array kFurniture = {"/Artifact BMC\n", "/Artifact<</Type/Pagination/Subtype/Header>>BDC\n",
                                   "/Artifact<</Type/Pagination/Subtype/Footer>>BDC\n",
                                   "/Artifact<</Type/Pagination>>BDC\n"};

constexpr const char* kNoText = "<FEFF>"; // of what an earlier mark says

} // namespace

void Canvas::clear() {
    buffer_.clear();
    parts_.clear();
    owners_.clear();
    resetState();
}

void Canvas::resetState() {
    inText_ = inGraphics_ = marked_ = false;
    font_ = -1;
    colorKnown_ = false;
}

void Canvas::belongTo(TaggedContent* content, Furniture furniture) {
    if (content != content_ || furniture != furniture_)
        endMark();
    content_ = content;
    furniture_ = furniture;
}

void Canvas::setActualText(std::string pdfString) {
    endMark();
    actualText_ = std::move(pdfString);
}

/// Marks begin and end within a text object or outside of all (ISO 32000-1, 14.6.1); so one content may need
/// several.
void Canvas::beginMark() {
    if (output_ == nullptr || marked_)
        return;
    marked_ = true;
    if (content_ == nullptr) {
        buffer_ += kFurniture[static_cast<std::size_t>(furniture_)];
        return;
    }
    if (content_->element == 0)
        content_->element = output_->allocate();
    const std::string number = std::to_string(owners_.size());
    owners_.push_back(content_->element);
    content_->kids += number;
    content_->kids += ' ';
    buffer_ += '/';
    buffer_ += content_->type;
    buffer_ += "<</MCID ";
    buffer_ += number;
    if (!actualText_.empty()) {
        buffer_ += "/ActualText";
        buffer_ += actualText_;
        actualText_ = kNoText;
    }
    buffer_ += ">>BDC\n";
}

void Canvas::endMark() {
    if (marked_)
        buffer_ += "EMC\n";
    marked_ = false;
}

void Canvas::endText() {
    if (!inText_)
        return;
    endMark();
    buffer_ += "ET\n";
    inText_ = false;
}

void Canvas::endGraphics() {
    if (!inGraphics_)
        return;
    endMark();
    buffer_ += "Q\n";
    inGraphics_ = false;
}

void Canvas::changeFont(const Face& face, double size) {
    font_ = face.number();
    size_ = size;
    buffer_ += "/F";
    buffer_ += std::to_string(font_);
    buffer_ += ' ';
    appendNumber(buffer_, size);
    buffer_ += " Tf\n";
}

void Canvas::moveText(Point at, Rgb color) {
    endGraphics();
    if (!inText_) {
        buffer_ += "BT\n";
        inText_ = true;
        lineX_ = lineY_ = 0;
    }
    beginMark();
    if (!colorKnown_ || color != color_) {
        color_ = color;
        colorKnown_ = true;
        appendColor(buffer_, color);
        buffer_ += "rg\n";
    }
    const std::int64_t x = hundredths(at.x);
    const std::int64_t y = hundredths(height_ - at.y);
    appendMove(buffer_, x - lineX_, y - lineY_);
    lineX_ = x;
    lineY_ = y;
}

void Canvas::showRun(const ShapedRun& run) {
    if (run.rise != 0) {
        appendNumber(buffer_, run.rise * size_);
        buffer_ += " Ts";
    }
    buffer_ += run.operators();
    if (run.rise != 0)
        buffer_ += "0 Ts\n";
}

void Canvas::drawPicture(const GlyphPicture& picture, Point at, double size) {
    std::string operators = "q ";
    appendNumber(operators, picture.width * size);
    operators += " 0 0 ";
    appendNumber(operators, picture.height * size);
    operators += ' ';
    appendNumber(operators, at.x + picture.left * size);
    operators += ' ';
    appendNumber(operators, height_ - at.y + picture.bottom * size);
    draw(operators + " cm/I" + std::to_string(picture.image) + " Do Q\n", 0);
}

void Canvas::show(const ShapedText& text, Point at, double size, Rgb color) {
    bool placed = false;
    for (std::size_t i = 0; i < text.count; ++i) {
        const ShapedRun& run = text.run(i);
        if (run.picture != nullptr)
            drawPicture(*run.picture, at, size);
        if (!placed || run.picture != nullptr)
            moveText(at, color);
        setFont(*run.face, size);
        showRun(run);
        placed = run.picture == nullptr; // a picture is not as wide as its blank
        at.x += run.width * size;
    }
}

void Canvas::addLate(const LateText& late) {
    parts_.push_back({std::move(buffer_), late});
    buffer_.clear();
}

void Canvas::showPageCount(std::span<const ShapedText> parts, Face& face, Point at, double size, Rgb color,
                           Anchor anchor) {
    endText(); // the shift moves the line's beginning, so the line has a text object of its own
    for (const ShapedText& part : parts)
        at.x -= part.width * size * shareLeft(anchor);
    moveText(at, color);
    buffer_ += '\n';
    for (std::size_t count = 1; count < parts.size() && anchor != Anchor::Start; ++count)
        addLate({face.number(), size, anchor, true});
    for (const ShapedText& part : parts) {
        if (&part != parts.data()) {
            setFont(face, size);
            addLate({face.number(), size, Anchor::Start, false});
        }
        for (std::size_t i = 0; i < part.count; ++i) {
            setFont(*part.run(i).face, size);
            showRun(part.run(i));
        }
    }
    endText();
}

void Canvas::draw(std::string_view operators, double down) {
    endText();
    if (inGraphics_ && down != down_)
        endGraphics();
    if (!inGraphics_) {
        buffer_ += "q ";
        if (down != 0) {
            buffer_ += "1 0 0 1 0 ";
            appendNumber(buffer_, -down);
            buffer_ += " cm\n";
        }
        inGraphics_ = true;
        down_ = down;
    }
    beginMark();
    buffer_ += operators;
}

void Canvas::beginTransform(const Matrix& matrix) {
    endText();
    endGraphics();
    // The matrix maps coordinates that run downwards; in PDF they run upwards on both of its sides.
    const Matrix flip{1, 0, 0, -1, 0, height_};
    const Matrix flipped = flip * matrix * flip;
    buffer_ += "q ";
    for (const double value : {flipped.a, flipped.b, flipped.c, flipped.d}) {
        std::array<char, 32> text;
        const auto end =
            std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, 6).ptr;
        buffer_.append(text.data(), end);
        buffer_ += ' ';
    }
    appendNumber(buffer_, flipped.e);
    buffer_ += ' ';
    appendNumber(buffer_, flipped.f);
    buffer_ += " cm\n";
    resetState();
}

void Canvas::endTransform() {
    endText();
    endGraphics();
    buffer_ += "Q\n";
    resetState();
}

void Canvas::beginClip(const Box& box) {
    endText();
    endGraphics();
    buffer_ += "q ";
    for (const double value : {box.x, height_ - box.bottom(), box.width, box.height}) {
        appendNumber(buffer_, value);
        buffer_ += ' ';
    }
    buffer_ += "re W n\n";
    resetState();
}

void Canvas::endClip() {
    endTransform();
}

void Canvas::fillBox(const Box& box, Rgb color) {
    std::string operators;
    appendColor(operators, color);
    operators += "rg ";
    for (const double value : {box.x, height_ - box.bottom(), box.width, box.height}) {
        appendNumber(operators, value);
        operators += ' ';
    }
    draw(operators + "re f\n", 0);
}

void Canvas::strokeLine(Point from, Point to, double width, Rgb color) {
    std::string operators;
    appendColor(operators, color);
    operators += "RG ";
    appendNumber(operators, width);
    operators += " w ";
    appendNumber(operators, from.x);
    operators += ' ';
    appendNumber(operators, height_ - from.y);
    operators += " m ";
    appendNumber(operators, to.x);
    operators += ' ';
    appendNumber(operators, height_ - to.y);
    draw(operators + " l S\n", 0);
}

} // namespace kvtdruck::druckwerk
