#include "cli/printer_dialog.h"

#include "control/control.h"

#include <charconv>
#include <string>

namespace kvtdruck::cli {
namespace {

/// The choice: 0 to cancel, 1 … printers, then the file.
struct Menu {
    std::string text;
    std::size_t file;
    std::size_t preset;
};

Menu menu(const druckwerk::OptionsRequest& request, const std::vector<druckwerk::Printer>& printers,
          const std::string& chosenPrinter) {
    Menu menu{"Wohin soll die Liste „" + request.listName + "“ gedruckt werden?\n", printers.size() + 1,
              printers.size() + 1};
    for (std::size_t i = 0; i < printers.size(); ++i) {
        const auto& printer = printers[i];
        menu.text += "  " + std::to_string(i + 1) + "  " + printer.name +
                     (printer.description.empty() ? "" : " – " + printer.description) +
                     (printer.isDefault ? " (Standarddrucker)" : "") + "\n";
        if (request.output.empty() && (chosenPrinter.empty() ? printer.isDefault : printer.name == chosenPrinter))
            menu.preset = i + 1;
    }
    menu.text += "  " + std::to_string(menu.file) + "  PDF-Datei\n  0  Abbrechen\n";
    return menu;
}

/// The number of the answer, the preset for an empty one, or nothing.
std::optional<std::size_t> numberOf(const std::string& answer, const Menu& menu) {
    if (answer.empty())
        return menu.preset;
    std::size_t number = 0;
    const auto* end = answer.data() + answer.size();
    const auto parsed = std::from_chars(answer.data(), end, number);
    if (parsed.ec != std::errc() || parsed.ptr != end || number > menu.file)
        return std::nullopt;
    return number;
}

std::int32_t chooseFile(Console& console, druckwerk::OptionsRequest& request) {
    const auto preset = request.output.empty() ? request.listName + ".pdf" : request.output.string();
    const auto answer = console.ask("Datei [" + preset + "]: ");
    if (!answer)
        return kEngineCancelled;
    request.output = answer->empty() ? preset : *answer;
    return kEngineSuccess;
}

} // namespace

std::int32_t choosePrinter(Console& console, druckwerk::OptionsRequest& request,
                           druckwerk::PrintSettings& settings) {
    const auto printers = druckwerk::printers();
    const auto choices = menu(request, printers, settings.printer);
    auto question = choices.text;
    for (;;) {
        const auto answer = console.ask(question + "Auswahl [" + std::to_string(choices.preset) + "]: ");
        if (!answer)
            return kEngineCancelled;
        const auto number = numberOf(*answer, choices);
        question = "Bitte eine Zahl von 0 bis " + std::to_string(choices.file) + " eingeben.\n";
        if (!number)
            continue;
        if (*number == 0)
            return kEngineCancelled;
        if (*number == choices.file)
            return chooseFile(console, request);
        request.output.clear();
        settings.printer = printers[*number - 1].name;
        return kEngineSuccess;
    }
}

} // namespace kvtdruck::cli
