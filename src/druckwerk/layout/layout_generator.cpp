#include "druckwerk/layout/layout_generator.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace kvtdruck::druckwerk {

namespace {

constexpr double kMargin = 15;
constexpr double kRowHeight = 5.2;
constexpr double kNarrowest = 14; // of a column

std::string millimetres(double value) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.6g", value);
    return text.data();
}

/// SVG text of one layout: letterhead, heading, a table of the fields (or a form, where they are many), the
/// remaining variables as label and value, page numbers.
class Generator {
  public:
    explicit Generator(const std::vector<Definition>& definitions) {
        for (const auto& definition : definitions) {
            if (definition.field)
                fields_.push_back(definition);
            else if (definition.name.rfind("Fnr", 0) != 0 && definition.name != "FnzPlz" &&
                     definition.name != "Ueberschrift")
                variables_.push_back(definition);
            else
                header_.push_back(definition.name);
        }
        if (usableWidth() / static_cast<double>(std::max<std::size_t>(1, fields_.size())) < kNarrowest)
            std::swap(width_, height_);
        asForm_ = usableWidth() / static_cast<double>(std::max<std::size_t>(1, fields_.size())) < kNarrowest;
    }

    std::string generate() {
        out_ = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\"\n"
               "     xmlns:inkscape=\"http://www.inkscape.org/namespaces/inkscape\"\n     width=\"" +
               millimetres(width_) + "mm\" height=\"" + millimetres(height_) + "mm\" viewBox=\"0 0 " +
               millimetres(width_) + " " + millimetres(height_) +
               "\">\n"
               "  <style>\n"
               "    text { font-family: 'Liberation Sans'; font-size: 2.75px; fill: #1f2933; }\n"
               "    .titel { font-size: 6.4px; font-weight: bold; fill: #1b3a5c; }\n"
               "    .firma { font-size: 4.2px; font-weight: bold; fill: #1b3a5c; }\n"
               "    .klein { font-size: 2.4px; fill: #5c6873; }\n"
               "    .kopf { font-weight: bold; fill: #1b3a5c; }\n"
               "    .regel { stroke: #1b3a5c; stroke-width: 0.35; }\n"
               "    .zebra { fill: #f5f7fa; }\n"
               "    .rahmen { fill: none; stroke: none; }\n"
               "    .band { fill: none; stroke: #4aa3df; stroke-width: 0.12; stroke-dasharray: 1, 1; }\n"
               "  </style>\n";
        pageHeader();
        if (asForm_)
            form();
        else if (!fields_.empty())
            table();
        footer();
        return out_ + "</svg>\n";
    }

  private:
    double usableWidth() const { return width_ - 2 * kMargin; }
    bool has(const char* name) const { return std::find(header_.begin(), header_.end(), name) != header_.end(); }

    void beginLayer(const std::string& name, const std::string& attributes = {}) {
        out_ += "  <g inkscape:groupmode=\"layer\" inkscape:label=\"" + name + "\"" + attributes + ">\n";
    }
    void endLayer() { out_ += "  </g>\n"; }

    void bandRect(double y, double height) {
        out_ += "    <rect class=\"band\" x=\"0\" y=\"" + millimetres(y) + "\" width=\"" + millimetres(width_) +
                "\" height=\"" + millimetres(height) + "\"/>\n";
    }

    void field(double x, double y, double width, const std::string& text, const std::string& cssClass,
               bool right = false, const char* fit = "cut", double height = kRowHeight) {
        out_ += "    <g class=\"field\" data-fit=\"" + std::string(fit) + "\"><rect class=\"rahmen\" x=\"" +
                millimetres(x) + "\" y=\"" + millimetres(y) + "\" width=\"" + millimetres(width) + "\" height=\"" +
                millimetres(height) + "\"/><text" + (cssClass.empty() ? "" : " class=\"" + cssClass + "\"") +
                " x=\"" + millimetres(right ? x + width : x) + "\" y=\"" + millimetres(y + height * 0.66) + "\"" +
                (right ? " text-anchor=\"end\"" : "") + ">" + text + "</text></g>\n";
    }

    void rule(double y) {
        out_ += "    <line class=\"regel\" x1=\"" + millimetres(kMargin) + "\" y1=\"" + millimetres(y) +
                "\" x2=\"" + millimetres(width_ - kMargin) + "\" y2=\"" + millimetres(y) + "\"/>\n";
    }

    static std::string placeholder(const Definition& definition) {
        const bool code = definition.name == "Plz" || definition.name.find("Nr") != std::string::npos ||
                          definition.name.find("Jahr") != std::string::npos ||
                          definition.name.find("jahr") != std::string::npos ||
                          definition.name.find("ummer") != std::string::npos ||
                          definition.name.find("Konto") != std::string::npos;
        return "{{" + definition.name + (definition.numeric ? code ? "|0" : "|#.##0,00" : "") + "}}";
    }

    void pageHeader() {
        beginLayer("Seitenkopf");
        double y = 10;
        if (has("FnrName1")) {
            field(kMargin, y, usableWidth(), "{{FnrName1}}", "firma", false, "shrink", 6);
            y += 6;
        }
        if (has("FnrAnschriftGes")) {
            field(kMargin, y, usableWidth(), "{{FnrAnschriftGes}}", "klein", false, "shrink", 4);
            y += 5;
        }
        rule(y);
        y += 3;
        if (has("Ueberschrift")) {
            field(kMargin, y, usableWidth(), "{{Ueberschrift}}", "titel", false, "shrink", 9);
            y += 11;
        }
        y = pairs(variables_, y, height_ - 30);
        endLayer();
        y_ = y + 3;
    }

    /// Names and values in two or three columns; gives the height reached.
    double pairs(const std::vector<Definition>& definitions, double y, double bottom) {
        const std::size_t columns = definitions.size() > 60 ? 4 : definitions.size() > 20 ? 3 : 2;
        const std::size_t rows = std::max<std::size_t>(1, (definitions.size() + columns - 1) / columns);
        const double width = usableWidth() / static_cast<double>(columns);
        const double step = std::min(kRowHeight, (bottom - y) / static_cast<double>(rows));
        std::size_t row = 0;
        double x = kMargin;
        for (const auto& definition : definitions) {
            const double top = y + step * static_cast<double>(row);
            field(x, top, width * 0.5, definition.name, "klein", false, "shrink", step);
            field(x + width * 0.5, top, width * 0.44, placeholder(definition), "", definition.numeric, "shrink",
                  step);
            if (++row == rows) {
                row = 0;
                x += width;
            }
        }
        return y + step * static_cast<double>(rows);
    }

    void table() {
        // Texts are given twice the room of numbers.
        double parts = 0;
        for (const auto& definition : fields_)
            parts += definition.numeric ? 1 : 2;
        const double headTop = std::min(y_, height_ - 60);
        beginLayer("Kopf");
        bandRect(headTop, 7);
        columns(headTop, 7, parts, true);
        rule(headTop + 7);
        endLayer();
        const bool breaks = std::any_of(fields_.begin(), fields_.end(),
                                        [](const Definition& field) { return field.name == "Seitenwechsel"; });
        beginLayer("Zeile", breaks ? " data-new-page=\"Seitenwechsel = 2\"" : "");
        bandRect(headTop + 7, kRowHeight);
        out_ += "    <rect class=\"zebra\" x=\"" + millimetres(kMargin) + "\" y=\"" + millimetres(headTop + 7) +
                "\" width=\"" + millimetres(usableWidth()) + "\" height=\"" + millimetres(kRowHeight) +
                "\" data-if=\"Seitenzeile % 2 = 0\"/>\n";
        columns(headTop + 7, kRowHeight, parts, false);
        endLayer();
    }

    void columns(double y, double height, double parts, bool heads) {
        double x = kMargin;
        for (const auto& definition : fields_) {
            const double width = usableWidth() / parts * (definition.numeric ? 1 : 2);
            field(x + 0.8, y, width - 1.6, heads ? definition.name : placeholder(definition), heads ? "kopf" : "",
                  definition.numeric, heads || definition.numeric ? "shrink" : "cut", height);
            x += width;
        }
    }

    /// Too many fields for columns: each record is a block of names and values.
    void form() {
        const std::size_t columns = fields_.size() > 60 ? 4 : 3;
        const std::size_t rows = (fields_.size() + columns - 1) / columns;
        const double wanted = static_cast<double>(rows) * kRowHeight + 4;
        const double top = std::min(y_, height_ - 60);
        const double height = std::min(wanted, height_ - 22 - top);
        beginLayer("Zeile");
        bandRect(top, height);
        rule(top + 0.5);
        pairs(fields_, top + 2, top + height - 2);
        endLayer();
    }

    void footer() {
        const double top = height_ - 17;
        beginLayer("Seitenfuß");
        bandRect(top, 7);
        rule(top);
        field(kMargin, top + 1, usableWidth() / 2, "Gedruckt am {{Druckdatum}}", "klein");
        field(kMargin + usableWidth() / 2, top + 1, usableWidth() / 2, "Seite {{Seite}} von {{Seiten}}", "klein",
              true);
        endLayer();
    }

    std::vector<Definition> fields_;
    std::vector<Definition> variables_;
    std::vector<std::string> header_;
    double width_ = 210;
    double height_ = 297;
    bool asForm_ = false;
    double y_ = 0;
    std::string out_;
};

} // namespace

std::string generateLayout(const std::vector<Definition>& definitions) {
    return Generator(definitions).generate();
}

} // namespace kvtdruck::druckwerk
