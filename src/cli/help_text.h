// How help is set: German words, as wide as the terminal.
#pragma once

#include <memory>

namespace CLI {
class FormatterBase;
}

namespace kvtdruck::cli {

std::shared_ptr<CLI::FormatterBase> germanHelp();

} // namespace kvtdruck::cli
