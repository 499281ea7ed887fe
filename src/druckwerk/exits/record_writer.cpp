#include "druckwerk/exits/record_writer.h"

#include "control/recording_control.h"
#include "values/characters.h"
#include "values/conversion.h"

#include <xlsxwriter.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace kvtdruck::druckwerk {
namespace {

/// The finite number that a numeric value holds; an empty value, a text in a numeric value and NaN hold none.
std::optional<double> numberOf(const NamedValue& value, const Locale& locale) {
    if (!value.numeric)
        return std::nullopt;
    const auto number = numberIn(value.text, locale);
    return number && std::isfinite(*number) ? number : std::nullopt;
}

/// Whether the names of `values` differ from `known`, which then takes them.
bool takeNames(std::vector<String>& known, std::span<const NamedValue> values) {
    if (std::ranges::equal(known, values, {}, {}, &NamedValue::name))
        return false;
    known.clear();
    for (const auto& value : values)
        known.push_back(value.name);
    return true;
}

/// A text file; `close` says whether everything has reached the disk.
class TextFile {
  public:
    explicit TextFile(const std::filesystem::path& file) : file_(std::fopen(file.c_str(), "wb")) {
        if (!file_)
            fail();
    }
    TextFile(const TextFile&) = delete;
    TextFile& operator=(const TextFile&) = delete;
    ~TextFile() {
        if (file_)
            std::fclose(file_);
    }

    void write(std::string_view text) {
        if (std::fwrite(text.data(), 1, text.size(), file_) != text.size())
            fail();
    }
    void close() {
        if (std::fclose(std::exchange(file_, nullptr)) != 0)
            fail();
    }

  private:
    [[noreturn]] static void fail() { throw std::system_error(errno, std::generic_category()); }

    std::FILE* file_;
};

/// Semicolons, numbers in the notation they came in, texts in quotes. The first column says what a line is; a line
/// of names stands before the first values and wherever the names change.
class CsvWriter final : public RecordWriter {
  public:
    CsvWriter(const std::filesystem::path& file, const Locale& locale) : file_(file), locale_(locale) {
        file_.write("\xEF\xBB\xBF"); // spreadsheets take the file for UTF-8 only with this mark
    }

    void variables(std::span<const NamedValue> values) override { line(variables_, "Variablen", "V", values); }
    void record(std::span<const NamedValue> values) override { line(fields_, "Felder", "F", values); }
    void finish() override { file_.close(); }

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
        if (value.numeric && (value.text.empty() || numberOf(value, locale_)))
            text_ += ";" + toUtf8(value.text);
        else
            quote(value.text);
    }

    void quote(StringView text) {
        text_ += ";\"";
        for (const char c : toUtf8(text))
            text_.append(c == '"' ? 2 : 1, c);
        text_ += '"';
    }

    void endLine() {
        text_ += "\r\n";
        file_.write(text_);
    }

    TextFile file_;
    Locale locale_;
    std::vector<String> variables_;
    std::vector<String> fields_;
    std::string text_;
};

/// {"abschnitte": [{"variablen": {…}, "datensaetze": [{…}, …]}, …]}: a section begins where a variable changes.
class JsonWriter final : public RecordWriter {
  public:
    JsonWriter(const std::filesystem::path& file, const Locale& locale) : file_(file), locale_(locale) {
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
        file_.close();
    }

  private:
    void closeSection() {
        if (sections_ > 0)
            file_.write("\n ]}");
    }

    std::string object(std::span<const NamedValue> values) const {
        std::string text = "{";
        for (const auto& value : values) {
            text += text.size() > 1 ? ", " : "";
            appendQuoted(text, value.name);
            text += ": ";
            append(text, value);
        }
        return text + "}";
    }

    void append(std::string& text, const NamedValue& value) const {
        if (const auto number = numberOf(value, locale_)) {
            std::array<char, 32> digits{};
            const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), *number).ptr;
            text.append(digits.data(), end);
        } else if (value.numeric && value.text.empty()) {
            text += "null";
        } else {
            appendQuoted(text, value.text);
        }
    }

    TextFile file_;
    Locale locale_;
    std::size_t sections_ = 0;
    std::size_t records_ = 0;
};

/// What a cell of the format can hold (ECMA-376 leaves it to Excel, whose documented limit this is).
constexpr std::size_t kLongestCell = 32767;

/// Two sheets, "Variablen" and "Felder", joined by the number of the section in their first column. Rows go
/// straight to the disk, so memory stays flat; a full sheet is continued on another one.
class XlsxWriter final : public RecordWriter {
  public:
    XlsxWriter(const std::filesystem::path& file, const Locale& locale, std::function<void(std::string_view)> warn)
        : folder_(file.parent_path().empty() ? "." : file.parent_path()), locale_(locale), warn_(std::move(warn)) {
        TextFile(file).close(); // the library opens the file at the end only: an error is wanted now
        lxw_workbook_options options{};
        options.constant_memory = LXW_TRUE;
        options.tmpdir = folder_.data();
        workbook_ = workbook_new_opt(file.c_str(), &options);
        if (!workbook_)
            throw std::bad_alloc();
        heading_ = workbook_add_format(workbook_);
        format_set_bold(heading_);
    }
    XlsxWriter(const XlsxWriter&) = delete;
    XlsxWriter& operator=(const XlsxWriter&) = delete;
    ~XlsxWriter() override {
        if (workbook_)
            lxw_workbook_free(workbook_);
    }

    void variables(std::span<const NamedValue> values) override {
        ++section_;
        row(variables_, values);
    }
    void record(std::span<const NamedValue> values) override { row(fields_, values); }

    void finish() override {
        errno = 0;
        const auto result = workbook_close(std::exchange(workbook_, nullptr));
        if (result != LXW_NO_ERROR && errno != 0)
            throw std::system_error(errno, std::generic_category());
        check(result);
    }

  private:
    struct Sheet {
        explicit Sheet(std::string name) : title(std::move(name)) {}
        std::string title;
        int number = 0;
        lxw_worksheet* sheet = nullptr;
        lxw_row_t next = 0;
        std::vector<String> names;
    };

    void row(Sheet& sheet, std::span<const NamedValue> values) {
        // Room for a line of names and one of values.
        if (!sheet.sheet || sheet.next + 2 > LXW_ROW_MAX)
            addSheet(sheet);
        if (takeNames(sheet.names, values)) {
            lxw_col_t column = 0;
            text(sheet, column++, u"Abschnitt", heading_);
            for (const auto& name : sheet.names)
                text(sheet, column++, name, heading_);
            ++sheet.next;
        }
        lxw_col_t column = 0;
        check(worksheet_write_number(sheet.sheet, sheet.next, column++, section_, nullptr));
        for (const auto& value : values) {
            if (const auto number = numberOf(value, locale_))
                check(worksheet_write_number(sheet.sheet, sheet.next, column++, *number, nullptr));
            else
                text(sheet, column++, value.text, nullptr);
        }
        ++sheet.next;
    }

    void addSheet(Sheet& sheet) {
        const auto name = sheet.title + (++sheet.number > 1 ? " " + std::to_string(sheet.number) : "");
        sheet.sheet = workbook_add_worksheet(workbook_, name.c_str());
        if (!sheet.sheet)
            throw std::bad_alloc();
        sheet.next = 0;
        sheet.names.clear();
    }

    void text(Sheet& sheet, lxw_col_t column, StringView value, lxw_format* format) {
        if (value.size() > kLongestCell) {
            value = value.substr(0, kLongestCell);
            if (warn_)
                warn_("Ein Text hat mehr als 32.767 Zeichen; in der XLSX-Datei steht nur sein Anfang.");
        }
        if (!value.empty())
            check(
                worksheet_write_string(sheet.sheet, sheet.next, column, toUtf8(wellFormed(value)).c_str(), format));
    }

    static void check(lxw_error result) {
        if (result != LXW_NO_ERROR)
            throw std::runtime_error(lxw_strerror(result));
    }

    std::string folder_;
    Locale locale_;
    std::function<void(std::string_view)> warn_;
    lxw_workbook* workbook_ = nullptr;
    lxw_format* heading_ = nullptr;
    Sheet variables_{"Variablen"};
    Sheet fields_{"Felder"};
    int section_ = 0;
};

} // namespace

std::unique_ptr<RecordWriter> openWriter(DataFormat format, const std::filesystem::path& file, const Locale& locale,
                                         std::function<void(std::string_view)> warn) {
    switch (format) {
    case DataFormat::Csv:
        return std::make_unique<CsvWriter>(file, locale);
    case DataFormat::Xlsx:
        return std::make_unique<XlsxWriter>(file, locale, std::move(warn));
    case DataFormat::Json:
        return std::make_unique<JsonWriter>(file, locale);
    }
    return nullptr;
}

} // namespace kvtdruck::druckwerk
