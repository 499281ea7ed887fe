// Which fields of a layout have too little room for what was printed into them.
#pragma once

#include "druckwerk/common/options.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace kvtdruck::cli {

class TightFields {
  public:
    void add(const druckwerk::TightField& field);
    /// One German message for each field: how many values do not fit, and the one that needs most.
    std::vector<std::string> messages() const;

  private:
    struct Tight {
        std::size_t values = 0;
        druckwerk::TightField most;
    };
    std::map<std::string, Tight> fields_; ///< by their places
};

} // namespace kvtdruck::cli
