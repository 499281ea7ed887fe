#include "kvtzug/reader.h"

#include "platform/locale.h"
#include "platform/runtime_error.h"

#include <algorithm>
#include <utility>

namespace kvtdruck {
namespace {

// Member numbers: the getters from 1 on, in the order of the column table; behind them the operations that all
// classes share, and then the read operations.
constexpr StringView kSharedOperations[] = {u"Verbinde", u"EOF", u"MoveFirst", u"MoveNext"};
enum SharedOperation : std::size_t { Verbinde, EndOfData, MoveFirst, MoveNext };

/// Wrong number of arguments.
constexpr long kWrongArgumentCount = 450;

char16_t folded(char16_t letter) {
    return letter >= u'a' && letter <= u'z' ? char16_t(letter - u'a' + u'A') : letter;
}

String sqlOf(const ReaderClass& readerClass, StringView condition) {
    String sql = u"SELECT ";
    for (const auto& column : readerClass.columns)
        sql.append(&column == &readerClass.columns.front() ? u"" : u", ").append(column.column);
    sql.append(u" FROM ").append(readerClass.tables);
    sql.append(u" WHERE ").append(condition);
    return sql.append(u" ORDER BY ").append(readerClass.order);
}

void checkCount(std::span<const Variant> arguments, std::size_t count) {
    if (arguments.size() != count)
        throw RuntimeError(kWrongArgumentCount, String(describe(kWrongArgumentCount)));
}

/// The value that is bound for an argument: a text, or a double whatever the number's type.
Variant parameterOf(const Variant& argument, ValueType type) {
    auto value = coerced(argument, type, germanLocale());
    return type == ValueType::Text ? value : coerced(value, ValueType::Double, germanLocale());
}

} // namespace

bool sameName(StringView left, StringView right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char16_t l, char16_t r) { return folded(l) == folded(r); });
}

Reader::Reader(const ReaderClass& readerClass, std::shared_ptr<Connections> connections, OdbcKvtzug::Trace trace)
    : class_(readerClass), connections_(std::move(connections)), trace_(std::move(trace)),
      rowset_(readerClass.columns) {}

Object::MemberId Reader::idOf(StringView name) {
    MemberId id = 0;
    for (const auto& column : class_.columns)
        if (++id; sameName(name, column.getter))
            return id;
    for (std::size_t i = 0; i < std::size(kSharedOperations); ++i)
        if (++id; sameName(name, kSharedOperations[i]) && (i == Verbinde || !class_.single))
            return id;
    for (const auto& operation : class_.operations)
        if (++id; sameName(name, operation.name))
            return id;
    throw RuntimeError(ErrorNumber::MemberNotFound);
}

Variant Reader::call(MemberId member, std::span<const Variant> arguments) {
    const auto index = std::size_t(member) - 1;
    if (index >= class_.columns.size())
        return operate(index - class_.columns.size(), arguments);
    return atEnd() ? rowset_.nothing(index) : rowset_.value(index, row_);
}

void Reader::put(MemberId, std::span<const Variant>, const Variant&) {
    throw RuntimeError(ErrorNumber::MemberNotFound);
}

Variant Reader::operate(std::size_t operation, std::span<const Variant> arguments) {
    const auto shared = std::size(kSharedOperations);
    if (operation >= shared) {
        if (operation - shared >= class_.operations.size())
            throw RuntimeError(ErrorNumber::MemberNotFound);
        return read(class_.operations[operation - shared], arguments);
    }
    if (operation == Verbinde)
        return connect(arguments);
    checkCount(arguments, 0);
    switch (operation) {
    case EndOfData:
        return atEnd();
    case MoveFirst:
        return moveFirst();
    default:
        return moveNext();
    }
}

bool Reader::connect(std::span<const Variant> arguments) {
    checkCount(arguments, 2);
    const auto* host = arguments[0].as<ObjectRef>();
    if (!host || !*host)
        throw RuntimeError(ErrorNumber::ObjectNotSet);
    productMode_ = parameterOf(arguments[1], ValueType::Integer);
    connection_ = connections_->open(**host);
    return true;
}

bool Reader::read(const ReadOperation& operation, std::span<const Variant> arguments) {
    checkCount(arguments, operation.arguments.size());
    if (!connection_)
        throw RuntimeError(ErrorNumber::ObjectNotSet);
    std::vector<Variant> parameters;
    for (const auto argument : operation.parameters)
        parameters.push_back(argument == kProductMode
                                 ? productMode_
                                 : parameterOf(arguments[argument], operation.arguments[argument]));
    blockStart_ = fetched_ = row_ = 0;
    statement_.reset();
    sql_ = sqlOf(class_, operation.condition);
    statement_ = std::make_unique<Statement>(
        connection_, u"Die Daten von " + String(class_.name) + u" konnten nicht gelesen werden.", sql_,
        std::move(parameters));
    execute();
    fetchBlock();
    return !class_.single || !atEnd();
}

bool Reader::moveFirst() {
    if (statement_ && blockStart_ > 0) {
        execute();
        fetchBlock();
    }
    row_ = 0;
    return !atEnd();
}

bool Reader::moveNext() {
    if (atEnd())
        return false;
    ++row_;
    // A block that is not full is the last one.
    if (row_ == fetched_ && fetched_ == rowset_.rows()) {
        blockStart_ += fetched_;
        fetchBlock();
    }
    return !atEnd();
}

void Reader::execute() {
    rowset_.bind(*statement_);
    if (trace_)
        trace_(sql_);
    statement_->execute();
    blockStart_ = 0;
}

void Reader::fetchBlock() {
    row_ = 0;
    fetched_ = 0;
    auto fetched = statement_->fetch();
    while (rowset_.widen(fetched)) {
        fetchAgainWidened();
        fetched = statement_->fetch();
    }
    fetched_ = fetched;
    if (fetched_ < rowset_.rows())
        statement_->close();
}

/// A text did not fit: the query is executed again with wider buffers, up to the block in hand. Block sizes are
/// powers of two that only get smaller, so the block begins where a block began before.
void Reader::fetchAgainWidened() {
    const auto start = blockStart_;
    execute();
    for (; blockStart_ < start; blockStart_ += rowset_.rows())
        statement_->fetch();
}

} // namespace kvtdruck
