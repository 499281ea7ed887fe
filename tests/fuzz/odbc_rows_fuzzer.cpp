// Any bytes as what a driver puts into the buffers of columns and of their lengths, and as a connection string.
#include "kvtzug/connection_string.h"
#include "kvtzug/odbc_columns.h"

#include "values/runtime_error.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace {

using namespace kvtdruck;

/// Gives its bytes piece by piece, and zeros behind them.
class Bytes {
  public:
    Bytes(const std::uint8_t* data, std::size_t size) : data_(data), left_(size) {}
    void fill(void* target, std::size_t size) {
        const std::size_t count = std::min(size, left_);
        std::memcpy(target, data_, count);
        std::memset(static_cast<char*>(target) + count, 0, size - count);
        data_ += count;
        left_ -= count;
    }

  private:
    const std::uint8_t* data_;
    std::size_t left_;
};

constexpr std::size_t kRows = 3;

void fetch(OdbcColumns& columns, Bytes& bytes) {
    for (std::size_t i = 0; i < columns.count(); ++i)
        for (std::size_t row = 0; row < std::min(kRows, columns.rows()); ++row) {
            std::int32_t length = 0; // shorter than the field, so that lengths near the buffer's are met
            bytes.fill(&length, sizeof length);
            columns[i].lengths[row] = length;
            bytes.fill(columns[i].values.data() + row * columns[i].width,
                       std::min<std::size_t>(columns[i].width, 8));
        }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    try {
        OdbcColumns columns({CellType::Text, CellType::Number, CellType::Date});
        fetch(columns, bytes);
        const auto rows = std::min(kRows, columns.rows());
        if (columns.holds(rows)) {
            for (std::size_t row = 0; row < rows; ++row) {
                columns.text(0, row);
                columns.number(1, row);
                columns.date(2, row);
            }
        } else {
            columns.widen();
        }
    } catch (const RuntimeError&) { // a date that there is not
    }
    const String text = fromUtf8({reinterpret_cast<const char*>(data), size});
    for (const StringView name : {u"Driver", u"Database", u"PWD"})
        connectionAttribute(text, name);
    connectionAttribute(u"a=" + braced(text), u"a");
    withoutPasswords(text, text);
    return 0;
}
