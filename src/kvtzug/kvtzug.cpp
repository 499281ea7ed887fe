#include "kvtzug/kvtzug.h"

#include "kvtzug/reader.h"
#include "values/characters.h"
#include "values/runtime_error.h"
#include "values/variant.h"

namespace kvtdruck {
namespace {

constexpr StringView kConnectionString = u"ConnectionString";
constexpr Object::MemberId kConnectionStringId = 1;

} // namespace

Object::MemberId HostConnection::idOf(StringView name) {
    if (!sameWord(name, kConnectionString))
        throw RuntimeError(ErrorNumber::MemberNotFound);
    return kConnectionStringId;
}

Variant HostConnection::call(MemberId member, std::span<const Variant>) {
    if (member != kConnectionStringId)
        throw RuntimeError(ErrorNumber::MemberNotFound);
    return connectionString_;
}

void HostConnection::put(MemberId, std::span<const Variant>, const Variant&) {
    throw RuntimeError(ErrorNumber::MemberNotFound);
}

std::shared_ptr<Connection> Connections::open(Object& host) {
    const auto text = toText(host.call(host.idOf(kConnectionString), {}), germanLocale());
    auto& known = open_[text];
    auto connection = known.lock();
    if (!connection || !connection->alive()) {
        connection = openConnection(text, cancelled_);
        known = connection;
    }
    if (auto* own = dynamic_cast<HostConnection*>(&host))
        own->keep(connection);
    return connection;
}

ObjectRef ReferenceKvtzug::create(StringView className) {
    const auto* readerClass = findReaderClass(className);
    if (!readerClass)
        throw RuntimeError(ErrorNumber::CannotCreateObject);
    return std::make_shared<Reader>(*readerClass, connections_, trace_);
}

} // namespace kvtdruck
