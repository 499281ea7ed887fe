#include "cli/manual.h"

#include "cli/option_groups.h"
#include "cli/options.h"

#include <CLI/CLI.hpp>

#include <set>
#include <sstream>

namespace kvtdruck::cli {
namespace {

constexpr const char* kEnvironment = R"(.SH UMGEBUNG
.TP
.B KVTDRUCK_\fIOPTION\fR
Jede Option mit einem Wert kann in der Umgebung stehen: ihr Name in Großbuchstaben, mit \[lq]_\[rq] statt \[lq]\-\[rq],
wie KVTDRUCK_DATENBANK, KVTDRUCK_FIRMA, KVTDRUCK_KONTO_VON. Die Befehlszeile geht vor der Umgebung, die Umgebung vor
den Voreinstellungen.
.TP
.B KVTDRUCK_KENNWORT
Das Kennwort zu \-\-verbindung, wo weder \-\-kennwort\-datei noch \-\-kennwort\-fragen steht.
.TP
.B XDG_CONFIG_HOME, XDG_DATA_HOME, HOME
Wo Voreinstellungen und Anwendungsordner liegen.
.TP
.B COLUMNS
Die Breite der Hilfe.
.SH DATEIEN
.TP
.I ~/.config/kvtdruck/kvtdruck.toml
Voreinstellungen: Optionen unter ihren Namen ohne Striche, in TOML.
.TP
.I ~/.local/share/kvtdruck
Der Anwendungsordner; darin liegen unter
.I DB/BerichteLLVT
die eigenen Layouts.
.SH RÜCKGABEWERT
.TP
.B 0
erledigt
.TP
.B 1
es konnte nicht oder nicht alles gedruckt werden; warum, steht in der Fehlerausgabe
.TP
.B 2
falscher Aufruf
.TP
.B 130
abgebrochen
)";

/// A text as troff prints it as it is.
std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c == '\\')
            result += "\\e";
        else if (c == '-')
            result += "\\-";
        else if ((c == '.' || c == '\'') && (result.empty() || result.back() == '\n'))
            result += std::string("\\&") + c;
        else
            result += c;
    }
    return result;
}

/// An option with its names, its placeholder and its help.
std::string entryOf(const CLI::Option& option) {
    std::string names = option.get_positional() ? option.get_name() : option.get_name(false, true);
    for (auto comma = names.find(','); comma != std::string::npos; comma = names.find(',', comma + 2))
        names.insert(comma + 1, " ");
    const auto placeholder = option.get_type_size() == 0 ? std::string() : option.get_type_name();
    return ".TP\n\\fB" + escaped(names) + "\\fR" +
           (placeholder.empty() ? "" : " \\fI" + escaped(placeholder) + "\\fR") + "\n" +
           escaped(option.get_description()) + "\n";
}

class ManualPage {
  public:
    explicit ManualPage(const CLI::App& app) : app_(app) {}

    std::string text() {
        page_ << ".\\\" -*- coding: UTF-8 -*-\n.TH KVTDRUCK 1 \"\" \"kvtdruck " KVTDRUCK_VERSION
                 "\" \"Dienstprogramme für Benutzer\"\n"
              << ".SH NAME\nkvtdruck \\- druckt Auswertungen der Betriebsabrechnung\n"
              << ".SH ÜBERSICHT\n\\fBkvtdruck\\fR \\fIBEFEHL\\fR [\\fILISTE\\fR ...] [\\fIOPTIONEN\\fR]\n"
              << ".SH BESCHREIBUNG\n"
              << escaped(app_.get_description()) << "\n"
              << escaped(app_.get_footer()) << "\n.SH BEFEHLE\n";
        addCommands(app_, "");
        page_ << kEnvironment;
        return page_.str();
    }

  private:
    void addCommands(const CLI::App& parent, const std::string& before) {
        for (const auto* command : parent.get_subcommands({})) {
            addCommand(*command, before + command->get_name());
            addCommands(*command, before + command->get_name() + " ");
        }
    }

    /// Options that an earlier command has told in the same words are named alone.
    void addCommand(const CLI::App& command, const std::string& name) {
        page_ << ".SS " << name << "\n" << escaped(command.get_description()) << ".\n";
        std::string known;
        for (const auto* option : command.get_options()) {
            if (told_.insert(entryOf(*option)).second)
                page_ << entryOf(*option);
            else
                known += (known.empty() ? "" : ", ") + option->get_name();
        }
        if (!known.empty())
            page_ << ".PP\nWie oben: " << escaped(known) << ".\n";
        addExamples(command.get_footer());
    }

    void addExamples(const std::string& footer) {
        std::istringstream lines(footer);
        std::string line;
        std::getline(lines, line);
        page_ << ".PP\n" << escaped(line) << "\n.PP\n.nf\n";
        while (std::getline(lines, line))
            page_ << escaped(line) << "\n";
        page_ << ".fi\n";
    }

    const CLI::App& app_;
    std::ostringstream page_;
    std::set<std::string> told_;
};

} // namespace

std::string manualPage() {
    Options options;
    CLI::App app;
    addCommands(app, options);
    return ManualPage(app).text();
}

} // namespace kvtdruck::cli
