// An object of a reader class: connected, filled by a read operation, walked with its cursor, read through its
// getters.
#pragma once

#include "kvtzug/kvtzug.h"
#include "kvtzug/reader_class.h"
#include "kvtzug/rowset.h"
#include "kvtzug/source.h"
#include "values/variant.h"

#include <memory>
#include <optional>

namespace kvtdruck {

/// Whether two member names are the same: letter case does not matter.
bool sameName(StringView left, StringView right);

/// A reader answers the members of its class. Rows are fetched in blocks, so memory stays flat however many there
/// are; a return to the first record asks the database only when its block is no longer in hand. Once the user has
/// asked to stop, every walk is at its end.
class Reader : public Object {
  public:
    Reader(const ReaderClass& readerClass, std::shared_ptr<Connections> connections, ReferenceKvtzug::Trace trace);

    MemberId idOf(StringView name) override;
    Variant call(MemberId member, std::span<const Variant> arguments) override;
    void put(MemberId member, std::span<const Variant> arguments, const Variant& value) override;

  private:
    /// Where a block begins.
    enum class From { First, Key, BehindKey };

    Variant operate(std::size_t operation, std::span<const Variant> arguments);
    bool connect(std::span<const Variant> arguments);
    bool read(const ReadOperation& operation, std::span<const Variant> arguments);
    bool atEnd() const { return !gone_ && row_ >= rowset_.rows(); }
    bool hasRecord() const { return !atEnd() && !connections_->isCancelled(); }
    bool moveFirst();
    bool moveNext();

    Variant valueOf(std::size_t column) const;
    std::vector<Parameter> keyOf(std::size_t row) const;
    void fetchBlock(From from, std::vector<Parameter> key = {});
    void askFor(std::size_t column);
    void query(From from, std::span<const Parameter> parameters);
    String sql(From from) const;

    const ReaderClass& class_;
    std::shared_ptr<Connections> connections_;
    ReferenceKvtzug::Trace trace_;
    std::vector<std::size_t> key_;
    Rowset rowset_;
    std::shared_ptr<Connection> connection_;
    Variant productMode_;
    Years years_;
    const ReadOperation* operation_ = nullptr;
    std::vector<Parameter> parameters_;
    bool firstBlock_ = true;             ///< whether the block in hand is the first
    std::vector<bool> asked_;            ///< by column: whether a getter has asked for it
    std::vector<std::size_t> selection_; ///< the columns of the block in hand
    String sql_;
    std::unique_ptr<Query> query_; ///< prepared from `sql_`
    std::size_t row_ = 0;
    /// The values of the current record where it is no longer in the database; it stands before the block then.
    std::optional<std::vector<Variant>> gone_;
};

} // namespace kvtdruck
