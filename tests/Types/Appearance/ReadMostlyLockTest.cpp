#include <Types/Appearance/internal/ReadMostlyLock.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

using Kx::ReadMostlyLock;

// Widens a section, so that a fault in the lock shows in a few thousand rounds.
void dawdle()
{
    for (volatile int i = 0; i < 1000; i = i + 1) {
    }
}

TEST(ReadMostlyLock, AWriterKeepsReadersOutUntilItLeaves)
{
    ReadMostlyLock lock;
    {
        const ReadMostlyLock::Writer writer(lock);
        const ReadMostlyLock::Reader reader(lock);
        EXPECT_FALSE(reader);
    }
    const ReadMostlyLock::Reader first(lock);
    const ReadMostlyLock::Reader second(lock);
    EXPECT_TRUE(first);
    EXPECT_TRUE(second) << "readers of one thread, as of several, are in together";
}

// Readers check a pair the writer changes one half at a time, with plain reads and writes, each side
// dawdling half way: a reader let in while the writer is in, or a writer that does
// not wait for the readers in, shows as two different halves (and to ThreadSanitizer as a race).
TEST(ReadMostlyLock, ReadersNeverSeeAWriteHalfDone)
{
    ReadMostlyLock lock;
    long first = 0;
    long second = 0;
    std::atomic<bool> done{false};
    std::atomic<long> readsIn{0};
    std::atomic<long> tornReads{0};
    std::vector<std::thread> readers;
    for (int t = 0; t < 3; ++t) {
        readers.emplace_back([&] {
            while (!done.load()) {
                const ReadMostlyLock::Reader reader(lock);
                if (reader) {
                    readsIn.fetch_add(1);
                    const long seen = first;
                    dawdle();
                    if (seen != second) {
                        tornReads.fetch_add(1);
                    }
                }
            }
        });
    }
    constexpr long s_writes = 20000;
    for (long i = 1; i <= s_writes; ++i) {
        const ReadMostlyLock::Writer writer(lock);
        first = i;
        dawdle();
        second = i;
    }
    // Without a read let in, the check below would say nothing.
    while (readsIn.load() == 0) {
        std::this_thread::yield();
    }
    done = true;
    for (std::thread& reader : readers) {
        reader.join();
    }
    EXPECT_EQ(tornReads.load(), 0);
    EXPECT_EQ(first, s_writes);
    EXPECT_EQ(second, s_writes);
}

} // namespace
