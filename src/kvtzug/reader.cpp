#include "kvtzug/reader.h"

#include "values/characters.h"
#include "values/locale.h"
#include "values/runtime_error.h"

#include <algorithm>
#include <numeric>
#include <system_error>
#include <utility>

namespace kvtdruck {
namespace {

// Member numbers: the getters from 1 on, in the order of the column table; behind them the operations that all
// classes share, and then the read operations.
constexpr StringView kSharedOperations[] = {u"Verbinde", u"EOF", u"MoveFirst", u"MoveNext"};
enum SharedOperation : std::size_t { Verbinde, EndOfData, MoveFirst, MoveNext };

/// Wrong number of arguments.
constexpr long kWrongArgumentCount = 450;

String joined(const std::vector<String>& words) {
    String result;
    for (const auto& word : words)
        result.append(result.empty() ? u"" : u", ").append(word);
    return result;
}

void checkCount(std::span<const Variant> arguments, std::size_t count) {
    if (arguments.size() != count)
        throw RuntimeError(kWrongArgumentCount, String(describe(kWrongArgumentCount)));
}

/// What is bound for an argument: a text, or a double whatever the number's type.
Parameter parameterOf(const Variant& argument, ValueType type) {
    const auto value = coerced(argument, type, germanLocale());
    if (const auto* text = value.as<String>())
        return *text;
    return toDouble(value, germanLocale());
}

} // namespace

Reader::Reader(const ReaderClass& readerClass, std::shared_ptr<Connections> connections,
               ReferenceKvtzug::Trace trace)
    : class_(readerClass), connections_(std::move(connections)), trace_(std::move(trace)), block_(readerClass),
      ahead_(readerClass) {
    asked_.resize(readerClass.columns.size());
    for (const auto getter : readerClass.key) {
        key_.push_back(std::size_t(std::ranges::find(readerClass.columns, getter, &Column::getter) -
                                   readerClass.columns.begin()));
        asked_[key_.back()] = true;
    }
}

Object::MemberId Reader::idOf(StringView name) {
    MemberId id = 0;
    for (const auto& column : class_.columns)
        if (++id; sameWord(name, column.getter))
            return id;
    for (std::size_t i = 0; i < std::size(kSharedOperations); ++i)
        if (++id; sameWord(name, kSharedOperations[i]) && (i == Verbinde || !class_.single))
            return id;
    for (const auto& operation : class_.operations)
        if (++id; sameWord(name, operation.name))
            return id;
    throw RuntimeError(ErrorNumber::MemberNotFound);
}

Variant Reader::call(MemberId member, std::span<const Variant> arguments) {
    const auto index = std::size_t(member) - 1;
    if (index >= class_.columns.size())
        return operate(index - class_.columns.size(), arguments);
    Variant value;
    read(member, value);
    return value;
}

void Reader::read(MemberId member, Variant& value) {
    const auto index = std::size_t(member) - 1;
    if (index >= class_.columns.size()) {
        value = operate(index - class_.columns.size(), {});
        return;
    }
    if (!asked_[index])
        askFor(index);
    valueOf(index, value);
}

void Reader::valueOf(std::size_t column, Variant& value) const {
    if (gone_)
        value = (*gone_)[column];
    else if (atEnd())
        value = block_.rows.nothing(column);
    else
        block_.rows.read(column, row_, value);
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
        return !hasRecord();
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
    const auto* own = dynamic_cast<const HostConnection*>(host->get());
    years_ = own ? own->years() : Years();
    productMode_ = coerced(arguments[1], ValueType::Integer, germanLocale());
    dropAhead();
    query_.reset();
    sql_.clear();
    connection_ = connections_->open(**host);
    return true;
}

bool Reader::read(const ReadOperation& operation, std::span<const Variant> arguments) {
    checkCount(arguments, operation.arguments.size());
    if (!connection_)
        throw RuntimeError(ErrorNumber::ObjectNotSet);
    dropAhead();
    operation_ = &operation;
    parameters_.clear();
    for (const auto argument : operation.parameters)
        parameters_.push_back(argument == kProductMode ? parameterOf(productMode_, ValueType::Integer)
                              : argument == kFirstYear ? parameterOf(years_.first, ValueType::Single)
                              : argument == kLastYear
                                  ? parameterOf(years_.last, ValueType::Single)
                                  : parameterOf(arguments[argument], operation.arguments[argument]));
    fetchBlock(From::First);
    return !class_.single || !atEnd();
}

bool Reader::moveFirst() {
    if (firstBlock_)
        row_ = 0;
    else
        fetchBlock(From::First);
    return hasRecord();
}

bool Reader::moveNext() {
    if (!hasRecord())
        return false;
    if (gone_)
        gone_.reset();
    else
        ++row_;
    if (!block_.rows.isLast()) {
        if (row_ == block_.rows.rows())
            takeNext();
        else if (row_ == 1 && !fetching_.valid() && connection_->readsAhead())
            readAhead();
    }
    return hasRecord();
}

std::vector<Parameter> Reader::keyOf(std::size_t row) const {
    std::vector<Parameter> key;
    for (const auto column : key_)
        key.push_back(block_.rows.parameter(column, row));
    return key;
}

/// Takes a column along from now on. The first block has all columns, so only a later one is queried again, from
/// the current record on: a block may have fewer rows than the one before, and others may have written meanwhile. A
/// record that they have deleted keeps the values that were in hand.
void Reader::askFor(std::size_t column) {
    dropAhead(); // it lacks the column
    asked_[column] = true;
    if (firstBlock_ || gone_ || atEnd())
        return;
    std::vector<Variant> values;
    for (std::size_t other = 0; other < asked_.size(); ++other) {
        values.push_back(block_.rows.nothing(other));
        if (std::ranges::count(block_.columns, other))
            valueOf(other, values.back());
    }
    const auto key = keyOf(row_);
    fetchBlock(From::Key, key);
    if (atEnd() || keyOf(0) != key)
        gone_ = std::move(values);
}

/// Behind the first block only those columns are queried that anybody has asked for: turning the months that a
/// report does not print into numbers would cost more than all else.
std::vector<std::size_t> Reader::askedColumns() const {
    std::vector<std::size_t> columns;
    for (std::size_t column = 0; column < asked_.size(); ++column)
        if (asked_[column])
            columns.push_back(column);
    return columns;
}

/// Queries the rows from the first one, from the key `key`, or behind it.
void Reader::fetchBlock(From from, const std::vector<Parameter>& key) {
    dropAhead();
    firstBlock_ = from == From::First;
    receive([&] {
        block_.columns = askedColumns();
        if (firstBlock_) {
            block_.columns.resize(asked_.size());
            std::iota(block_.columns.begin(), block_.columns.end(), std::size_t{0});
        }
        query(block_, from, key, trace_);
    });
}

/// Has `fetch` bring a new block.
template <class Fetch>
void Reader::receive(Fetch&& fetch) {
    gone_.reset();
    block_.rows.clear();
    row_ = 0;
    try {
        fetch();
    } catch (const RuntimeError&) {
        query_.reset();
        sql_.clear();
        block_.rows.clear();
        // Who has asked to stop wants no message of a walk that ends.
        if (firstBlock_ || !connections_->isCancelled())
            throw;
    }
}

/// Begins to fetch the block behind the one in hand on another thread.
void Reader::readAhead() {
    ahead_.columns = askedColumns();
    executedAhead_.clear();
    const auto fetch = [this, key = keyOf(block_.rows.rows() - 1)] {
        query(ahead_, From::BehindKey, key, [this](StringView sql) { executedAhead_.emplace_back(sql); });
    };
    try {
        fetching_ = std::async(std::launch::async, fetch);
    } catch (const std::system_error&) { // NOLINT(bugprone-empty-catch): without a thread it is fetched when needed
    }
}

void Reader::takeNext() {
    if (!fetching_.valid())
        return fetchBlock(From::BehindKey, keyOf(block_.rows.rows() - 1));
    firstBlock_ = false;
    receive([this] {
        fetching_.wait();
        for (const auto& sql : executedAhead_)
            if (trace_)
                trace_(sql);
        fetching_.get();
        std::swap(block_, ahead_);
    });
}

void Reader::dropAhead() {
    if (fetching_.valid())
        fetching_.wait();
    fetching_ = {};
}

void Reader::query(Block& block, From from, const std::vector<Parameter>& key,
                   const ReferenceKvtzug::Trace& trace) {
    const std::lock_guard lock(connection_->inUse());
    auto parameters = parameters_;
    parameters.insert(parameters.end(), key.begin(), key.end());
    const auto text = sql(block, from);
    if (text != sql_) {
        std::vector<CellType> types;
        for (const auto column : block.columns)
            types.push_back(cellTypeOf(class_.columns[column].type));
        query_ = connection_->query(u"Die Daten von " + String(class_.name) + u" konnten nicht gelesen werden.",
                                    text, std::move(types));
        sql_ = text;
    }
    do {
        if (trace)
            trace(text);
        query_->execute(parameters);
        block.rows.fill(*query_, block.columns);
    } while (!query_->finish());
}

String Reader::sql(const Block& block, From from) const {
    const auto names = [this](const std::vector<std::size_t>& columns) {
        std::vector<String> result;
        result.reserve(columns.size());
        for (const auto column : columns)
            result.push_back(class_.columns[column].column);
        return result;
    };
    const auto key = joined(names(key_));
    String result = (class_.distinct ? u"SELECT DISTINCT " : u"SELECT ") + joined(names(block.columns)) +
                    u" FROM " + String(class_.tables) + u" WHERE " + String(operation_->condition);
    if (from != From::First)
        result += u" AND (" + key + (from == From::Key ? u") >= (" : u") > (") +
                  joined(std::vector<String>(key_.size(), u"?")) + u")";
    return result + u" ORDER BY " + key + u" LIMIT " +
           decimal(class_.single ? 1 : static_cast<long long>(block.rows.most()));
}

} // namespace kvtdruck
