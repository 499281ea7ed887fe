// The fonts of one document: found among the installed ones, with others for the characters that a font lacks.
#pragma once

#include "druckwerk/common/font_request.h"
#include "druckwerk/text/face.h"
#include "druckwerk/text/installed_fonts.h"
#include "druckwerk/text/shaped_text.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace kvtdruck::druckwerk {

class FontLibrary {
  public:
    using Warn = std::function<void(const std::string&)>;

    FontLibrary(PdfOutput& output, Warn warn);
    ~FontLibrary();

    /// What is asked for from now on stands at `place`, which warnings name; it has to stay until the next call.
    void setPlace(const std::string* place) { place_ = place; }

    /// The face that is installed for `request`, or its substitute (with a warning). Raises a Fault where there is
    /// no font at all.
    Face& face(const FontRequest& request);
    /// A face that has the character: `preferred` if it does, or if none has it (with a warning).
    Face& faceFor(char32_t c, Face& preferred);
    /// The picture that the face has for the glyph, or nullptr.
    const GlyphPicture* picture(Face& face, std::uint32_t glyph);

    /// Sets `text` as one line. Line ends and control characters are taken as blanks.
    void shape(StringView text, Face& face, ShapedText& out);

    /// Width of `text` in ems.
    double measure(StringView text, Face& face);

    /// Writes all fonts that were used; gives the entries of the resource dictionaries /Font and /XObject.
    std::string embedFonts();
    std::string imageResources() const;

  private:
    Face* open(const FontFile& font);
    void warn(const std::string& message) const { warn_(place_ == nullptr ? message : *place_ + ": " + message); }

    PdfOutput& output_;
    Warn warn_;
    InstalledFonts installed_;
    std::map<FontRequest, Face*> byRequest_;
    std::map<std::pair<std::string, int>, std::unique_ptr<Face>> byFile_;
    std::vector<Face*> faces_;
    std::map<char32_t, Face*> fallbacks_;
    std::map<std::pair<Face*, std::uint32_t>, std::unique_ptr<GlyphPicture>> pictures_;
    std::vector<int> images_;
    ShapedText measured_;
    const std::string* place_ = nullptr;
};

} // namespace kvtdruck::druckwerk
