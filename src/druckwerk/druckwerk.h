// The embedded report engine: the control's operations on SVG layouts, with PDF as its output.
#pragma once

#include "control/control.h"
#include "druckwerk/common/options.h"
#include "druckwerk/layout/layout_check.h"
#include "druckwerk/shared_document.h"

#include <memory>

namespace kvtdruck::druckwerk {

/// One control of the embedded engine. It holds the variables and fields, and at most one open print job.
class Druckwerk final : public Control {
  public:
    /// Jobs that share a document find it in `document`; without it they can share one within this control only.
    explicit Druckwerk(std::shared_ptr<const Options> options, std::shared_ptr<OpenDocument> document = {});
    ~Druckwerk() override;

    using Control::call;
    std::int32_t call(Operation operation, std::span<const Argument> arguments) override;
    void put(std::int32_t dispatchId, bool value) override;
    ObjectRef member(StringView name) override;

    /// The error behind the last error code; without one, code 0.
    const EngineError& lastError() const;

  private:
    class Engine;
    std::unique_ptr<Engine> engine_;
};

/// Makes forms that carry the embedded engine. They have no window. The forms of one factory share the open
/// document, and those of several share the one that is handed to each.
class DruckwerkFormFactory final : public FormFactory {
  public:
    explicit DruckwerkFormFactory(Options options, std::shared_ptr<OpenDocument> document = newDocument());
    std::unique_ptr<Form> create() override;

  private:
    std::shared_ptr<const Options> options_;
    std::shared_ptr<OpenDocument> document_;
};

} // namespace kvtdruck::druckwerk
