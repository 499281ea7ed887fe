// Pages and data of one print: what a report tells an engine, a data export hears as well.
#pragma once

#include "control/control.h"

namespace kvtdruck::druckwerk {

/// Forms whose control passes every call on to that of `pages`, whose answer counts, and to that of `data` what
/// concerns its records: definitions, the job, and each line once, when it has its place. A job's data are complete
/// before its pages are. Both outlive the forms.
class TeeFormFactory final : public FormFactory {
  public:
    TeeFormFactory(FormFactory& pages, FormFactory& data) : pages_(pages), data_(data) {}
    std::unique_ptr<Form> create() override;

  private:
    FormFactory& pages_;
    FormFactory& data_;
};

} // namespace kvtdruck::druckwerk
