// What the reading of one layout shares: the tree, its styles, the definitions, the findings, and the layout that
// comes of it.
#pragma once

#include "druckwerk/common/fault.h"
#include "druckwerk/common/finding.h"
#include "druckwerk/layout/layout.h"
#include "druckwerk/svg/svg_file.h"
#include "druckwerk/svg/svg_style.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kvtdruck::druckwerk {

/// What holds for an element through its ancestors.
struct Context {
    Matrix matrix;
    Style style;
    std::vector<std::shared_ptr<const Condition>> conditions;
    bool hasLooks = false; ///< it, or one around it, looks otherwise under a condition
    std::string look =
        {}; ///< the class that it has then, which goes before all other styles; empty: as it is drawn

    /// Whether the element is printed in any case, in whatever look.
    bool always() const;
};

/// Where the band of a layer is kept, and what its aggregates and values refer to.
struct Target {
    std::optional<Band>* single = nullptr;
    AggregateScope scope = kPageScope;
    Moment moment = Moment::PageBegin;
    bool flows = false;
    bool rowsClose = false; ///< charts of lines may stand here
    bool isFooter = false;
};

/// Raises the Fault of a layout that is wrong.
[[noreturn]] void invalid(const std::string& reason);

struct Reading {
    const std::string& name; ///< the layout's, for messages
    Definitions& definitions;
    std::vector<Finding>& findings;
    StyleSheet sheet = {};
    Layout layout = {};

    /// Keeps a finding about `node`, which stands in the layer `layer`; nullptr where it is about the whole layout.
    void report(std::int32_t code, const xmlNode* node, const std::string& layer, const std::string& reason,
                bool error = true);

    /// Runs `step`; a Fault in it is reported with the place of `node`, and reading goes on behind it.
    template <class Step>
    void located(const xmlNode* node, const std::string& layer, const Step& step) {
        try {
            step();
        } catch (const Fault& fault) {
            report(fault.code(), node, layer, fault.what());
        }
    }

    /// Adds to `style` what the element's attributes, the style sheets and its own style say. What is not
    /// understood is reported.
    void applyStyle(const xmlNode* node, const std::string& layer, Style& style);

    /// File, line, layer and element, for messages.
    std::string placeOf(const xmlNode* node, const std::string& layer) const;

    /// Remembers names that the layout uses at `place`. What only elements with a condition show may be missing
    /// (`needed` is false): the condition tells when it is there.
    void noteNames(const std::vector<std::size_t>& slots, const std::string& place, bool needed);
    /// Has the values kept that are printed at `moment`.
    void keep(const std::vector<std::size_t>& slots, Moment moment);
};

/// Whether a layer's label is `kind`, or `kind` with something behind a blank.
bool isKind(std::string_view label, std::string_view kind);

/// Finds the levels of grouping that the layers of `root` ask for, the outermost first.
void readGroups(Reading& reading, xmlNode* root);

/// What the layer `label` is to the layout.
Target targetOf(Layout& layout, const std::string& label, const xmlNode* node);

} // namespace kvtdruck::druckwerk
