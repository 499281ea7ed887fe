#include "druckwerk/layout/layout.h"

#include "druckwerk/common/fault.h"
#include "druckwerk/pdf/pdf_syntax.h"
#include "druckwerk/svg/limits.h"
#include "platform/posix/input_file.h"

#include <algorithm>
#include <cerrno>

namespace kvtdruck::druckwerk {

namespace {

constexpr double kPointsPerMillimetre = 72 / 25.4;
constexpr double kBottomMargin = 10 * kPointsPerMillimetre; // where a layout has no footer

} // namespace

std::string Shape::operators(double pageHeight, double edge, double growth) const {
    std::string out = before;
    const auto append = [&](Point point) {
        appendNumber(out, point.x);
        out += ' ';
        appendNumber(out, pageHeight - point.y - (point.y >= edge ? growth : 0));
        out += ' ';
    };
    for (const Segment& segment : outline) {
        const int points = segment.kind == 'Z' ? 0 : segment.kind == 'C' ? 3 : 1;
        for (int i = 0; i < points; ++i)
            append(segment.points[static_cast<std::size_t>(i)]);
        out += segment.kind == 'M' ? "m " : segment.kind == 'L' ? "l " : segment.kind == 'C' ? "c " : "h ";
    }
    return out + after;
}

double Layout::flowTop() const {
    double top = row ? row->top : height;
    for (const Group& group : groups)
        if (group.head)
            top = std::min(top, group.head->top);
    return top;
}

double Layout::flowBottom() const {
    return footer ? footer->top : height - kBottomMargin;
}

std::size_t Layout::fontNumber(const FontRequest& font, const std::string& place) {
    const auto known = std::ranges::find(fonts, font, &Font::request);
    const auto number = static_cast<std::size_t>(known - fonts.begin());
    if (number == fonts.size())
        fonts.push_back({font, place});
    return number;
}

std::string readLayoutFile(const std::filesystem::path& file) {
    if (std::filesystem::is_other(file)) // a pipe would be waited for, and can't be saved again
        throw Fault(kLayoutUnreadable, "Das Layout „" + file.string() + "“ ist keine Datei");
    try {
        return readInput(file, limits::kFileSize);
    } catch (const std::system_error& error) {
        if (error.code().value() == EFBIG)
            throw Fault(kLayoutRefused, "Das Layout „" + file.string() + "“ ist größer als 20 MB");
        throw Fault(kLayoutUnreadable, "Das Layout „" + file.string() + "“ kann nicht gelesen werden: " +
                                           reasonForReading(error.code().value()));
    }
}

} // namespace kvtdruck::druckwerk
