// The signs of an expression, one after another.
#pragma once

#include "values/text.h"

#include <string>

namespace kvtdruck::druckwerk {

/// Walks along the source of an expression. What can't go on raises a Fault with the source and the reason.
class ExpressionScanner {
  public:
    /// Raises a Fault where `source` is longer than expressions may be, which also bounds what is made of it.
    explicit ExpressionScanner(StringView source);

    [[noreturn]] void fail(const std::string& reason) const;
    /// Says what is wrong with the sign at hand; `expected` where a part of an expression begins there.
    [[noreturn]] void failHere(const char* expected) const;

    /// Steps over blanks; whether nothing follows.
    bool atEnd();
    /// The sign at hand; 0 at the end.
    char16_t peek();
    bool accept(StringView token);
    bool acceptWord(StringView word);
    /// The first row of the table whose token stands here; none where none does.
    template <class Table>
    const typename Table::value_type* acceptOneOf(const Table& operators) {
        for (const auto& tried : operators)
            if (accept(tried.token))
                return &tried;
        return nullptr;
    }

    StringView name();
    double readConstant();
    String readQuoted();
    static bool startsName(char16_t c);

    std::size_t position() const { return at_; }
    /// The source from `begin` to the position.
    StringView since(std::size_t begin) const { return source_.substr(begin, at_ - begin); }
    /// Whether the argument at hand is followed by another one.
    bool hasFurtherArgument() const;

  private:
    void skipBlanks();

    StringView source_;
    std::size_t at_ = 0;
};

} // namespace kvtdruck::druckwerk
