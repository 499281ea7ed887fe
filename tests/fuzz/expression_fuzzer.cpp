// Any bytes as an expression, a text with placeholders, a number, a pattern.
#include "druckwerk/common/fault.h"
#include "druckwerk/expression/text_template.h"

#include <cstddef>
#include <cstdint>

namespace {

using namespace kvtdruck;
using namespace kvtdruck::druckwerk;

template <class Step>
void refusable(const Step& step) {
    try {
        step();
    } catch (const Fault&) {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const String text = fromUtf8({reinterpret_cast<const char*>(data), size});
    Definitions definitions;
    Aggregates aggregates;
    definitions.define(u"a", text, true, true);
    definitions.define(u"b", u"-1234,5", true, true);
    Totals totals(aggregates);
    const Scene scene{definitions, totals, Moment::Now, 1, 2, 3};
    String out;
    refusable([&] {
        const Expression expression(text, definitions, &aggregates, kTableScope);
        totals.accumulate(scene);
        expression.evaluate(scene);
    });
    refusable([&] { TextTemplate(text, definitions, aggregates, kTableScope).append(scene, out); });
    refusable([&] {
        const NumberPattern pattern(text);
        for (const StringView number : {u"0", u"-0,005", u"123456789012345678", u"1E+300"})
            pattern.append(Number::parse(number, germanLocale()), germanLocale(), out);
    });
    NumberPattern(u"#.##0,00").append(Number::parse(text, germanLocale()), germanLocale(), out);
    refusable([&] { DatePattern(text).append(dateOf(1999, 12, 31), germanLocale(), out); });
    return 0;
}
