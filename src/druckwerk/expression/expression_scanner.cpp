#include "druckwerk/expression/expression_scanner.h"

#include "druckwerk/common/fault.h"
#include "values/characters.h"

#include <algorithm>
#include <charconv>

namespace kvtdruck::druckwerk {

namespace {

constexpr std::size_t kMaximumLength = 2000;

bool continuesName(char16_t c) {
    return ExpressionScanner::startsName(c) || isDigit(c);
}

} // namespace

ExpressionScanner::ExpressionScanner(StringView source) : source_(source) {
    if (source_.size() > kMaximumLength)
        fail("zu lang");
}

bool ExpressionScanner::startsName(char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'_' || c >= 0x80;
}

void ExpressionScanner::fail(const std::string& reason) const {
    throw Fault(kLayoutInvalid, "Ungültiger Ausdruck „" + toUtf8(source_.substr(0, 80)) + "“: " + reason);
}

void ExpressionScanner::failHere(const char* expected) const {
    if (at_ >= source_.size())
        fail("unerwartetes Ende");
    const char16_t c = source_[at_];
    if (c == u';')
        fail("unerwartetes Semikolon");
    if (c == u')')
        fail("unerwartete Klammer");
    if (StringView(u"+-*/^%&<>=").find(c) != StringView::npos)
        fail("unerwarteter Operator „" + toUtf8(source_.substr(at_, 1)) + "“");
    if (startsName(c) || isDigit(c) || StringView(u"(\"',.").find(c) != StringView::npos)
        fail(expected);
    fail("unerwartetes Zeichen „" + toUtf8(source_.substr(at_, 1)) + "“");
}

void ExpressionScanner::skipBlanks() {
    while (at_ < source_.size() && StringView(u" \t\r\n").find(source_[at_]) != StringView::npos)
        ++at_;
}

bool ExpressionScanner::atEnd() {
    skipBlanks();
    return at_ == source_.size();
}

char16_t ExpressionScanner::peek() {
    return atEnd() ? u'\0' : source_[at_];
}

bool ExpressionScanner::accept(StringView token) {
    skipBlanks();
    if (source_.substr(at_, token.size()) != token)
        return false;
    at_ += token.size();
    return true;
}

bool ExpressionScanner::acceptWord(StringView word) {
    const std::size_t before = at_;
    if (accept(word) && (at_ == source_.size() || !continuesName(source_[at_])))
        return true;
    at_ = before;
    return false;
}

StringView ExpressionScanner::name() {
    skipBlanks();
    const std::size_t begin = at_;
    while (at_ < source_.size() && continuesName(source_[at_]))
        ++at_;
    if (begin == at_ || !startsName(source_[begin]))
        fail("Name erwartet");
    return source_.substr(begin, at_ - begin);
}

double ExpressionScanner::readConstant() {
    std::string plain;
    std::size_t points = 0;
    const std::size_t begin = at_;
    for (; at_ < source_.size() && (isDigit(source_[at_]) || source_[at_] == u',' || source_[at_] == u'.'); ++at_) {
        points += isDigit(source_[at_]) ? 0 : 1;
        plain += source_[at_] == u',' ? '.' : static_cast<char>(source_[at_]);
    }
    if (points > 1 || points == plain.size())
        fail("ungültige Zahl (Argumente werden mit Semikolon getrennt)");
    const StringView written = source_.substr(begin, at_ - begin);
    const auto point = written.find(u'.');
    if (point != StringView::npos && written.size() - point == 4 && point >= 1 && point <= 3 && written[0] != u'0')
        fail("„" + toUtf8(written) + "“ ist mehrdeutig; Tausenderpunkte weglassen, Komma vor Nachkommastellen");
    double value = 0;
    const auto result = std::from_chars(plain.data(), plain.data() + plain.size(), value);
    if (result.ec != std::errc())
        fail("Zahl ist zu groß");
    return value;
}

String ExpressionScanner::readQuoted() {
    const char16_t quote = source_[at_];
    const auto end = source_.find(quote, at_ + 1);
    if (end == StringView::npos)
        fail("Anführungszeichen ohne Ende");
    String text(source_.substr(at_ + 1, end - at_ - 1));
    at_ = end + 1;
    return text;
}

bool ExpressionScanner::hasFurtherArgument() const {
    int depth = 0;
    for (std::size_t i = at_; i < source_.size() && depth >= 0; ++i) {
        const char16_t c = source_[i];
        if (c == u'"' || c == u'\'')
            i = std::min(source_.find(c, i + 1), source_.size());
        else if (c == u';' && depth == 0)
            return true;
        depth += c == u'(' ? 1 : c == u')' ? -1 : 0;
    }
    return false;
}

} // namespace kvtdruck::druckwerk
