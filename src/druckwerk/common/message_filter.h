// Which messages of a print are worth telling: a mistake in a layout shows with every record.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>

namespace kvtdruck::druckwerk {

/// Lets each message pass once, and of those from one place that differ in figures or in what they quote last (a
/// content, a letter) the first few. Memory stays flat however many records there are.
class MessageFilter {
  public:
    /// What is to be told of `message`; nothing where enough of its kind was told.
    std::optional<std::string> pass(const std::string& message);

  private:
    std::map<std::string, std::set<std::string>> told_; ///< by their kind
};

} // namespace kvtdruck::druckwerk
