// The variables and fields that a report defines, by slot.
#pragma once

#include "druckwerk/common/definition.h"
#include "druckwerk/expression/contents.h"
#include "values/variant.h"

#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

namespace kvtdruck::druckwerk {

/// The moments whose values a layout can print.
enum class Moment : std::uint8_t {
    Now,       ///< as defined last
    Printed,   ///< as they were at the line printed last
    PageBegin, ///< as they were when the page was begun
};

/// Variables and fields share one space of names; the later definition of a name counts. A record's names come in
/// the same order every time, so each slot remembers its successor and a name is looked up only where the guess is
/// wrong.
class Definitions {
  public:
    explicit Definitions(Contents contents = Contents(germanLocale())) : contents_(std::move(contents)) {}

    struct Value {
        String text;
        bool defined = false;
        void set(StringView value) {
            text.assign(value);
            parsed = false;
            defined = true;
        }

      private:
        friend class Definitions;
        mutable Number number;
        mutable bool parsed = false;
    };

    /// The notation of all contents, and of what is printed.
    const Locale& locale() const { return contents_.locale(); }

    void define(StringView name, StringView value, bool numeric, bool field);
    /// Forgets all fields, or all variables.
    void forget(bool fields);

    /// The slot of `name`, new and undefined where nothing has defined it yet. Slots stay valid for good.
    std::size_t slotOf(StringView name);
    bool isDefined(std::size_t slot) const { return slots_[slot]->values[0].defined; }
    StringView nameOf(std::size_t slot) const { return slots_[slot]->name; }

    /// The slot's value at `moment`; where it had none then, its present one.
    const Value& value(std::size_t slot, Moment moment) const {
        const Slot& found = *slots_[slot];
        const Value& then = found.values[static_cast<std::size_t>(moment)];
        return then.defined ? then : found.values[0];
    }

    /// The number that the slot's value at `moment` holds. A text that is none is reported.
    const Number& number(std::size_t slot, Moment moment) const {
        const Value& found = value(slot, moment);
        if (!found.parsed) {
            found.number = contents_.number(slots_[slot]->name, found.text);
            found.parsed = true;
        }
        return found.number;
    }
    /// The date that the slot's value at `moment` holds, the zero date where it is midnight alone; nothing where it
    /// is empty or another time of day. For `monthAlone` a number from 1 to 12 is a day of that month. A text that
    /// is none is reported.
    std::optional<Date> date(std::size_t slot, Moment moment, bool monthAlone) const;

    /// Asks for the slot's value at `moment` to be kept.
    void keep(std::size_t slot, Moment moment);
    /// Makes the present values those of `moment`, for the slots that are kept for it.
    void mark(Moment moment);
    /// Forgets what is kept, and that it should be, and what was reported.
    void release();

    /// What is defined, in the order of the first definitions.
    std::vector<Definition> list() const;
    /// The present text of `name`, or "".
    StringView textOf(StringView name) const;

  private:
    struct Slot {
        String name;
        std::array<Value, 3> values;
        bool numeric = false;
        bool field = false;
        std::size_t successor = 0;
    };
    mutable Contents contents_;                ///< remembers what it has reported
    std::vector<std::unique_ptr<Slot>> slots_; ///< each stays where it is: `index_` refers to its name
    std::unordered_map<StringView, std::size_t> index_;
    std::vector<std::size_t> order_;
    std::array<std::vector<std::size_t>, 3> kept_;
    std::size_t last_ = 0;
};

} // namespace kvtdruck::druckwerk
