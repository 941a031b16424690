#include <base/FaultInjection.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

namespace Fault = Kx::FaultInjection;

TEST(FaultInjection, FailsOnceAfterTheGivenPassesThenDisarms)
{
    Fault::ScopedFault fault("Test.point", 2);
    std::vector<bool> results;
    for (int i = 0; i < 5; ++i) {
        results.push_back(Fault::shouldFail("Test.point"));
    }
    EXPECT_EQ(results, (std::vector<bool>{false, false, true, false, false}));
}

TEST(FaultInjection, PointsAreIndependentAndDisarmable)
{
    Fault::arm("Test.a");
    Fault::arm("Test.b");
    EXPECT_FALSE(Fault::shouldFail("Test.c"));
    Fault::disarm("Test.a");
    EXPECT_FALSE(Fault::shouldFail("Test.a"));
    EXPECT_TRUE(Fault::shouldFail("Test.b"));

    Fault::arm("Test.a", 1);
    Fault::arm("Test.a"); // re-arming restarts the count
    Fault::disarmAll();
    EXPECT_FALSE(Fault::shouldFail("Test.a"));
    {
        Fault::ScopedFault scoped("Test.a");
    }
    EXPECT_FALSE(Fault::shouldFail("Test.a"));
}

TEST(FaultInjection, ExactlyOneThreadSeesTheFault)
{
    Fault::ScopedFault fault("Test.race", 999);
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 1000; ++i) {
                failures += Fault::shouldFail("Test.race") ? 1 : 0;
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(failures.load(), 1);
}

} // namespace
