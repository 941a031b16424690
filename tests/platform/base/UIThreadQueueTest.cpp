#include <base/Application.h>
#include <base/Assert.h>
#include <base/OS.h>
#include <base/UIThreadQueue.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;

// Tests run on the main thread, which initialises the application here as a host would.
class UIThreadTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        Kx::Application::initialize();
        Kx::UIThreadQueue::get().pump();
    }
};

TEST_F(UIThreadTest, OnlyTheInitialisingThreadIsTheUIThread)
{
    EXPECT_TRUE(Kx::OS::platformIsUIThread());
    bool onWorker = true;
    std::thread([&] { onWorker = Kx::OS::platformIsUIThread(); }).join();
    EXPECT_FALSE(onWorker);
    EXPECT_TRUE(Kx::OS::platformIsUIThread());

    std::thread([] { Kx::OS::markUIThread(); }).join();
    EXPECT_FALSE(Kx::OS::platformIsUIThread());
    Kx::Application::initialize();
    EXPECT_TRUE(Kx::OS::platformIsUIThread());
}

TEST_F(UIThreadTest, TasksPostedByWorkersRunInOrderOnThePumpingThread)
{
    auto& queue = Kx::UIThreadQueue::get();
    std::vector<int> order;
    std::vector<bool> onUIThread;
    std::thread worker([&] {
        for (int i = 0; i < 5; ++i) {
            queue.post([&, i] {
                order.push_back(i);
                onUIThread.push_back(Kx::OS::platformIsUIThread());
            });
        }
    });
    worker.join();
    EXPECT_TRUE(order.empty());
    EXPECT_EQ(queue.pending(), 5u);
    EXPECT_EQ(queue.pump(), 5u);
    EXPECT_EQ(order, (std::vector<int>{0, 1, 2, 3, 4}));
    EXPECT_EQ(onUIThread, std::vector<bool>(5, true));
    EXPECT_EQ(queue.pump(), 0u);
}

TEST_F(UIThreadTest, TasksPostedWhilePumpingWaitForTheNextPump)
{
    auto& queue = Kx::UIThreadQueue::get();
    int runs = 0;
    queue.post([&] {
        ++runs;
        queue.post([&] { ++runs; });
        throw std::runtime_error("a failing task does not stop the others");
    });
    queue.post([&] { ++runs; });
    EXPECT_EQ(queue.pump(), 2u);
    EXPECT_EQ(runs, 2);
    EXPECT_EQ(queue.pump(), 1u);
    EXPECT_EQ(runs, 3);
}

TEST_F(UIThreadTest, WaitAndPumpWakesForAWorkerOrTimesOut)
{
    auto& queue = Kx::UIThreadQueue::get();
    EXPECT_FALSE(queue.waitAndPump(20ms));

    bool ran = false;
    std::thread worker([&] {
        std::this_thread::sleep_for(20ms);
        queue.post([&] { ran = true; });
    });
    EXPECT_TRUE(queue.waitAndPump(10s));
    worker.join();
    EXPECT_TRUE(ran);
}

TEST_F(UIThreadTest, PumpingOffTheUIThreadIsReportedButStillRuns)
{
    Kx::ScopedAssertionCapture capture;
    auto& queue = Kx::UIThreadQueue::get();
    bool ran = false;
    queue.post([&] { ran = true; });
    std::thread([&] { queue.pump(); }).join();
    EXPECT_TRUE(ran);
    ASSERT_EQ(capture.reports().size(), 1u);
    EXPECT_EQ(capture.reports()[0].condition, "OS::platformIsUIThread()");
    EXPECT_EQ(capture.reports()[0].module, "KxBase");
}

} // namespace
