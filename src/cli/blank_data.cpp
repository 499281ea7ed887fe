#include "cli/blank_data.h"

#include "dataaccess/members.h"
#include "values/characters.h"
#include "values/variant.h"

namespace kvtdruck::cli {
namespace {

class BlankReader final : public Object {
  public:
    MemberId idOf(StringView name) override {
        if (sameWord(name, kEOF))
            return kAtEnd;
        if (sameWord(name, kMoveFirst))
            return kFirst;
        return sameWord(name, kMoveNext) ? kNext : kOther;
    }

    /// The read operations are taken for values, too: 1 says that they have gone well.
    Variant call(MemberId member, std::span<const Variant>) override {
        if (member == kAtEnd)
            return atEnd_;
        if (member == kFirst || member == kNext)
            atEnd_ = member == kNext;
        return 1.0;
    }

    void put(MemberId, std::span<const Variant>, const Variant&) override {}

  private:
    enum Members : MemberId { kOther, kAtEnd, kFirst, kNext };
    bool atEnd_ = false;
};

} // namespace

ObjectRef BlankData::create(StringView) {
    return std::make_shared<BlankReader>();
}

} // namespace kvtdruck::cli
