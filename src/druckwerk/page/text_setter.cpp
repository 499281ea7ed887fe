#include "druckwerk/page/text_setter.h"

#include "druckwerk/pdf/pdf_syntax.h"
#include "values/code_points.h"

#include <algorithm>

namespace kvtdruck::druckwerk {

namespace {

constexpr double kTolerance = 0.02;        // of a point, for what just fits
constexpr double kLineSpacing = 1.2;       // of the size
constexpr double kDescent = 0.22;          // of the size, below the last baseline
constexpr double kAscent = 0.73;           // of the size, capitals above the first baseline
constexpr double kSmallest = 0.5;          // how far a text may shrink
constexpr double kReadable = 6;            // points: what shrinks below them is told
constexpr std::size_t kLongestLine = 4096; // characters that one line is measured for
constexpr char16_t kSoftHyphen = 0xAD;
constexpr std::size_t kLongestText = 100'000; // characters that are broken into lines

/// How much room there is on the side, or the sides, that the text extends to.
double roomOf(const TextItem& item) {
    const Box& box = *item.box;
    const double left = item.baseline.x - box.x;
    const double right = box.right() - item.baseline.x;
    const double room = item.anchor == Anchor::Start ? right
                        : item.anchor == Anchor::End ? left
                                                     : 2 * std::min(left, right);
    return room > 0 ? room : box.width;
}

std::size_t linesIn(const TextItem& item, double growth) {
    const double room = item.fromBottom ? item.baseline.y - item.box->y - kAscent * item.size
                                        : item.box->bottom() + growth - item.baseline.y - kDescent * item.size;
    return 1 + static_cast<std::size_t>(std::max(0.0, (room + kTolerance) / (item.size * kLineSpacing)));
}

bool isPrivateUse(char16_t c) {
    return (c >= 0xE000 && c <= 0xF8FF) || (c >= 0xDB80 && c <= 0xDBFF); // the first halves of planes 15 and 16
}

bool hasPrivateUse(StringView text) {
    return std::ranges::any_of(text, isPrivateUse);
}

/// What is left of `text` behind its line `line`; nothing where that one was cut.
StringView behind(StringView text, StringView line) {
    const auto at = text.find(line);
    return at == StringView::npos ? StringView() : text.substr(at + line.size());
}

String withoutPrivateUse(StringView text) {
    String out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        out += isPrivateUse(text[i]) ? u'\uFFFD' : text[i];
        i += text[i] >= 0xDB80 && text[i] <= 0xDBFF ? 1 : 0;
    }
    return out;
}

/// The addresses of a line of `whole`; one that is shown in part is none.
std::vector<Address> linksIn(const TextItem& item, StringView whole, StringView text) {
    if (item.text.isLoneNumber() || item.turned)
        return {};
    auto found = addressesIn(text);
    std::erase_if(found, [complete = found.empty() ? found : addressesIn(whole)](const Address& address) {
        return std::ranges::find(complete, address.uri, &Address::uri) == complete.end();
    });
    return found;
}

} // namespace

TextSetter::TextSetter(PdfDocument& document, const std::vector<Layout::Font>& fonts, FontLibrary::Warn warn,
                       TightFieldSink tight)
    : document_(document), warn_(std::move(warn)), tight_(std::move(tight)) {
    for (const auto& font : fonts) {
        document_.fonts().setPlace(&font.place);
        faces_.push_back(&document_.fonts().face(font.request));
    }
}

TextSetter::~TextSetter() {
    document_.fonts().setPlace(nullptr);
}

void TextSetter::tellTight(const TextItem& item, StringView text, double needed, double room, bool lines) const {
    if (tight_)
        tight_({item.place, toUtf8(text), lines, needed, room});
}

/// Characters for private use say nothing to others (ISO 19005-3, 6.2.11.7.3): the text says that there is one. The
/// hyphen within a word is a soft one (ISO 32000-1, 14.8.2.2.3).
void TextSetter::show(StringView text, Point at, double size, Rgb color, bool breaksWord) {
    Canvas& canvas = document_.canvas();
    if (document_.structure() == nullptr || (!breaksWord && !hasPrivateUse(text)))
        return canvas.show(shaped_, at, size, color);
    String said = withoutPrivateUse(text);
    if (breaksWord)
        said.back() = kSoftHyphen;
    canvas.setActualText(pdfText(said));
    canvas.show(shaped_, at, size, color);
    canvas.setActualText({});
}

void TextSetter::line(StringView text, Face& face, Point at, double size, Rgb color, Anchor anchor) {
    document_.fonts().shape(text, face, shaped_);
    at.x -= shaped_.width * size * shareLeft(anchor);
    show(text, at, size, color);
}

void TextSetter::separate(const TextItem& item, Point at, double size) {
    const TaggedContent* content = document_.canvas().content();
    if (goesOn_ || content == nullptr || (!content->follows && content->kids.empty()))
        return;
    document_.fonts().shape(u" ", faceOf(item), blank_);
    document_.canvas().show(blank_, at, size, item.color);
}

void TextSetter::showLine(const TextItem& item, StringView whole, StringView text, Point at, double size) {
    document_.fonts().shape(text, faceOf(item), shaped_);
    at.x -= shaped_.width * size * shareLeft(item.anchor);
    showShaped(item, whole, text, at, size);
}

Box TextSetter::boxOf(const Address& address, const TextItem& item, StringView text, Point at, double size) {
    const double left = width(text.substr(0, address.begin), faceOf(item), size);
    const double right = width(text.substr(0, address.end), faceOf(item), size);
    return {at.x + left, at.y - kAscent * size, right - left, (kAscent + kDescent) * size};
}

void TextSetter::showShaped(const TextItem& item, StringView whole, StringView text, Point at, double size) {
    separate(item, at, size);
    const auto links = linksIn(item, whole, text);
    const bool tagged = document_.structure() != nullptr;
    if (tagged && !links.empty() && document_.canvas().content() != nullptr)
        return showParts(item, text, links, at, size);
    show(text, at, size, item.color, item.breaksWord && text.size() == whole.size());
    if (!tagged)
        for (const Address& address : links)
            document_.link(boxOf(address, item, text, at, size), address.uri, {});
}

void TextSetter::showParts(const TextItem& item, StringView text, const std::vector<Address>& links, Point at,
                           double size) {
    Canvas& canvas = document_.canvas();
    TaggedContent* const around = canvas.content();
    const auto showPart = [&](std::size_t begin, std::size_t end) {
        if (begin == end)
            return;
        const double left = width(text.substr(0, begin), faceOf(item), size);
        document_.fonts().shape(text.substr(begin, end - begin), faceOf(item), shaped_);
        show(text.substr(begin, end - begin), {at.x + left, at.y}, size, item.color);
    };
    std::size_t shown = 0;
    for (const Address& address : links) {
        showPart(shown, address.begin);
        TaggedContent link{.type = "Link"};
        canvas.belongTo(&link);
        showPart(address.begin, address.end);
        canvas.belongTo(around);
        document_.link(boxOf(address, item, text, at, size), address.uri, link);
        shown = address.end;
    }
    showPart(shown, text.size());
}

void TextSetter::showPageCount(const TextItem& item, StringView text, Point at) {
    Face& face = faceOf(item);
    std::vector<ShapedText> parts;
    for (std::size_t begin = 0; begin <= text.size();) {
        const auto end = std::min(text.find(kPageCountMark, begin), text.size());
        document_.fonts().shape(text.substr(begin, end - begin), face, parts.emplace_back());
        begin = end + 1;
    }
    document_.useFace(face);
    document_.canvas().showPageCount(parts, face, at, item.size, item.color, item.anchor);
}

void TextSetter::set(const TextItem& item, StringView text, double down, double growth) {
    if (text.empty())
        return;
    document_.fonts().setPlace(&item.place);
    goesOn_ = item.goesOn;
    const Point at{item.baseline.x, item.baseline.y + down};
    if (item.fit != Fit::Wrap && text.size() > kLongestLine)
        text = text.substr(0, wholeCharacters(text, kLongestLine));
    if (item.turned) {
        Matrix matrix = *item.turned;
        matrix.f += down;
        document_.canvas().beginTransform(matrix);
        showLine(item, text, text, {}, item.size);
        document_.canvas().endTransform();
        return;
    }
    if (item.text.hasPageCount() && text.find(kPageCountMark) != StringView::npos)
        return showPageCount(item, text, at);
    if (!item.box)
        return showLine(item, text, text, at, item.size);
    const double room = roomOf(item);
    if (item.fit == Fit::Wrap)
        return wrap(item, text, at, room, growth);
    document_.fonts().shape(text, faceOf(item), shaped_);
    const double width = shaped_.width * item.size;
    if (width <= room + kTolerance) {
        const Point left{at.x - width * shareLeft(item.anchor), at.y};
        showShaped(item, text, text, left, item.size);
    } else if (item.fit == Fit::Shrink || item.text.isLoneNumber())
        shrink(item, text, at, room);
    else {
        tellTight(item, text, width, room);
        showLine(item, text, cut(text, faceOf(item), item.size, room), at, item.size);
    }
}

void TextSetter::shrink(const TextItem& item, StringView text, Point at, double room) {
    const double needed = width(text, faceOf(item), item.size);
    const double size = item.size * room / needed;
    if (size < std::min(item.size, kReadable))
        tellTight(item, text, needed, room);
    if (size >= item.size * kSmallest)
        return showLine(item, text, text, at, size);
    const double smallest = item.size * kSmallest;
    if (!item.text.isLoneNumber())
        return showLine(item, text, cut(text, faceOf(item), smallest, room), at, smallest);
    if (!tight_)
        warn_(item.place + ": Zahl „" + toUtf8(text) + "“ passt nicht in das Feld");
    showLine(item, text, cut(u"####", faceOf(item), smallest, room), at, smallest);
}

/// How many characters of `text` fit, with `end` behind them.
std::size_t TextSetter::fitting(StringView text, Face& face, double size, double width, StringView end) {
    std::size_t fits = 0;
    for (std::size_t beyond = std::min(text.size(), kLongestLine) + 1; beyond - fits > 1;) {
        const std::size_t middle = (fits + beyond) / 2;
        const bool ok = this->width(String(text.substr(0, wholeCharacters(text, middle))).append(end), face,
                                    size) <= width + kTolerance;
        (ok ? fits : beyond) = middle;
    }
    return wholeCharacters(text, fits);
}

String TextSetter::cut(StringView text, Face& face, double size, double room) {
    return text.size() <= kLongestLine && width(text, face, size) <= room + kTolerance
               ? String(text)
               : ellipsized(text, face, size, room);
}

String TextSetter::ellipsized(StringView text, Face& face, double size, double room) {
    String shown(text.substr(0, fitting(text, face, size, room, u"…")));
    while (!shown.empty() && shown.back() == u' ')
        shown.pop_back();
    return shown + u'…';
}

std::vector<String> TextSetter::linesOf(StringView text, Face& face, double size, double room, std::size_t most) {
    std::vector<String> lines;
    String current;
    double used = 0;
    const auto close = [&] {
        while (!current.empty() && current.back() == u' ')
            current.pop_back();
        lines.push_back(std::move(current));
        current.clear();
        used = 0;
    };
    text = text.substr(0, wholeCharacters(text, std::min(text.size(), kLongestText)));
    while (!text.empty() && lines.size() <= most) {
        if (text[0] == u'\n' || text[0] == u'\r') {
            close();
            text.remove_prefix(text.substr(0, 2) == u"\r\n" ? 2 : 1);
            continue;
        }
        auto end = text.find_first_of(u" -\n\r");
        if (end != StringView::npos && (text[end] == u' ' || text[end] == u'-'))
            ++end;
        StringView word = text.substr(0, end);
        const double wide = width(word, face, size);
        const StringView solid = word.substr(0, word.find_last_not_of(u' ') + 1);
        if (used > 0 && used + width(solid, face, size) > room + kTolerance) {
            close();
            continue;
        }
        if (used == 0 && width(solid, face, size) > room + kTolerance) {
            word = word.substr(0, std::max<std::size_t>(1, fitting(word, face, size, room, {})));
            current = word;
            close();
        } else {
            current += word;
            used += wide;
        }
        text.remove_prefix(word.size());
    }
    if (!current.empty())
        close();
    return lines;
}

void TextSetter::shorten(std::vector<String>& lines, std::size_t most, Face& face, double size, double room) {
    if (lines.size() <= most)
        return;
    lines.resize(most);
    lines.back() = ellipsized(lines.back(), face, size, room);
}

std::vector<String> TextSetter::lines(StringView text, Face& face, double size, double room, std::size_t most) {
    std::vector<String> lines = linesOf(text, face, size, room, most);
    shorten(lines, most, face, size, room);
    return lines;
}

void TextSetter::wrap(const TextItem& item, StringView text, Point at, double room, double growth) {
    const std::size_t most = linesIn(item, growth);
    auto shownLines = linesOf(text, faceOf(item), item.size, room, most);
    if (shownLines.size() > most)
        tellTight(item, text, static_cast<double>(shownLines.size()), static_cast<double>(most), true);
    shorten(shownLines, most, faceOf(item), item.size, room);
    if (item.fromBottom && !shownLines.empty())
        at.y -= static_cast<double>(shownLines.size() - 1) * item.size * kLineSpacing;
    StringView rest = text;
    for (const String& shown : shownLines) {
        showLine(item, text, shown, at, item.size);
        rest = behind(rest, shown);
        goesOn_ = rest.find_first_of(u" \n\r") != 0;
        at.y += item.size * kLineSpacing;
    }
}

TextSetter::Shown TextSetter::shown(const TextItem& item, StringView text) {
    if (!item.box || item.turned || item.text.hasPageCount())
        return {{String(text)}, 1};
    const double room = roomOf(item);
    if (item.fit == Fit::Wrap)
        return {lines(text, faceOf(item), item.size, room, linesIn(item, 0)), 1};
    if (item.fit != Fit::Shrink && !item.text.isLoneNumber())
        return {{cut(text, faceOf(item), item.size, room)}, 1};
    const double needed = width(text, faceOf(item), item.size);
    const double share = needed <= room + kTolerance ? 1 : std::max(room / needed, kSmallest);
    return {{cut(text, faceOf(item), share * item.size, room)}, share};
}

double TextSetter::growthFor(const TextItem& item, StringView text) {
    const std::size_t most = linesIn(item, document_.canvas().height());
    const std::size_t count = linesOf(text, faceOf(item), item.size, roomOf(item), most).size();
    const double bottom =
        item.baseline.y + (static_cast<double>(count) - 1) * item.size * kLineSpacing + kDescent * item.size;
    return std::max(0.0, bottom - item.box->bottom());
}

} // namespace kvtdruck::druckwerk
