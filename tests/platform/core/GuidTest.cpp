#include <core/Guid.h>

#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

// Documents and libraries made on many threads and machines must never share an identifier: every
// GUID is a well-formed random one (version 4, RFC 4122 variant) and none repeats, whichever
// thread drew it.
TEST(Guid, RandomWellFormedAndDistinctAcrossThreads)
{
    constexpr int kThreads = 4;
    constexpr int kEach = 20000;
    std::vector<std::vector<std::string>> drawn(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&drawn, t] {
            for (int i = 0; i < kEach; ++i)
                drawn[t].push_back(telvarin::platform::core::newGuid());
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    const std::regex form("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");
    std::set<std::string> seen;
    for (const auto& list : drawn) {
        for (const std::string& guid : list) {
            ASSERT_TRUE(std::regex_match(guid, form)) << guid;
            seen.insert(guid);
        }
    }
    EXPECT_EQ(seen.size(), static_cast<std::size_t>(kThreads * kEach));
}

} // namespace
