// From the notation of expressions to their compiled form.
#pragma once

#include "druckwerk/expression/aggregates.h"
#include "druckwerk/expression/expression.h"
#include "druckwerk/expression/expression_scanner.h"

#include <string>

namespace kvtdruck::druckwerk {

/// Reads an expression by recursive descent, loosest operator first: oder, und, nicht, comparisons, &, + -, * / %,
/// signs, ^.
class ExpressionParser : ExpressionScanner {
  public:
    ExpressionParser(Expression& expression, StringView source, Definitions& definitions, Aggregates* aggregates,
                     AggregateScope scope)
        : ExpressionScanner(source), expression_(&expression), definitions_(definitions), aggregates_(aggregates),
          scope_(scope) {}

    /// Compiles the source into the expression; raises a Fault with the reason where it can't be understood.
    void parse(Expression::Result result);

  private:
    using Node = Expression::Node;
    using NodeNumber = Expression::NodeNumber;
    /// What a part of the expression gives. A name may stand for its number or for its text.
    enum class Type : std::uint8_t { Number, Text, Name };
    struct Operand {
        NodeNumber node = 0;
        Type type = Type::Number;
    };

    void expectClosing();

    // operators
    Operand disjunction();
    Operand conjunction();
    Operand negation();
    Operand comparison();
    Operand equality(Operand left, Operand right, bool equal);
    Operand joining();
    Operand sum();
    Operand product();
    Operand sign();
    Operand power();
    Operand primary();

    // what stands between operators
    Operand constant();
    Operand quotedText();
    Operand nameOrFunction();
    Operand plainName(StringView found);
    Operand function(StringView found);
    Operand choice();
    Operand extremum(StringView found);
    Operand isEmpty();
    Operand aggregate(StringView found, Aggregates::Kind kind);
    void separator(StringView function);

    // nodes
    NodeNumber add(Node node);
    NodeNumber slotNode(Node::Kind kind, StringView found);
    Operand unary(double (*apply)(double), Operand operand);
    Operand binary(double (*apply)(double, double), Operand left, Operand right);
    NodeNumber number(Operand operand);
    NodeNumber text(Operand operand);

    Expression* expression_;
    Definitions& definitions_;
    Aggregates* aggregates_;
    AggregateScope scope_;
    StringView within_; ///< the aggregate whose argument is being read
    int depth_ = 0;
};

} // namespace kvtdruck::druckwerk
