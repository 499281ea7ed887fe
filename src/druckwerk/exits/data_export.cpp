#include "druckwerk/exits/data_export.h"

#include "druckwerk/common/fault.h"
#include "druckwerk/exits/record_writer.h"

#include <optional>
#include <system_error>
#include <utility>
#include <vector>

namespace kvtdruck::druckwerk {
namespace {

/// Variables or fields in the order of their first definition.
class NamedValues {
  public:
    /// Takes a definition; gives whether it changed anything.
    bool define(StringView name, StringView text, bool numeric) {
        auto& value = find(name);
        if (value.text == text && value.numeric == numeric && !isNew_)
            return false;
        value.text = text;
        value.numeric = numeric;
        return true;
    }
    void clear() { values_.clear(); }
    std::span<const NamedValue> values() const { return values_; }

  private:
    /// A report defines its names in the same order for every record, so the name asked for is nearly always the
    /// one behind the last.
    NamedValue& find(StringView name) {
        isNew_ = false;
        for (std::size_t tried = 0; tried < values_.size(); ++tried) {
            next_ = (next_ + 1) % values_.size();
            if (values_[next_].name == name)
                return values_[next_];
        }
        isNew_ = true;
        next_ = values_.size();
        return values_.emplace_back(NamedValue{String(name), {}, false});
    }

    std::vector<NamedValue> values_;
    std::size_t next_ = 0;
    bool isNew_ = false;
};

} // namespace

/// The file of a job, or of several that share it, while it is open.
struct DataFile {
    /// The file and what writes it.
    struct Open {
        explicit Open(const DataExportOptions& options)
            : file(std::make_unique<AtomicFile>(options.output)), writer(openWriter(options, *file)) {}

        std::unique_ptr<AtomicFile> file;
        std::unique_ptr<RecordWriter> writer;
    };

    std::optional<Open> open;
};

namespace {

class DataExport final : public Control {
  public:
    DataExport(std::shared_ptr<const DataExportOptions> options, std::shared_ptr<DataFile> file)
        : options_(std::move(options)), file_(std::move(file)) {}
    DataExport(const DataExport&) = delete;
    DataExport& operator=(const DataExport&) = delete;
    ~DataExport() override { drop(); } // a report that stopped on an error leaves its job behind

    std::int32_t call(Operation operation, std::span<const Argument> arguments) override {
        switch (operation) {
        case Operation::LlDefineVariableStart:
            variables_.clear();
            variablesChanged_ = true;
            return kEngineSuccess;
        case Operation::LlDefineFieldStart:
            fields_.clear();
            return kEngineSuccess;
        case Operation::LlDefineVariableExt:
            variablesChanged_ |= define(variables_, arguments);
            return kEngineSuccess;
        case Operation::LlDefineFieldExt:
            define(fields_, arguments);
            return kEngineSuccess;
        case Operation::LlSetPrinterToDefault:
        case Operation::LlPrintOptionsDialog:
        case Operation::LlPreviewSetTempPath:
            return kEngineSuccess;
        case Operation::LlPrintWithBoxStart:
            return guarded([&] { start(); });
        case Operation::LlPrint:
        case Operation::LlPrintFieldsEnd:
            return inJob([] {});
        case Operation::LlPrintFields:
            return inJob([&] { writeRecord(); });
        case Operation::LlPrintSetBoxText:
            return inJob([&] { showProgress(arguments); });
        case Operation::LlPrintEnd:
            return inJob([&] { finish(); });
        case Operation::PrintEnd:
            drop();
            return kEngineSuccess;
        default:
            return report(
                {kNotOffered, "Der Datenexport kennt diese Operation nicht: " + toUtf8(nameOf(operation))});
        }
    }

    void put(std::int32_t, bool) override {}
    ObjectRef member(StringView) override { throw RuntimeError(ErrorNumber::MemberNotFound); }

  private:
    static bool define(NamedValues& definitions, std::span<const Argument> arguments) {
        return definitions.define(std::get<StringView>(arguments[0]), std::get<StringView>(arguments[1]),
                                  std::get<std::int32_t>(arguments[2]) == kTypeNumeric);
    }

    void start() {
        drop();
        failed_ = false;
        variablesChanged_ = true;
        if (!file_->open)
            file_->open.emplace(*options_);
        inJob_ = true;
    }

    void drop() {
        if (inJob_)
            file_->open.reset();
        inJob_ = false;
    }

    void writeRecord() {
        if (variablesChanged_)
            file_->open->writer->variables(variables_.values());
        variablesChanged_ = false;
        if (!fields_.values().empty())
            file_->open->writer->record(fields_.values());
    }

    void showProgress(std::span<const Argument> arguments) const {
        if (options_->progress)
            options_->progress(
                {toUtf8(std::get<StringView>(arguments[0])), std::get<std::int32_t>(arguments[1]), 0});
    }

    void finish() {
        if (!options_->place || !options_->place->more) {
            file_->open->writer->finish();
            if (options_->finished)
                options_->finished(std::move(file_->open->file));
            else
                file_->open->file->commit();
            file_->open.reset();
        }
        inJob_ = false;
    }

    /// The result of a step of an open job. The rest of a job that has failed is answered like a cancelled one, so
    /// that it ends without a second message.
    template <class Step>
    std::int32_t inJob(Step&& step) {
        if (failed_ || (options_->cancelled && *options_->cancelled))
            return kEngineCancelled;
        if (!inJob_)
            return report({kWrongOrder, "Es ist kein Druckauftrag offen."});
        return guarded(step);
    }

    template <class Step>
    std::int32_t guarded(Step&& step) {
        try {
            step();
            return kEngineSuccess;
        } catch (const std::system_error& error) {
            return outputFailed(reasonForWriting(error.code().value()));
        } catch (const std::exception& error) {
            return outputFailed(error.what());
        }
    }

    /// A job that could not write once writes no more; its file is dropped.
    std::int32_t outputFailed(const std::string& reason) {
        drop();
        failed_ = true;
        return report({kOutputFailed, options_->output.string() + " kann nicht geschrieben werden: " + reason});
    }

    std::int32_t report(const EngineError& error) const {
        if (options_->error)
            options_->error(error);
        return error.code;
    }

    std::shared_ptr<const DataExportOptions> options_;
    NamedValues variables_;
    NamedValues fields_;
    bool variablesChanged_ = true;
    bool failed_ = false;
    std::shared_ptr<DataFile> file_;
    bool inJob_ = false;
};

class DataExportForm final : public Form {
  public:
    DataExportForm(std::shared_ptr<const DataExportOptions> options, std::shared_ptr<DataFile> file)
        : control_(std::move(options), std::move(file)) {}
    Control& ll60() override { return control_; }
    WindowHandle hWnd() override { return {}; }
    bool visible() override { return false; }
    void hide() override {}

  private:
    DataExport control_;
};

} // namespace

std::string endingOf(DataFormat format) {
    return format == DataFormat::Csv ? ".csv" : format == DataFormat::Xlsx ? ".xlsx" : ".json";
}

std::string mimeTypeOf(DataFormat format) {
    return format == DataFormat::Csv    ? "text/csv"
           : format == DataFormat::Xlsx ? "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet"
                                        : "application/json";
}

DataExportFormFactory::DataExportFormFactory(DataExportOptions options)
    : options_(std::make_shared<const DataExportOptions>(std::move(options))), file_(std::make_shared<DataFile>()) {
}

std::unique_ptr<Form> DataExportFormFactory::create() {
    return std::make_unique<DataExportForm>(options_, file_);
}

} // namespace kvtdruck::druckwerk
