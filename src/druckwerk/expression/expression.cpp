#include "druckwerk/expression/expression.h"

#include "druckwerk/common/fault.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <muParser.h>

namespace kvtdruck::druckwerk {

namespace {

constexpr std::size_t kMaximumLength = 2000;

bool startsName(char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'_' || c >= 0x80;
}

bool continuesName(char16_t c) {
    return startsName(c) || (c >= u'0' && c <= u'9');
}

double chosen(double condition, double then, double otherwise) {
    return condition != 0 ? then : otherwise;
}
double negated(double value) {
    return value == 0 ? 1 : 0;
}

double rounded(double value, double places) {
    const double factor = std::pow(10.0, std::clamp(std::round(places), -15.0, 15.0));
    const Number scaled = Number::of(value * factor); // 15 digits: 1,005 * 100 is 100,5 and no less
    return std::round(scaled.value + std::copysign(std::fabs(scaled.value) * 1e-15, scaled.value)) / factor;
}

const char* reasonOf(mu::EErrorCodes code) {
    switch (code) {
    case mu::ecUNEXPECTED_OPERATOR:
        return "unerwarteter Operator";
    case mu::ecUNEXPECTED_EOF:
        return "unerwartetes Ende";
    case mu::ecUNEXPECTED_ARG_SEP:
    case mu::ecUNEXPECTED_ARG:
        return "unerwartetes Semikolon";
    case mu::ecUNEXPECTED_PARENS:
        return "unerwartete Klammer";
    case mu::ecMISSING_PARENS:
        return "Klammer fehlt";
    case mu::ecUNEXPECTED_VAL:
    case mu::ecUNEXPECTED_VAR:
    case mu::ecUNEXPECTED_FUN:
        return "Operator fehlt";
    case mu::ecTOO_MANY_PARAMS:
        return "zu viele Argumente";
    case mu::ecTOO_FEW_PARAMS:
        return "zu wenige Argumente";
    case mu::ecEMPTY_EXPRESSION:
        return "leer";
    default:
        return "nicht auswertbar";
    }
}

} // namespace

/// The compiled form: muParser sees only variables, whose values come from the terms.
struct Expression::Program {
    struct Term {
        enum class Kind : std::uint8_t { Value, TextEquals, IsEmpty, Page, Line, PageLine, Aggregate } kind;
        std::size_t slot = 0; // or the aggregate's number
        String text;
        double value = 0;
    };
    std::deque<Term> terms;
    mu::Parser parser;

    void fetch(Term& term, const Scene& scene) const {
        switch (term.kind) {
        case Term::Kind::Value: {
            const Number& number = scene.definitions.value(term.slot, scene.moment).number();
            term.value = number.isNumber() ? number.value : 0;
            break;
        }
        case Term::Kind::TextEquals:
            term.value = scene.definitions.value(term.slot, scene.moment).text == term.text ? 1 : 0;
            break;
        case Term::Kind::IsEmpty:
            term.value = trimmed(scene.definitions.value(term.slot, scene.moment).text).empty() ? 1 : 0;
            break;
        case Term::Kind::Page:
            term.value = scene.page;
            break;
        case Term::Kind::Line:
            term.value = static_cast<double>(scene.line);
            break;
        case Term::Kind::PageLine:
            term.value = static_cast<double>(scene.pageLine);
            break;
        case Term::Kind::Aggregate:
            term.value = scene.aggregates.value(term.slot);
            break;
        }
    }
};

/// Reads a layout's notation and writes muParser's.
class Expression::Reader {
  public:
    Reader(Expression& expression, StringView source, Definitions& definitions, Aggregates* aggregates,
           AggregateScope scope)
        : expression_(expression), program_(*expression.program_), source_(source), definitions_(definitions),
          aggregates_(aggregates), scope_(scope) {}

    std::string translate() {
        if (source_.size() > kMaximumLength)
            fail("zu lang");
        while (skipBlanks(), at_ < source_.size())
            readToken();
        return out_;
    }

    [[noreturn]] void fail(const std::string& reason) const {
        throw Fault(kLayoutInvalid, "Ungültiger Ausdruck „" + toUtf8(source_.substr(0, 80)) + "“: " + reason);
    }

  private:
    using Term = Program::Term;

    void skipBlanks() {
        while (at_ < source_.size() && (source_[at_] == u' ' || source_[at_] == u'\t' || source_[at_] == u'\n'))
            ++at_;
    }

    bool accept(StringView token) {
        if (source_.substr(at_, token.size()) != token)
            return false;
        at_ += token.size();
        return true;
    }

    void readToken() {
        const char16_t c = source_[at_];
        if (startsName(c))
            readName();
        else if ((c >= u'0' && c <= u'9') || c == u',' || c == u'.')
            readNumber();
        else if (c == u'"' || c == u'\'')
            readReversedComparison();
        else
            readOperator();
    }

    void readNumber() {
        bool digits = false;
        int points = 0;
        for (; at_ < source_.size(); ++at_) {
            const char16_t c = source_[at_];
            if (c == u',' || c == u'.')
                ++points;
            else if (c < u'0' || c > u'9')
                break;
            digits = digits || (c >= u'0' && c <= u'9');
            out_ += c == u',' ? '.' : static_cast<char>(c);
        }
        if (!digits || points > 1)
            fail("ungültige Zahl (Argumente werden mit Semikolon getrennt)");
        out_ += ' ';
    }

    void readOperator() {
        static constexpr std::array<std::pair<StringView, const char*>, 16> kOperators = {{{u"<>", "!="},
                                                                                           {u"<=", "<="},
                                                                                           {u">=", ">="},
                                                                                           {u"==", "=="},
                                                                                           {u"=", "=="},
                                                                                           {u"<", "<"},
                                                                                           {u">", ">"},
                                                                                           {u"+", "+"},
                                                                                           {u"-", "-"},
                                                                                           {u"*", "*"},
                                                                                           {u"/", "/"},
                                                                                           {u"^", "^"},
                                                                                           {u"%", "%"},
                                                                                           {u"(", "("},
                                                                                           {u")", ")"},
                                                                                           {u";", ";"}}};
        for (const auto& [token, translation] : kOperators)
            if (accept(token)) {
                out_ += translation;
                return;
            }
        fail("unerwartetes Zeichen „" + toUtf8(source_.substr(at_, 1)) + "“");
    }

    StringView name() {
        skipBlanks();
        const std::size_t begin = at_;
        while (at_ < source_.size() && continuesName(source_[at_]))
            ++at_;
        if (begin == at_ || !startsName(source_[begin]))
            fail("Name erwartet");
        return source_.substr(begin, at_ - begin);
    }

    String quotedText() {
        const char16_t quote = source_[at_];
        const auto end = source_.find(quote, at_ + 1);
        if (end == StringView::npos)
            fail("Anführungszeichen ohne Ende");
        String text(source_.substr(at_ + 1, end - at_ - 1));
        at_ = end + 1;
        return text;
    }

    bool atQuote() {
        skipBlanks();
        return at_ < source_.size() && (source_[at_] == u'"' || source_[at_] == u'\'');
    }

    void addTerm(Term::Kind kind, std::size_t slot, String text = {}) {
        const std::string variable = "v" + std::to_string(program_.terms.size());
        program_.terms.push_back({kind, slot, std::move(text), 0});
        program_.parser.DefineVar(variable, &program_.terms.back().value);
        out_ += variable + " ";
    }

    std::size_t slotOf(StringView found) {
        const std::size_t slot = definitions_.slotOf(found);
        expression_.slots_.push_back(slot);
        return slot;
    }

    void addTextComparison(StringView found, bool equal, String text) {
        out_ += equal ? "(" : "(1-";
        addTerm(Term::Kind::TextEquals, slotOf(found), std::move(text));
        out_ += ")";
    }

    void readReversedComparison() {
        String text = quotedText();
        skipBlanks();
        const bool unequal = accept(u"<>");
        if (!unequal && !accept(u"==") && !accept(u"="))
            fail("ein Text kann nur mit = oder <> verglichen werden");
        addTextComparison(name(), !unequal, std::move(text));
    }

    void readName() {
        const StringView found = name();
        const std::size_t behind = at_;
        skipBlanks();
        if (at_ < source_.size() && source_[at_] == u'(' && found != u"und" && found != u"oder" &&
            found != u"nicht") {
            readFunction(found);
            return;
        }
        const bool unequal = accept(u"<>");
        if ((unequal || accept(u"==") || accept(u"=")) && atQuote()) {
            addTextComparison(found, !unequal, quotedText());
            return;
        }
        at_ = behind;
        readPlainName(found);
    }

    void readPlainName(StringView found) {
        if (found == u"und")
            out_ += "&&";
        else if (found == u"oder")
            out_ += "||";
        else if (found == u"nicht")
            out_ += "!";
        else if (found == u"Seite")
            addTerm(Term::Kind::Page, 0);
        else if (found == u"Zeilennummer")
            addTerm(Term::Kind::Line, 0);
        else if (found == u"Seitenzeile")
            addTerm(Term::Kind::PageLine, 0);
        else if (found == u"Seiten")
            fail("die Seitenzahl steht erst am Ende fest; nur als {{Seiten}}");
        else
            addTerm(Term::Kind::Value, slotOf(found));
    }

    /// The text between the parenthesis at hand and its partner, and how many arguments it has.
    std::pair<StringView, int> arguments() const {
        int depth = 0;
        int count = 1;
        for (std::size_t i = at_; i < source_.size(); ++i) {
            if (source_[i] == u'(')
                ++depth;
            else if (source_[i] == u')' && --depth == 0)
                return {source_.substr(at_ + 1, i - at_ - 1), count};
            else if (source_[i] == u';' && depth == 1)
                ++count;
        }
        fail("Klammer fehlt");
    }

    void readFunction(StringView function) {
        static constexpr std::array<std::pair<StringView, Aggregates::Kind>, 5> kAggregates = {
            {{u"sum", Aggregates::Kind::Sum},
             {u"avg", Aggregates::Kind::Average},
             {u"count", Aggregates::Kind::Count},
             {u"min", Aggregates::Kind::Minimum},
             {u"max", Aggregates::Kind::Maximum}}};
        static constexpr std::array<std::pair<StringView, const char*>, 5> kFunctions = {
            {{u"wenn", "wenn"}, {u"runden", "runden"}, {u"abs", "abs"}, {u"min", "min"}, {u"max", "max"}}};
        const auto [argument, count] = arguments();
        for (const auto& [known, kind] : kAggregates)
            if (function == known && count == 1) {
                addAggregate(kind, argument);
                at_ += argument.size() + 2;
                return;
            }
        if (function == u"leer") {
            ++at_;
            addTerm(Term::Kind::IsEmpty, slotOf(name()));
            skipBlanks();
            if (!accept(u")"))
                fail("leer() braucht genau einen Namen");
            return;
        }
        for (const auto& [known, translation] : kFunctions)
            if (function == known) {
                out_ += translation;
                return;
            }
        fail("unbekannte Funktion „" + toUtf8(function) + "“");
    }

    void addAggregate(Aggregates::Kind kind, StringView argument) {
        if (aggregates_ == nullptr)
            fail("Summen und Anzahlen sind hier nicht möglich");
        argument = trimmed(argument);
        if (argument.empty() != (kind == Aggregates::Kind::Count))
            fail(argument.empty() ? "Argument fehlt" : "count() hat kein Argument");
        addTerm(Term::Kind::Aggregate, aggregates_->add(kind, argument, scope_, definitions_));
    }

    Expression& expression_;
    Program& program_;
    StringView source_;
    Definitions& definitions_;
    Aggregates* aggregates_;
    AggregateScope scope_;
    std::size_t at_ = 0;
    std::string out_;
};

Expression::Expression(StringView source, Definitions& definitions, Aggregates* aggregates, AggregateScope scope)
    : program_(std::make_unique<Program>()) {
    mu::Parser& parser = program_->parser;
    parser.ClearFun();
    parser.ClearConst();
    parser.SetArgSep(';');
    parser.DefineFun("wenn", chosen);
    parser.DefineFun("runden", rounded);
    parser.DefineFun(
        "abs", +[](double value) { return std::fabs(value); });
    parser.DefineFun(
        "min", +[](const double* values, int count) { return *std::min_element(values, values + count); });
    parser.DefineFun(
        "max", +[](const double* values, int count) { return *std::max_element(values, values + count); });
    parser.DefineInfixOprt("!", negated, mu::prLOGIC);
    parser.DefineOprt(
        "%", +[](double a, double b) { return std::fmod(a, b); }, mu::prMUL_DIV, mu::oaLEFT, true);
    Reader reader(*this, source, definitions, aggregates, scope);
    try {
        parser.SetExpr(reader.translate());
        parser.Eval();
    } catch (const mu::Parser::exception_type& error) {
        reader.fail(reasonOf(error.GetCode()));
    }
}

Expression::Expression(Expression&&) noexcept = default;
Expression& Expression::operator=(Expression&&) noexcept = default;
Expression::~Expression() = default;

double Expression::evaluate(const Scene& scene) const {
    for (auto& term : program_->terms)
        program_->fetch(term, scene);
    try {
        return program_->parser.Eval();
    } catch (const mu::Parser::exception_type&) {
        return std::numeric_limits<double>::quiet_NaN();
    }
}

bool Expression::hasAggregates() const {
    return std::any_of(program_->terms.begin(), program_->terms.end(),
                       [](const auto& term) { return term.kind == Program::Term::Kind::Aggregate; });
}

std::size_t Aggregates::add(Kind kind, StringView argument, AggregateScope scope, Definitions& definitions) {
    const auto same = std::find_if(aggregates_.begin(), aggregates_.end(), [&](const Aggregate& other) {
        return other.kind == kind && other.argument == argument && other.scope == scope;
    });
    if (same != aggregates_.end())
        return static_cast<std::size_t>(same - aggregates_.begin());
    Aggregate aggregate{kind, String(argument), scope, nullptr};
    if (kind != Kind::Count)
        aggregate.expression = std::make_unique<Expression>(argument, definitions, nullptr, scope);
    aggregates_.push_back(std::move(aggregate));
    return aggregates_.size() - 1;
}

void Aggregates::accumulate(const Scene& scene) {
    for (auto& aggregate : aggregates_) {
        if (aggregate.expression) {
            const double value = aggregate.expression->evaluate(scene);
            const long double addend = value - aggregate.lost;
            const long double sum = aggregate.sum + addend;
            aggregate.lost = (sum - aggregate.sum) - addend;
            aggregate.sum = sum;
            aggregate.minimum = aggregate.count == 0 ? value : std::min(aggregate.minimum, value);
            aggregate.maximum = aggregate.count == 0 ? value : std::max(aggregate.maximum, value);
        }
        ++aggregate.count;
    }
}

void Aggregates::reset(AggregateScope scope) {
    for (auto& aggregate : aggregates_)
        if (aggregate.scope == scope) {
            aggregate.sum = aggregate.lost = 0;
            aggregate.count = 0;
            aggregate.minimum = aggregate.maximum = 0;
        }
}

double Aggregates::value(std::size_t number) const {
    const Aggregate& aggregate = aggregates_[number];
    switch (aggregate.kind) {
    case Kind::Sum:
        return static_cast<double>(aggregate.sum);
    case Kind::Average:
        return aggregate.count == 0 ? 0 : static_cast<double>(aggregate.sum / aggregate.count);
    case Kind::Count:
        return static_cast<double>(aggregate.count);
    case Kind::Minimum:
        return aggregate.minimum;
    case Kind::Maximum:
        return aggregate.maximum;
    }
    return 0;
}

} // namespace kvtdruck::druckwerk
