// What a host may do while the component calls out: the running print gives what it would have given alone.
#include "component/host.h"

#include <gmock/gmock.h>

#include <cstddef>
#include <string>
#include <utility>

namespace kvtdruck::test {
namespace {

using ::testing::IsEmpty;

/// What a host may do while foreign code runs.
struct Disturbance {
    const char* name;
    void (*run)(Host& host);
};

class Disturbed : public ::testing::TestWithParam<Disturbance> {};

TEST_P(Disturbed, APrintGivesTheEngineWhatItWouldHaveGivenAlone) {
    const auto prepare = [](Host& host) {
        host.world.readers["clsZugUmsatz"].values[u"Jahr"] = {2024.0};
        host.engineWritesPreview();
    };
    const auto print = [](Host& host) {
        return host.print({.mode = 1, .array = host.world.array({{true, Variant(0.0), Variant(0.0)}})});
    };
    Host alone;
    prepare(alone);
    EXPECT_TRUE(print(alone));
    for (std::size_t position = 0; position < alone.world.outside.calls.size(); ++position) {
        SCOPED_TRACE(std::to_string(position) + " " + alone.world.outside.calls[position]);
        Host host;
        prepare(host);
        host.world.outside.interruptAt = position;
        host.world.outside.interrupt = [&] {
            auto record = std::exchange(host.world.engineCalls, {});
            GetParam().run(host);
            host.world.engineCalls = std::move(record);
        };
        EXPECT_TRUE(print(host));
        EXPECT_EQ(host.world.engineCalls, alone.world.engineCalls);
        EXPECT_EQ(host.world.started.size(), 1u);
        EXPECT_EQ(host.state.pSelmoraFuer, 3);
        EXPECT_THAT(host.world.reports, IsEmpty());
    }
}

INSTANTIATE_TEST_SUITE_P(
    ByTheHost, Disturbed,
    ::testing::Values(
        Disturbance{
            "PrintOfAnotherCompany",
            [](Host& host) {
                EXPECT_TRUE(host.print(
                    {.array = host.world.array({{true, 0.0, 0.0}}), .window = 99, .company = 8, .productMode = 5}));
            }},
        Disturbance{"PrintForTheSameWindow",
                    [](Host& host) {
                        EXPECT_TRUE(host.print(
                            {.array = host.world.array({{true, 0.0, 0.0}}), .company = 8, .productMode = 5}));
                    }},
        Disturbance{"NewConnection", [](Host& host) { host.manager.fkt_Init(nullptr); }},
        Disturbance{"EndOfPreviews", [](Host& host) { EXPECT_TRUE(host.manager.Terminate_Preview(kWindow)); }}),
    [](const auto& tested) { return std::string(tested.param.name); });

} // namespace
} // namespace kvtdruck::test
