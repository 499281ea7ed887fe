// An SVG file as a tree of elements, checked for everything that a layout must not ask for.
#pragma once

#include "druckwerk/svg/composition.h"

#include <string>

namespace kvtdruck::druckwerk {

/// The parsed file, with the files put in that it shares with others. Entities are not expanded, nothing is
/// fetched.
class SvgFile {
  public:
    /// Raises a Fault, with the line where it is known, where `source` is malformed, or asks for something outside
    /// of its folders, or would take unbounded time.
    SvgFile(const std::string& source, const LayoutFiles& files);

    xmlNode* root() const;
    /// The document as text, with the ids that were given meanwhile.
    std::string text() const;
    bool hasPlaceForLogo() const { return hasPlaceForLogo_; }

  private:
    XmlDocument document_;
    bool hasPlaceForLogo_ = false;
};

} // namespace kvtdruck::druckwerk
