#include "druckwerk/expression/expression_parser.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace kvtdruck::druckwerk {

namespace {

constexpr int kMaximumDepth = 64;

using Binary = double (*)(double, double);
struct Operator {
    StringView token;
    Binary function; ///< none for the two that compare texts as well
};

constexpr std::array<Operator, 2> kSums = {
    {{u"+", [](double a, double b) { return a + b; }}, {u"-", [](double a, double b) { return a - b; }}}};
constexpr std::array<Operator, 3> kProducts = {{{u"*", [](double a, double b) { return a * b; }},
                                                {u"/", [](double a, double b) { return a / b; }},
                                                {u"%", [](double a, double b) { return std::fmod(a, b); }}}};
constexpr std::array<Operator, 7> kComparisons = {{{u"<>", nullptr},
                                                   {u"<=", [](double a, double b) { return a <= b ? 1.0 : 0.0; }},
                                                   {u">=", [](double a, double b) { return a >= b ? 1.0 : 0.0; }},
                                                   {u"==", nullptr},
                                                   {u"=", nullptr},
                                                   {u"<", [](double a, double b) { return a < b ? 1.0 : 0.0; }},
                                                   {u">", [](double a, double b) { return a > b ? 1.0 : 0.0; }}}};

double negated(double value) {
    return value == 0 ? 1 : 0;
}

double rounded(double value, double places) {
    const double factor = std::pow(10.0, std::clamp(std::round(places), -15.0, 15.0));
    const Number scaled = Number::of(value * factor); // 15 digits: 1,005 * 100 is 100,5 and no less
    return std::round(scaled.value + std::copysign(std::fabs(scaled.value) * 1e-15, scaled.value)) / factor;
}

} // namespace

Expression::Expression(StringView source, Definitions& definitions, Aggregates* aggregates, AggregateScope scope,
                       Result result) {
    ExpressionParser(*this, source, definitions, aggregates, scope).parse(result);
}

void ExpressionParser::parse(Expression::Result result) {
    if (atEnd())
        fail("leer");
    const Operand whole = disjunction();
    if (!atEnd())
        failHere("Operator fehlt");
    expression_->isText_ = whole.type == Type::Text;
    if (expression_->isText_ && result == Expression::Result::Number)
        fail("hier wird eine Zahl oder ein Vergleich gebraucht, kein Text");
    expression_->root_ = whole.node;
}

void ExpressionParser::expectClosing() {
    if (atEnd())
        fail("Klammer fehlt");
    if (peek() == u';')
        fail("zu viele Argumente");
    if (!accept(u")"))
        failHere("Operator fehlt");
}

// Operators

ExpressionParser::Operand ExpressionParser::disjunction() {
    if (++depth_ > kMaximumDepth)
        fail("zu tief verschachtelt");
    Operand left = conjunction();
    while (acceptWord(u"oder"))
        left = {add({.kind = Node::Kind::Or, .operands = {number(left), number(conjunction())}}), Type::Number};
    --depth_;
    return left;
}

ExpressionParser::Operand ExpressionParser::conjunction() {
    Operand left = negation();
    while (acceptWord(u"und"))
        left = {add({.kind = Node::Kind::And, .operands = {number(left), number(negation())}}), Type::Number};
    return left;
}

ExpressionParser::Operand ExpressionParser::negation() {
    bool negate = false;
    bool any = false;
    for (; acceptWord(u"nicht"); any = true)
        negate = !negate;
    Operand operand = comparison();
    if (any) {
        operand = unary(negated, operand);
        if (!negate)
            operand = unary(negated, operand);
    }
    return operand;
}

ExpressionParser::Operand ExpressionParser::comparison() {
    Operand left = joining();
    const auto* found = acceptOneOf(kComparisons);
    if (found == nullptr)
        return left;
    const Operand right = joining();
    const bool texts = left.type == Type::Text || right.type == Type::Text;
    if (found->function != nullptr && texts)
        fail("ein Text kann nur mit = oder <> verglichen werden");
    left = found->function != nullptr ? binary(found->function, left, right)
                                      : equality(left, right, found->token != u"<>");
    if (acceptOneOf(kComparisons) != nullptr)
        fail("zwei Vergleiche hintereinander; mit „und“ verbinden");
    return left;
}

ExpressionParser::Operand ExpressionParser::equality(Operand left, Operand right, bool equal) {
    Operand result;
    if (left.type == Type::Text || right.type == Type::Text)
        result.node = add({.kind = Node::Kind::SameText, .operands = {text(left), text(right)}});
    else if (left.type == Type::Name && right.type == Type::Name)
        result.node = add({.kind = Node::Kind::SameValue, .operands = {left.node, right.node}});
    else
        result = binary([](double a, double b) { return a == b ? 1.0 : 0.0; }, left, right);
    return equal ? result : unary(negated, result);
}

ExpressionParser::Operand ExpressionParser::joining() {
    Operand left = sum();
    while (accept(u"&"))
        left = {add({.kind = Node::Kind::Join, .operands = {text(left), text(sum())}}), Type::Text};
    return left;
}

ExpressionParser::Operand ExpressionParser::sum() {
    Operand left = product();
    for (;;)
        if (const auto* found = acceptOneOf(kSums))
            left = binary(found->function, left, product());
        else
            return left;
}

ExpressionParser::Operand ExpressionParser::product() {
    Operand left = sign();
    for (;;)
        if (const auto* found = acceptOneOf(kProducts))
            left = binary(found->function, left, sign());
        else
            return left;
}

ExpressionParser::Operand ExpressionParser::sign() {
    bool minusSign = false;
    bool any = false;
    for (char16_t c = peek(); c == u'-' || c == u'+'; c = peek()) {
        accept(c == u'-' ? u"-" : u"+");
        minusSign = minusSign != (c == u'-');
        any = true;
    }
    const Operand operand = power();
    if (minusSign)
        return unary([](double value) { return -value; }, operand);
    return any ? Operand{number(operand), Type::Number} : operand;
}

ExpressionParser::Operand ExpressionParser::power() {
    const Operand base = primary();
    if (!accept(u"^"))
        return base;
    if (++depth_ > kMaximumDepth)
        fail("zu tief verschachtelt");
    const Operand result = binary([](double a, double b) { return std::pow(a, b); }, base, sign());
    --depth_;
    return result;
}

ExpressionParser::Operand ExpressionParser::primary() {
    if (atEnd())
        fail("unerwartetes Ende");
    const char16_t c = peek();
    if (startsName(c))
        return nameOrFunction();
    if ((c >= u'0' && c <= u'9') || c == u',' || c == u'.')
        return constant();
    if (c == u'"' || c == u'\'')
        return quotedText();
    if (!accept(u"("))
        failHere("Wert erwartet");
    const Operand inner = disjunction();
    expectClosing();
    return inner;
}

// What stands between operators

ExpressionParser::Operand ExpressionParser::constant() {
    return {add({.constant = readConstant()}), Type::Number};
}

ExpressionParser::Operand ExpressionParser::quotedText() {
    Node node;
    node.kind = Node::Kind::Literal;
    node.literal = readQuoted();
    return {add(std::move(node)), Type::Text};
}

ExpressionParser::Operand ExpressionParser::nameOrFunction() {
    const StringView found = name();
    return accept(u"(") ? function(found) : plainName(found);
}

ExpressionParser::Operand ExpressionParser::plainName(StringView found) {
    static constexpr std::array<std::pair<StringView, Node::Kind>, 3> kOwnNames = {
        {{u"Seite", Node::Kind::Page},
         {u"Zeilennummer", Node::Kind::Line},
         {u"Seitenzeile", Node::Kind::PageLine}}};
    for (const auto& [own, kind] : kOwnNames)
        if (found == own)
            return {add({.kind = kind}), Type::Number};
    if (found == u"Seiten")
        fail("die Seitenzahl steht erst am Ende fest; nur als {{Seiten}}");
    if (found == u"und" || found == u"oder" || found == u"nicht")
        fail("unerwartetes „" + toUtf8(found) + "“");
    return {slotNode(Node::Kind::Value, found), Type::Name};
}

ExpressionParser::Operand ExpressionParser::function(StringView found) {
    static constexpr std::array<std::pair<StringView, Aggregates::Kind>, 3> kAggregates = {
        {{u"sum", Aggregates::Kind::Sum},
         {u"avg", Aggregates::Kind::Average},
         {u"count", Aggregates::Kind::Count}}};
    for (const auto& [known, kind] : kAggregates)
        if (found == known)
            return aggregate(found, kind);
    if (found == u"min" || found == u"max")
        return extremum(found);
    if (found == u"wenn")
        return choice();
    if (found == u"leer")
        return isEmpty();
    if (found != u"abs" && found != u"runden")
        fail("unbekannte Funktion „" + toUtf8(found) +
             "“; es gibt wenn, runden, abs, min, max, leer, sum, avg, count");
    Operand result = disjunction();
    if (found == u"abs") {
        result = unary([](double value) { return std::fabs(value); }, result);
    } else {
        separator(found);
        result = binary(rounded, result, disjunction());
    }
    expectClosing();
    return result;
}

void ExpressionParser::separator(StringView function) {
    if (peek() == u')')
        fail("zu wenige Argumente für " + toUtf8(function) + "()");
    if (!accept(u";"))
        failHere("Operator fehlt");
}

ExpressionParser::Operand ExpressionParser::choice() {
    const NodeNumber condition = number(disjunction());
    separator(u"wenn");
    const Operand then = disjunction();
    separator(u"wenn");
    const Operand otherwise = disjunction();
    expectClosing();
    if (then.type != Type::Text && otherwise.type != Type::Text)
        return {add({.kind = Node::Kind::Choice, .operands = {condition, number(then), number(otherwise)}}),
                Type::Number};
    return {add({.kind = Node::Kind::Choice, .operands = {condition, text(then), text(otherwise)}}), Type::Text};
}

/// With one argument min() and max() run over lines, with several they choose among them.
ExpressionParser::Operand ExpressionParser::extremum(StringView found) {
    const bool smallest = found == u"min";
    if (!hasFurtherArgument())
        return aggregate(found, smallest ? Aggregates::Kind::Minimum : Aggregates::Kind::Maximum);
    Operand result = disjunction();
    while (accept(u";"))
        result = binary(smallest ? Binary([](double a, double b) { return std::min(a, b); })
                                 : Binary([](double a, double b) { return std::max(a, b); }),
                        result, disjunction());
    expectClosing();
    return result;
}

ExpressionParser::Operand ExpressionParser::isEmpty() {
    const NodeNumber node = slotNode(Node::Kind::IsEmpty, name());
    if (!accept(u")"))
        fail("leer() braucht genau einen Namen");
    return {node, Type::Number};
}

ExpressionParser::Operand ExpressionParser::aggregate(StringView found, Aggregates::Kind kind) {
    const std::string function = toUtf8(found) + "()";
    if (!within_.empty())
        fail(function + " steht innerhalb von " + toUtf8(within_) + "(); das geht nicht");
    if (aggregates_ == nullptr)
        fail(function + " ist hier nicht möglich");
    Aggregates::Aggregate wanted{kind, {}, scope_, std::nullopt};
    const bool empty = peek() == u')';
    if (empty != (kind == Aggregates::Kind::Count))
        fail(empty ? "Argument fehlt in " + function : "count() hat kein Argument");
    const std::size_t begin = position();
    Expression* const outer = expression_;
    if (!empty) {
        Expression argument;
        expression_ = &argument;
        within_ = found;
        argument.root_ = number(disjunction());
        within_ = {};
        expression_ = outer;
        outer->aggregatedSlots_.insert(outer->aggregatedSlots_.end(), argument.slots_.begin(),
                                       argument.slots_.end());
        wanted.source = trimmed(since(begin));
        wanted.argument = std::move(argument);
    }
    expectClosing();
    outer->hasAggregates_ = true;
    return {add({.kind = Node::Kind::Total, .slot = aggregates_->add(std::move(wanted))}), Type::Number};
}

// Nodes

ExpressionParser::NodeNumber ExpressionParser::add(Node node) {
    expression_->nodes_.push_back(std::move(node));
    return static_cast<NodeNumber>(expression_->nodes_.size() - 1);
}

ExpressionParser::NodeNumber ExpressionParser::slotNode(Node::Kind kind, StringView found) {
    const std::size_t slot = definitions_.slotOf(found);
    expression_->slots_.push_back(slot);
    return add({.kind = kind, .slot = slot});
}

ExpressionParser::Operand ExpressionParser::unary(double (*apply)(double), Operand operand) {
    return {add({.kind = Node::Kind::Unary, .operands = {number(operand)}, .unary = apply}), Type::Number};
}

ExpressionParser::Operand ExpressionParser::binary(double (*apply)(double, double), Operand left, Operand right) {
    return {add({.kind = Node::Kind::Binary, .operands = {number(left), number(right)}, .binary = apply}),
            Type::Number};
}

ExpressionParser::NodeNumber ExpressionParser::number(Operand operand) {
    if (operand.type == Type::Text)
        fail("mit einem Text kann nicht gerechnet werden");
    return operand.node;
}

ExpressionParser::NodeNumber ExpressionParser::text(Operand operand) {
    if (operand.type == Type::Number)
        fail("eine Zahl steht, wo ein Text gebraucht wird");
    if (operand.type == Type::Name)
        expression_->nodes_[operand.node].kind = Node::Kind::ValueText;
    return operand.node;
}

} // namespace kvtdruck::druckwerk
