#include "druckwerk/exits/tee.h"

namespace kvtdruck::druckwerk {

namespace {

class TeeControl final : public Control {
  public:
    TeeControl(Control& pages, Control& data) : pages_(pages), data_(data) {}

    std::int32_t call(Operation operation, std::span<const Argument> arguments) override {
        switch (operation) {
        case Operation::LlPrintEnd:
        case Operation::PrintEnd:
            return inOrder(data_, pages_, operation, arguments);
        case Operation::LlDefineVariableStart:
        case Operation::LlDefineFieldStart:
        case Operation::LlDefineVariableExt:
        case Operation::LlDefineFieldExt:
        case Operation::LlPrintWithBoxStart:
        case Operation::LlPrint:
        case Operation::LlPrintFields:
        case Operation::LlPrintFieldsEnd:
            return inOrder(pages_, data_, operation, arguments);
        default:
            return pages_.call(operation, arguments);
        }
    }

    void put(std::int32_t dispatchId, bool value) override { pages_.put(dispatchId, value); }
    ObjectRef member(StringView name) override { return pages_.member(name); }

  private:
    static std::int32_t inOrder(Control& first, Control& second, Operation operation,
                                std::span<const Argument> arguments) {
        const auto code = first.call(operation, arguments);
        return code == kEngineSuccess ? second.call(operation, arguments) : code;
    }

    Control& pages_;
    Control& data_;
};

class TeeForm final : public Form {
  public:
    TeeForm(std::unique_ptr<Form> pages, std::unique_ptr<Form> data)
        : pages_(std::move(pages)), data_(std::move(data)), control_(pages_->ll60(), data_->ll60()) {}
    Control& ll60() override { return control_; }
    WindowHandle hWnd() override { return pages_->hWnd(); }
    bool visible() override { return pages_->visible(); }
    void hide() override { pages_->hide(); }

  private:
    std::unique_ptr<Form> pages_;
    std::unique_ptr<Form> data_;
    TeeControl control_;
};

} // namespace

std::unique_ptr<Form> TeeFormFactory::create() {
    return std::make_unique<TeeForm>(pages_.create(), data_.create());
}

} // namespace kvtdruck::druckwerk
