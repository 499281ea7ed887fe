// The list of variables and fields beside a layout's page while the layout is in the designer.
#pragma once

#include "druckwerk/common/definition.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kvtdruck::druckwerk {

/// What an author should know of a variable or field.
struct FieldNote {
    std::string meaning; ///< German, with its unit
    std::string pattern; ///< as its like are printed; empty for a text
};
using FieldNotes = std::function<FieldNote(const Definition&)>;

/// The layout `svg` with the list beside its page: each name as a placeholder with its pattern, its value and its
/// meaning. Nothing where it is no well-formed XML.
std::optional<std::string> withPalette(const std::string& svg, const std::vector<Definition>& definitions,
                                       const FieldNotes& notes);

/// The layout without the list; nothing where it is no well-formed XML. What the user has drawn, moved or changed
/// in the list's layer is kept in the background, and `hasStrays` says that there was any.
std::optional<std::string> withoutPalette(const std::string& svg, bool& hasStrays);

} // namespace kvtdruck::druckwerk
