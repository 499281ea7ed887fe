#include "druckwerk/pdf/task_queue.h"

#include "druckwerk/pdf/pdf_output.h"
#include "platform/posix/temporary_folder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <iterator>
#include <numeric>
#include <stdexcept>
#include <string>
#include <vector>

namespace kvtdruck::druckwerk {
namespace {

TEST(TaskQueue, DoesAllTasksInTheirOrder) {
    std::vector<int> done;
    TaskQueue<int> queue([&](int task) { done.push_back(task); });
    std::vector<int> given(1000);
    std::iota(given.begin(), given.end(), 0);
    for (const int number : given)
        queue.add([&](int& task) { task = number; });
    queue.finish();
    EXPECT_EQ(done, given);
}

TEST(TaskQueue, GoesOnAfterItsEndWasWaitedFor) {
    int sum = 0;
    TaskQueue<int> queue([&](int task) { sum += task; });
    for (int round = 1; round <= 3; ++round) {
        queue.add([](int& task) { task = 1; });
        queue.finish();
        EXPECT_EQ(sum, round);
    }
}

TEST(TaskQueue, OnlyAFewTasksWait) {
    std::atomic<int> begun = 0;
    std::atomic<bool> held = true;
    TaskQueue<int> queue([&](int) {
        ++begun;
        held.wait(true);
    });
    std::atomic<int> given = 0;
    std::thread giver([&] {
        for (int i = 0; i < 100; ++i) {
            queue.add([](int&) {});
            ++given;
        }
    });
    while (begun == 0)
        std::this_thread::yield();
    for (int i = 0; i < 1000; ++i)
        std::this_thread::yield();
    EXPECT_LE(given, 16);
    held = false;
    held.notify_all();
    giver.join();
    queue.finish();
    EXPECT_EQ(begun, 100);
}

TEST(TaskQueue, AFailureShowsWithALaterTaskOrAtTheEnd) {
    const auto failing = [](int task) {
        if (task == 3)
            throw std::runtime_error("three");
    };
    TaskQueue<int> ending(failing);
    for (int i = 0; i < 5; ++i)
        ending.add([&](int& task) { task = i; });
    EXPECT_THROW(ending.finish(), std::runtime_error);

    TaskQueue<int> going(failing);
    const auto giveMany = [&] {
        for (int i = 0; i < 100; ++i)
            going.add([&](int& task) { task = i; });
    };
    EXPECT_THROW(giveMany(), std::runtime_error);
}

TEST(TaskQueue, WhatStillWaitsGoesWithIt) {
    int done = 0;
    {
        TaskQueue<int> queue([&](int) { ++done; });
        queue.add([](int&) {});
    }
    EXPECT_EQ(done, 0) << "nobody waited for it";
}

/// A document's bytes, with its objects written on this thread or beside it.
std::string documentOf(bool beside) {
    const TemporaryFolder folder;
    const auto file = folder.path() / "objects.pdf";
    PdfOutput output(file);
    if (beside)
        output.workBeside();
    int catalog = 0;
    for (int i = 0; i < 300; ++i) {
        const int early = output.allocate();
        catalog = output.allocate();
        output.writeStream(catalog, "/Type/Test", std::string(static_cast<std::size_t>(i) * 37 % 9000, 'x'));
        output.writeObject(early, "<</Number " + std::to_string(i) + ">>");
        output.writeRawStream(output.allocate(), "/Filter/None", std::to_string(i));
    }
    output.allocate(); // never written
    output.finish(catalog, catalog)->commit();
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

TEST(PdfOutput, IsTheSameWhenItIsWrittenBeside) {
    const auto document = documentOf(false);
    EXPECT_GT(document.size(), 10000u);
    EXPECT_TRUE(documentOf(true) == document);
}

} // namespace
} // namespace kvtdruck::druckwerk
