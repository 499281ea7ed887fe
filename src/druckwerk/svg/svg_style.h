// Computed styles of SVG elements: presentation attributes, style sheets with plain selectors, style attributes.
#pragma once

#include "druckwerk/common/font_request.h"
#include "druckwerk/common/geometry.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kvtdruck::druckwerk {

/// A fill or stroke: nothing, a colour, or something that only the SVG library can draw.
struct Paint {
    enum class Kind : std::uint8_t { None, Color, Complex } kind = Kind::None;
    Rgb color;
    double opacity = 1; ///< the property's
    double alpha = 1;   ///< the colour's own
};

/// The properties that matter here, as they hold for one element. Lengths are user units.
struct Style {
    // inherited
    Paint fill{Paint::Kind::Color, {}, 1};
    Paint stroke;
    Rgb currentColor;
    double strokeWidth = 1;
    int lineCap = 0;
    int lineJoin = 0;
    double miterLimit = 4;
    std::vector<double> dashes;
    double dashOffset = 0;
    bool evenOdd = false;
    FontRequest font{{"sans-serif"}, 400, false};
    double fontSize = 16;
    Anchor anchor = Anchor::Start;
    bool visible = true;
    bool unusualText = false; ///< letter spacing, decorations, vertical writing
    // not inherited
    double opacity = 1;
    Matrix transform;
    bool display = true;
    bool complex = false; ///< clips, masks, filters, markers, blending
    bool flowed = false;  ///< shape-inside and its like

    /// The style that a child begins with.
    Style inherited() const;
    /// Takes a property that matters here; false where its value is none that is understood.
    bool apply(std::string_view property, std::string_view value);
};

/// A style sheet. Only selectors for an element, a class, both, or an id take effect.
class StyleSheet {
  public:
    struct Selector {
        std::string element, cssClass, id;
        int specificity() const {
            return (id.empty() ? 0 : 100) + (cssClass.empty() ? 0 : 10) + (element.empty() ? 0 : 1);
        }
        bool matches(std::string_view name, const std::vector<std::string_view>& classes,
                     std::string_view ownId) const;
    };
    using Declaration = std::pair<std::string, std::string>;

    void add(std::string_view text);
    void apply(Style& style, std::string_view name, std::string_view classes, std::string_view id) const;
    /// Whether a rule stands for the class alone.
    bool knows(std::string_view cssClass) const;
    /// Selectors that are beyond this reader.
    const std::vector<std::string>& ignored() const { return ignored_; }
    /// Declarations with values that are beyond it.
    const std::vector<std::string>& notUnderstood() const { return notUnderstood_; }

  private:
    struct Rule {
        Selector selector;
        std::vector<Declaration> declarations;
    };
    std::vector<Rule> rules_; // by specificity, then in order
    std::vector<std::string> ignored_;
    std::vector<std::string> notUnderstood_;
};

/// A style sheet without its comments.
std::string withoutComments(std::string_view sheet);
/// The declarations of a style attribute or a rule's body.
std::vector<StyleSheet::Declaration> parseDeclarations(std::string_view text);
/// Splits at blanks and commas.
std::vector<std::string_view> splitWords(std::string_view text, std::string_view separators = " \t\r\n,");
std::string_view trimmedAscii(std::string_view text);
/// A number within ±100,000 at the beginning of `text`; nothing where there is none, or where something follows it
/// that `rest` does not take.
std::optional<double> parseNumber(std::string_view text, std::string_view* rest = nullptr);
/// A length in user units (96 to the inch); nothing where it is none, or is beyond ±100,000.
std::optional<double> parseLength(std::string_view text, double fontSize = 16);

} // namespace kvtdruck::druckwerk
