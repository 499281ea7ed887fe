#include "kvtzug/numeric_keys.h"

#include "kvtzug/schema.h"
#include "kvtzug/source.h"
#include "values/runtime_error.h"

#include <algorithm>

namespace kvtdruck {
namespace {

bool isOfName(char16_t c) {
    return c == u'_' || (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

} // namespace

String NumericKeys::adapted(StringView sql) {
    String result;
    while (!sql.empty()) {
        const auto from = std::min(sql.find(u"FROM "), sql.find(u"JOIN "));
        if (from == StringView::npos)
            break;
        const auto begin = from + 5;
        auto end = begin;
        while (end < sql.size() && isOfName(sql[end]))
            ++end;
        result.append(sql.substr(0, begin)).append(standIn(String(sql.substr(begin, end - begin))));
        sql.remove_prefix(end);
    }
    return result.append(sql);
}

const String& NumericKeys::standIn(const String& name) {
    const auto known = standIns_.find(name);
    if (known != standIns_.end())
        return known->second;
    auto& result = standIns_[name] = name;
    const auto* table = findTable(toUtf8(name));
    if (!table)
        return result;
    String columns;
    bool differs = false;
    try {
        for (const auto& column : connection_.columnsOf(name)) {
            const auto* own = table->find(toUtf8(column.name));
            if (!own)
                continue;
            const bool isTextKey =
                own->isSelected && own->kind == SchemaColumn::Kind::Number && column.type != CellType::Number;
            differs = differs || isTextKey;
            columns += (columns.empty() ? u"" : u", ") +
                       (isTextKey ? connection_.asNumber(column.name) + u" AS " + column.name : column.name);
        }
    } catch (const RuntimeError&) { // NOLINT(bugprone-empty-catch): the query itself says what is wrong
    }
    if (differs)
        result = u"(SELECT " + columns + u" FROM " + name + u") " + name;
    return result;
}

} // namespace kvtdruck
