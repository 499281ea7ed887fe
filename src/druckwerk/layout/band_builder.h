// The band of one layer while its elements are read into it, each kind of element by its own reader.
#pragma once

#include "druckwerk/layout/reading.h"

#include <string>
#include <utility>

namespace kvtdruck::druckwerk {

class BandBuilder {
  public:
    /// For the layer of `node`; what lies outside of all layers has the label "" and the target of a page's band.
    BandBuilder(Reading& reading, std::string label, const Target& target, const xmlNode* node);

    Reading& reading() { return reading_; }
    Definitions& definitions() { return reading_.definitions; }
    Aggregates& aggregates() { return reading_.layout.aggregates; }
    const Target& target() const { return target_; }

    /// The layer's own condition, page break and bookmark.
    void readAttributes(const xmlNode* node);
    /// Reads an element with all that is in it; what is wrong with it is reported.
    void readElement(xmlNode* node, const Context& outer);
    /// The band is complete; says what it lacks.
    Band finish(const xmlNode* node);

    /// What holds for `node`, which lies in `outer`, its own condition left out.
    Context styled(const Context& outer, const xmlNode* node);
    /// What holds for `node`, which lies in `outer`.
    Context within(const Context& outer, const xmlNode* node);
    /// Remembers the names of an expression or a text of `node`, within its aggregates as well.
    template <class Compiled>
    void note(const Compiled& compiled, const xmlNode* node, bool needed = true) {
        const std::string place = placeOf(node);
        reading_.keep(compiled.slots(), target_.moment);
        reading_.noteNames(compiled.slots(), place, needed);
        reading_.noteNames(compiled.aggregatedSlots(), place, needed);
    }
    /// File, line, layer and element, for messages.
    std::string placeOf(const xmlNode* node) const { return reading_.placeOf(node, band_.label); }
    void warn(const xmlNode* node, const std::string& reason) {
        reading_.report(kLayoutInvalid, node, band_.label, reason, false);
    }

    template <class Content>
    Item& add(Content content, const Context& context) {
        Item& item = band_.items.emplace_back();
        item.conditions = context.conditions;
        item.content.template emplace<Content>(std::move(content));
        return item;
    }
    /// A text in the band makes the band grow with it.
    void grow() { band_.grows = true; }

  private:
    /// An element with another look under a condition is read twice: in that look where the condition holds, and as
    /// it is drawn where it does not.
    void readLooks(xmlNode* node, const Context& outer);
    void readInLook(xmlNode* node, const Context& outer);
    void readArtwork(xmlNode* node, std::string_view name, const Context& context);
    void readBandRect(const xmlNode* node, const Context& context);

    Reading& reading_;
    Target target_;
    Band band_;
    bool hasRect_ = false;
};

// --- the readers of each kind of element; a Fault says what is wrong ---

void readShape(BandBuilder& band, const xmlNode* node, std::string_view name, const Context& context);
void readText(BandBuilder& band, xmlNode* node, const Context& context, bool plain);
void readField(BandBuilder& band, xmlNode* node, const Context& context);
void readChart(BandBuilder& band, xmlNode* node, const Context& context);
/// Whether the element has a title and is nothing but drawn: then it is one picture.
bool isPicture(xmlNode* node);
/// An element that is left to the SVG library.
void readForeign(BandBuilder& band, xmlNode* node, const Context& context);

// --- what the readers share ---

/// The attribute as a length in user units, `otherwise` where there is none.
double lengthOf(const xmlNode* node, const char* name, double otherwise = 0);
/// The rectangle on the page; `what` names it in messages.
Box boxOf(const xmlNode* node, const Matrix& matrix, const char* what);
/// Whether a text within the element holds `what`.
bool containsText(const xmlNode* node, std::string_view what);

/// The first rectangle and the first text within an element, with what holds for them.
struct FieldParts {
    xmlNode* rect = nullptr;
    Context rectContext;
    xmlNode* text = nullptr;
    Context textContext;
};
void findParts(BandBuilder& band, xmlNode* node, const Context& context, FieldParts& parts);

} // namespace kvtdruck::druckwerk
