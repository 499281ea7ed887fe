// The contents of variables and fields, read in the one notation that the report writes them in.
#pragma once

#include "druckwerk/expression/number.h"
#include "values/locale.h"

#include <functional>
#include <set>
#include <string>

namespace kvtdruck::druckwerk {

/// Reads contents. What is not what it should be is reported, once for each name.
class Contents {
  public:
    /// Takes the name of a content and a German message about it.
    using Warn = std::function<void(StringView name, const std::string& message)>;

    explicit Contents(Locale locale, Warn warn = {}) : locale_(std::move(locale)), warn_(std::move(warn)) {}

    const Locale& locale() const { return locale_; }
    Number number(StringView name, StringView text);
    void reportNoDate(StringView name, StringView text);
    /// Reports anew.
    void forgetReports() { reported_.clear(); }

  private:
    void report(StringView name, const std::string& message);

    Locale locale_;
    Warn warn_;
    std::set<String, std::less<>> reported_;
};

} // namespace kvtdruck::druckwerk
