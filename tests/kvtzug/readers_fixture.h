#pragma once

#include "kvtzug/database.h"
#include "kvtzug/kvtzug.h"
#include "kvtzug/reader_access.h"
#include "values/runtime_error.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kvtdruck::test {

using Values = std::vector<Variant>;

/// A database that has the tables and nothing in them.
class Readers : public testing::Test {
  protected:
    void SetUp() override { database_->executeDemoFile("schema.sql"); }

    ReaderAccess reader(StringView className, std::int16_t productMode = 0) {
        return {library_, className, database_->connectionString(), productMode};
    }
    void execute(const std::string& sql) { database_->execute(sql); }
    void insertCompany() { execute("INSERT INTO firma (fnr, name1) VALUES (1, 'Firma')"); }

    std::unique_ptr<Database> database_ = createDatabase();
    int queries_ = 0;
    ReferenceKvtzug library_{[this](StringView) { ++queries_; }};
};

/// The sample company.
class SampleCompany : public Readers {
  protected:
    void SetUp() override {
        Readers::SetUp();
        database_->executeDemoFile("daten.sql");
    }
};

/// What an action throws; a failure where it throws nothing.
inline RuntimeError errorOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const RuntimeError& error) {
        return error;
    }
    ADD_FAILURE() << "no run-time error";
    return RuntimeError(0, u"");
}

} // namespace kvtdruck::test
