// Writes small layouts for tests.
#pragma once

#include <string>

namespace kvtdruck::druckwerk::testing {

/// A page of 100 mm × 100 mm with the layers given.
inline std::string page(const std::string& layers, const std::string& style = "") {
    return "<svg xmlns='http://www.w3.org/2000/svg' xmlns:xlink='http://www.w3.org/1999/xlink' "
           "xmlns:inkscape='http://www.inkscape.org/namespaces/inkscape' width='100mm' height='100mm' viewBox='0 0 "
           "100 100'>"
           "<style>text { font-family: 'Liberation Sans'; font-size: 3px } " +
           style + "</style>\n" + layers + "</svg>\n";
}

/// A layer with a band from `top` on.
inline std::string layer(const std::string& label, double top, double height, const std::string& content,
                         const std::string& attributes = "") {
    return "<g inkscape:groupmode='layer' inkscape:label='" + label + "' " + attributes +
           "><rect class='band' x='0' width='100' y='" + std::to_string(top) + "' height='" +
           std::to_string(height) + "'/>" + content + "</g>\n";
}

/// A field whose text stands at the left (or right) edge of its box.
inline std::string field(double x, double y, double width, const std::string& text,
                         const std::string& attributes = "", bool right = false, double height = 5) {
    return "<g class='field' " + attributes + "><rect x='" + std::to_string(x) + "' y='" + std::to_string(y) +
           "' width='" + std::to_string(width) + "' height='" + std::to_string(height) + "'/><text x='" +
           std::to_string(right ? x + width : x) + "' y='" + std::to_string(y + 3.5) + "'" +
           (right ? " text-anchor='end'" : "") + ">" + text + "</text></g>";
}

/// A list whose lines are 10 mm tall: with the footer at 90 and the first line at 20, seven lines fit on a page.
inline std::string list(const std::string& row, const std::string& more = "",
                        const std::string& rowAttributes = "") {
    return page(layer("Seitenkopf", 0, 10, field(5, 2, 60, "Kopf {{Jahr}}")) +
                layer("Kopf", 10, 10, field(5, 12, 60, "Spalte")) + layer("Zeile", 20, 10, row, rowAttributes) +
                more + layer("Seitenfuß", 90, 10, field(5, 92, 90, "Seite {{Seite}} von {{Seiten}}", "", true)));
}

} // namespace kvtdruck::druckwerk::testing
