#include "druckwerk/exits/designer.h"

#include "druckwerk/layout/layout_check.h"
#include "druckwerk/layout/layout_generator.h"

#include <pugixml.hpp>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fstream>
#include <optional>
#include <sstream>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kvtdruck::druckwerk {
namespace {

/// The layer that lists the variables and fields. It lies beside the page while the designer is open and is taken
/// out of the layout afterwards.
constexpr const char* kPalette = "Feldliste";
/// Where objects go that the user has left in the palette's layer.
constexpr const char* kBackground = "Hintergrund";
/// What a text of the palette was when the designer was opened.
constexpr const char* kMark = "data-feldliste";

/// Millimetres of the palette: its distance from the page, the height of a line, the width of a column and its
/// lines.
constexpr double kGap = 10;
constexpr double kLineHeight = 6;
constexpr double kColumnWidth = 60;
constexpr int kLinesPerColumn = 45;

std::optional<std::string> readFile(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        return std::nullopt;
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

bool writeFile(const std::filesystem::path& file, const std::string& text) {
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    stream << text;
    stream.close();
    return !stream.fail();
}

bool isPalette(const pugi::xml_node& node) {
    return std::strcmp(node.attribute("inkscape:label").value(), kPalette) == 0;
}

/// Place and text of a palette's text.
std::string describe(const pugi::xml_node& text) {
    std::string description;
    for (const char* attribute : {"x", "y", "transform"})
        description += text.attribute(attribute).value() + std::string(" ");
    for (const auto& node : text.select_nodes(".//text()"))
        description += node.node().value();
    return description;
}

void removeMarks(pugi::xml_node svg) {
    for (auto marked : svg.select_nodes((std::string("//*[@") + kMark + "]").c_str()))
        marked.node().remove_attribute(kMark);
}

/// Takes the palette out. What the user has drawn, moved or changed in its layer is kept in the background; gives
/// whether there was any.
bool removePalette(pugi::xml_node svg) {
    bool kept = false;
    while (auto palette = svg.find_child(isPalette)) {
        for (const auto& found : palette.select_nodes((std::string("*[@") + kMark + "]").c_str()))
            if (const auto text = found.node(); text.attribute(kMark).value() == describe(text))
                palette.remove_child(text);
        if (palette.select_node("*")) {
            palette.attribute("inkscape:label") = kBackground;
            kept = true;
        } else {
            svg.remove_child(palette);
        }
    }
    removeMarks(svg);
    return kept;
}

/// The page's width in the units in which the layout is drawn.
double pageWidth(const pugi::xml_node& svg) {
    std::istringstream viewBox(svg.attribute("viewBox").value());
    double left = 0, top = 0, width = 0;
    viewBox >> left >> top >> width;
    return width > 0 ? left + width : svg.attribute("width").as_double();
}

void addText(pugi::xml_node layer, double x, double y, const std::string& text, const char* weight) {
    auto node = layer.append_child("text");
    node.append_attribute("x") = x;
    node.append_attribute("y") = y;
    node.append_attribute("style") =
        (std::string("font-family:'Liberation Sans';font-size:3.5px;font-weight:") + weight).c_str();
    node.text() = text.c_str();
    node.append_attribute(kMark) = describe(node).c_str();
}

/// One column of texts beside the page for the variables, then one for the fields, each as long as it takes. The
/// layer is the lowest one, since the designer puts new objects into the topmost.
void addPalette(pugi::xml_node svg, const std::vector<Definition>& definitions) {
    const auto lowest = svg.child("g");
    auto layer = lowest ? svg.insert_child_before("g", lowest) : svg.append_child("g");
    layer.append_attribute("inkscape:groupmode") = "layer";
    layer.append_attribute("inkscape:label") = kPalette;
    double x = pageWidth(svg) + kGap;
    for (const bool fields : {false, true}) {
        int line = 0;
        addText(layer, x, 0, fields ? "Felder" : "Variablen", "bold");
        for (const auto& definition : definitions) {
            if (definition.field != fields)
                continue;
            if (line == kLinesPerColumn) {
                line = 0;
                x += kColumnWidth;
            }
            addText(layer, x, ++line * kLineHeight, "{{" + definition.name + "}}", "normal");
        }
        x += kColumnWidth;
    }
}

std::string textOf(const pugi::xml_document& document) {
    std::ostringstream text;
    document.save(text, "", pugi::format_raw);
    return text.str();
}

/// Runs the designer on `file` and waits for its end; gives 0 or an errno. It gets an application of its own, so
/// that it does not hand the file over to an Inkscape that is already open and end at once.
int runDesigner(const std::filesystem::path& file) {
    std::string program = "inkscape";
    std::string application = "--app-id-tag=kvtdruck" + std::to_string(::getpid());
    std::string path = file.string();
    char* arguments[] = {program.data(), application.data(), path.data(), nullptr};
    pid_t process = 0;
    if (const int error = ::posix_spawnp(&process, arguments[0], nullptr, nullptr, arguments, environ))
        return error;
    int status = 0;
    while (::waitpid(process, &status, 0) < 0)
        if (errno != EINTR)
            return errno;
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? 0 : ECHILD;
}

/// The layout while it is in the designer: with the palette beside its page. It is put back afterwards, without the
/// palette where the user has saved it, else as it was.
class LayoutInDesign {
  public:
    LayoutInDesign(const DesignRequest& request, const std::string& svg, bool isNew)
        : file_(request.layout), original_(svg), isNew_(isNew) {
        pugi::xml_document document;
        if (document.load_buffer(svg.data(), svg.size(), pugi::parse_full | pugi::parse_ws_pcdata)) {
            removePalette(document.document_element());
            addPalette(document.document_element(), request.definitions);
            shown_ = textOf(document);
        } else {
            shown_ = svg; // a damaged layout is opened as it is; the check says what is wrong with it
        }
    }

    /// Whether the user has left objects in the palette's layer.
    bool hasStrays() const { return hasStrays_; }

    bool open() const { return writeFile(file_, shown_); }

    /// Gives false where the file can't be read or written.
    bool putBack() {
        const auto saved = readFile(file_);
        if (!saved)
            return false;
        if (*saved != shown_)
            return writeFile(file_, withoutPalette(*saved));
        if (isNew_)
            return std::filesystem::remove(file_);
        return writeFile(file_, original_);
    }

  private:
    std::string withoutPalette(const std::string& svg) {
        pugi::xml_document document;
        if (!document.load_buffer(svg.data(), svg.size(), pugi::parse_full | pugi::parse_ws_pcdata))
            return svg;
        hasStrays_ = removePalette(document.document_element());
        return textOf(document);
    }

    std::filesystem::path file_;
    std::string original_;
    std::string shown_;
    bool isNew_;
    bool hasStrays_ = false;
};

} // namespace

std::int32_t design(const DesignRequest& request, const FindingSink& findings, std::string& message) {
    const auto existing = readFile(request.layout);
    LayoutInDesign layout(request, existing ? *existing : generateLayout(request.definitions), !existing);
    if (!layout.open()) {
        message = "Die Layoutdatei " + request.layout.string() + " kann nicht geschrieben werden.";
        return kDesignFailed;
    }
    const int error = runDesigner(request.layout);
    if (!layout.putBack())
        message = "Die Layoutdatei " + request.layout.string() + " kann nicht geschrieben werden.";
    else if (error == ENOENT)
        message = "Das Zeichenprogramm Inkscape ist nicht installiert.";
    else if (error != 0)
        message = "Das Zeichenprogramm Inkscape wurde mit einem Fehler beendet.";
    if (!message.empty())
        return kDesignFailed;
    if (layout.hasStrays())
        findings(
            {false, 0, "Objekte, die in der Ebene „Feldliste“ lagen, liegen jetzt in der Ebene „Hintergrund“."});
    if (std::filesystem::exists(request.layout))
        for (const auto& finding : checkLayout(request.layout, request.definitions))
            findings(finding);
    return 0;
}

} // namespace kvtdruck::druckwerk
