// An object of a reader class: connected, filled by a read operation, walked with its cursor, read through its
// getters.
#pragma once

#include "kvtzug/kvtzug.h"
#include "kvtzug/reader_class.h"
#include "kvtzug/rowset.h"
#include "kvtzug/source.h"
#include "values/variant.h"

#include <future>
#include <memory>
#include <optional>

namespace kvtdruck {

/// A reader answers the members of its class. Rows are fetched in blocks, so memory stays flat however many there
/// are; a return to the first record asks the database only when its block is no longer in hand. Where the
/// connection allows it, the next block is fetched while the records of the one in hand are used. Once the user has
/// asked to stop, every walk is at its end.
class Reader : public Object {
  public:
    Reader(const ReaderClass& readerClass, std::shared_ptr<Connections> connections, ReferenceKvtzug::Trace trace);

    MemberId idOf(StringView name) override;
    Variant call(MemberId member, std::span<const Variant> arguments) override;
    void read(MemberId member, Variant& value) override;
    void put(MemberId member, std::span<const Variant> arguments, const Variant& value) override;

  private:
    /// Where a block begins.
    enum class From { First, Key, BehindKey };

    Variant operate(std::size_t operation, std::span<const Variant> arguments);
    bool connect(std::span<const Variant> arguments);
    bool read(const ReadOperation& operation, std::span<const Variant> arguments);
    bool atEnd() const { return !gone_ && row_ >= block_.rows.rows(); }
    bool hasRecord() const { return !atEnd() && !connections_->isCancelled(); }
    bool moveFirst();
    bool moveNext();

    void valueOf(std::size_t column, Variant& value) const;
    std::vector<Parameter> keyOf(std::size_t row) const;
    /// Rows, and the columns that they were queried with.
    struct Block {
        explicit Block(const ReaderClass& readerClass) : rows(readerClass.columns, readerClass.atOnce) {}
        Rowset rows;
        std::vector<std::size_t> columns;
    };

    void fetchBlock(From from, const std::vector<Parameter>& key = {});
    template <class Fetch>
    void receive(Fetch&& fetch);
    void readAhead();
    void takeNext();
    void dropAhead();
    void askFor(std::size_t column);
    std::vector<std::size_t> askedColumns() const;
    void query(Block& block, From from, const std::vector<Parameter>& key, const ReferenceKvtzug::Trace& trace);
    String sql(const Block& block, From from) const;

    const ReaderClass& class_;
    std::shared_ptr<Connections> connections_;
    ReferenceKvtzug::Trace trace_;
    std::vector<std::size_t> key_;
    Block block_;
    std::shared_ptr<Connection> connection_;
    Variant productMode_;
    Years years_;
    const ReadOperation* operation_ = nullptr;
    std::vector<Parameter> parameters_;
    bool firstBlock_ = true;  ///< whether the block in hand is the first
    std::vector<bool> asked_; ///< by column: whether a getter has asked for it
    String sql_;
    std::unique_ptr<Query> query_; ///< prepared from `sql_`
    std::size_t row_ = 0;
    /// The values of the current record where it is no longer in the database; it stands before the block then.
    std::optional<std::vector<Variant>> gone_;
    Block ahead_; ///< the block behind the one in hand, where it is being fetched
    std::vector<String> executedAhead_;
    /// As long as it is valid, `ahead_`, `executedAhead_`, `query_` and `sql_` are its thread's; it ends first.
    std::future<void> fetching_;
};

} // namespace kvtdruck
