// Places the texts of a layout: aligned, wrapped, shrunk or cut as their fields say.
#pragma once

#include "druckwerk/common/options.h"
#include "druckwerk/layout/layout.h"
#include "druckwerk/page/addresses.h"
#include "druckwerk/page/document.h"

namespace kvtdruck::druckwerk {

class TextSetter {
  public:
    /// Fonts are named by their numbers among `fonts`.
    /// `tight` takes what does not fit, `warn` numbers that can't be read.
    TextSetter(PdfDocument& document, const std::vector<Layout::Font>& fonts, FontLibrary::Warn warn,
               TightFieldSink tight);
    TextSetter(const TextSetter&) = delete;
    TextSetter& operator=(const TextSetter&) = delete;
    ~TextSetter();

    Face& face(std::size_t font) { return *faces_[font]; }

    /// Sets `text` in the place of `item`, moved down by `down`. A field that grows has `growth` more room.
    void set(const TextItem& item, StringView text, double down, double growth = 0);

    /// What `set` shows of `text` in a field that has not grown.
    struct Shown {
        std::vector<String> lines;
        double share; ///< of the text's size
    };
    Shown shown(const TextItem& item, StringView text);

    /// How much taller the field must be for all of `text` to fit.
    double growthFor(const TextItem& item, StringView text);

    /// Sets a line without a field.
    void line(StringView text, Face& face, Point at, double size, Rgb color, Anchor anchor);
    double width(StringView text, Face& face, double size) { return document_.fonts().measure(text, face) * size; }
    /// The longest beginning of `text` that fits into `width`, with an ellipsis where something is left out.
    String cut(StringView text, Face& face, double size, double width);

    /// `text` broken into at most `most` lines; what does not fit is cut with an ellipsis.
    std::vector<String> lines(StringView text, Face& face, double size, double room, std::size_t most);

  private:
    /// Sets a line of `whole`, the text of `item`, of which it may be a part.
    void showLine(const TextItem& item, StringView whole, StringView text, Point at, double size);
    /// Sets the line that was shaped last; `at` is the left end of its baseline. Its addresses become links.
    void showShaped(const TextItem& item, StringView whole, StringView text, Point at, double size);
    /// The same where the document has a structure: each link is a part of its own there.
    void showParts(const TextItem& item, StringView text, const std::vector<Address>& links, Point at, double size);
    /// Sets a blank where the text of a line begins that stands behind other text of its element and does not go on
    /// with its word: readers have no other sign that a word ends there (ISO 32000-1, 14.8.2.5).
    void separate(const TextItem& item, Point at, double size);
    /// Sets what was shaped last, which is `text`; its last character may be the hyphen of a word that goes on.
    void show(StringView text, Point at, double size, Rgb color, bool breaksWord = false);
    /// Where an address of the line is, whose baseline begins at `at`.
    Box boxOf(const Address& address, const TextItem& item, StringView text, Point at, double size);
    void showPageCount(const TextItem& item, StringView text, Point at);
    void shrink(const TextItem& item, StringView text, Point at, double room);
    void wrap(const TextItem& item, StringView text, Point at, double room, double growth);
    std::vector<String> linesOf(StringView text, Face& face, double size, double room, std::size_t most);
    void shorten(std::vector<String>& lines, std::size_t most, Face& face, double size, double room);
    String ellipsized(StringView text, Face& face, double size, double room);
    std::size_t fitting(StringView text, Face& face, double size, double width, StringView end);

    void tellTight(const TextItem& item, StringView text, double needed, double room, bool lines = false) const;

    Face& faceOf(const TextItem& item) { return face(item.font); }

    PdfDocument& document_;
    std::vector<Face*> faces_;
    FontLibrary::Warn warn_;
    TightFieldSink tight_;
    ShapedText shaped_;
    ShapedText blank_;
    bool goesOn_ = false; ///< the next line begins within the word that the last one ended with
};

} // namespace kvtdruck::druckwerk
