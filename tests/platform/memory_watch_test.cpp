#include "platform/posix/memory_watch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include <dlfcn.h>

namespace kvtdruck {
namespace {

using Block = std::unique_ptr<char, decltype([](char* text) { std::free(text); })>;

std::vector<Block> smallBlocks() {
    std::vector<Block> blocks(7);
    for (auto& block : blocks)
        block.reset(::strdup("kurz"));
    return blocks;
}

/// The dynamic linker puts its message into a block that grows. Who asks the linker for the C library's `realloc`
/// only then makes it give back what it is just writing to: the list of small blocks that are free gets damaged.
TEST(MemoryWatch, TheFirstBlockThatGrowsMayHoldAMessageOfTheDynamicLinker) {
    smallBlocks();
    EXPECT_EQ(::dlsym(RTLD_DEFAULT, "kvtdruck_nowhere"), nullptr);
    EXPECT_THAT(::dlerror(), ::testing::HasSubstr("kvtdruck_nowhere"));
    for (const auto& block : smallBlocks())
        EXPECT_STREQ(block.get(), "kurz");
    EXPECT_FALSE(memoryWasRefused());
}

} // namespace
} // namespace kvtdruck
