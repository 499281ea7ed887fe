#include "druckwerk/exits/record_writer.h"

#include "control/recording_control.h"
#include "druckwerk/exits/xlsx_writer.h"
#include "values/code_points.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

namespace kvtdruck::druckwerk {

std::optional<double> numberOf(const NamedValue& value, Contents& contents) {
    if (!value.numeric)
        return std::nullopt;
    const Number number = contents.number(value.name, value.text);
    return number.isNumber() ? std::optional(number.value) : std::nullopt;
}

bool takeNames(std::vector<String>& known, std::span<const NamedValue> values) {
    if (std::ranges::equal(known, values, {}, {}, &NamedValue::name))
        return false;
    known.clear();
    for (const auto& value : values)
        known.push_back(value.name);
    return true;
}

namespace {

/// Semicolons, numbers in the notation they came in, texts in quotes, and an apostrophe before a text that a
/// spreadsheet would run. The first column says what a line is; a line of names stands before the first values and
/// wherever the names change.
class CsvWriter final : public RecordWriter {
  public:
    CsvWriter(AtomicFile& file, Contents contents, Formulas formulas)
        : file_(file), contents_(std::move(contents)), formulas_(formulas) {
        file_.write("\xEF\xBB\xBF"); // spreadsheets take the file for UTF-8 only with this mark
    }

    void variables(std::span<const NamedValue> values) override { line(variables_, "Variablen", "V", values); }
    void record(std::span<const NamedValue> values) override { line(fields_, "Felder", "F", values); }
    void finish() override {}

  private:
    void line(std::vector<String>& known, std::string_view heading, std::string_view kind,
              std::span<const NamedValue> values) {
        if (takeNames(known, values)) {
            text_ = heading;
            for (const auto& name : known)
                quote(name);
            endLine();
        }
        text_ = kind;
        for (const auto& value : values)
            append(value);
        endLine();
    }

    void append(const NamedValue& value) {
        if (value.numeric && (value.text.empty() || numberOf(value, contents_)))
            text_ += ";" + toUtf8(value.text);
        else
            quote(value.text);
    }

    void quote(StringView text) {
        text_ += ";\"";
        if (formulas_ == Formulas::Disarm && isFormula(text))
            text_ += '\'';
        for (const char c : toUtf8(wellFormed(text)))
            text_.append(c == '"' ? 2 : 1, c);
        text_ += '"';
    }

    /// Whether a spreadsheet would take the text for a formula:
    /// https://owasp.org/www-community/attacks/CSV_Injection
    bool isFormula(StringView text) const {
        constexpr StringView kBegins = u"=+-@\t\r";
        return !text.empty() && kBegins.find(text[0]) != StringView::npos &&
               !Number::parse(text, contents_.locale()).isNumber();
    }

    void endLine() {
        text_ += "\r\n";
        file_.write(text_);
    }

    AtomicFile& file_;
    Contents contents_;
    Formulas formulas_;
    std::vector<String> variables_;
    std::vector<String> fields_;
    std::string text_;
};

/// {"abschnitte": [{"variablen": {…}, "datensaetze": [{…}, …]}, …]}: a section begins where a variable changes.
class JsonWriter final : public RecordWriter {
  public:
    JsonWriter(AtomicFile& file, Contents contents) : file_(file), contents_(std::move(contents)) {
        file_.write("{\"abschnitte\": [");
    }

    void variables(std::span<const NamedValue> values) override {
        closeSection();
        file_.write(sections_++ == 0 ? "\n" : ",\n");
        file_.write("{\"variablen\": " + object(values) + ",\n \"datensaetze\": [");
        records_ = 0;
    }
    void record(std::span<const NamedValue> values) override {
        file_.write(records_++ == 0 ? "\n  " : ",\n  ");
        file_.write(object(values));
    }
    void finish() override {
        closeSection();
        file_.write("\n]}\n");
    }

  private:
    void closeSection() {
        if (sections_ > 0)
            file_.write("\n ]}");
    }

    std::string object(std::span<const NamedValue> values) {
        std::string text = "{";
        for (const auto& value : values) {
            text += text.size() > 1 ? ", " : "";
            appendQuoted(text, wellFormed(value.name));
            text += ": ";
            append(text, value);
        }
        return text + "}";
    }

    void append(std::string& text, const NamedValue& value) {
        if (const auto number = numberOf(value, contents_)) {
            std::array<char, 32> digits{};
            const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), *number).ptr;
            text.append(digits.data(), end);
        } else if (value.numeric && value.text.empty()) {
            text += "null";
        } else {
            appendQuoted(text, wellFormed(value.text));
        }
    }

    AtomicFile& file_;
    Contents contents_;
    std::size_t sections_ = 0;
    std::size_t records_ = 0;
};

} // namespace

std::unique_ptr<RecordWriter> openWriter(const DataExportOptions& options, AtomicFile& file) {
    Contents contents(options.locale, [warn = options.warn](StringView, const std::string& message) {
        if (warn)
            warn(message);
    });
    switch (options.format) {
    case DataFormat::Csv:
        return std::make_unique<CsvWriter>(file, std::move(contents), options.formulas);
    case DataFormat::Xlsx:
        return openXlsxWriter(file, std::move(contents), options.workbook, options.warn);
    case DataFormat::Json:
        return std::make_unique<JsonWriter>(file, std::move(contents));
    }
    return nullptr;
}

} // namespace kvtdruck::druckwerk
