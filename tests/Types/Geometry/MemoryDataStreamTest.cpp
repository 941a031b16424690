#include <Types/Geometry/MemoryDataStream.h>

#include <base/Assert.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

namespace {

using Kx::MemoryDataStream;
using telvarin::platform::core::io::eFromCurrent;
using telvarin::platform::core::io::eFromEnd;
using telvarin::platform::core::io::eFromStart;
using telvarin::platform::core::io::teStreamPosition;

constexpr std::int64_t kInt64Max = std::numeric_limits<std::int64_t>::max();
const auto kUnknownOrigin = static_cast<teStreamPosition>(7);

std::vector<unsigned char> bytes(std::size_t count)
{
    std::vector<unsigned char> result(count);
    std::iota(result.begin(), result.end(), static_cast<unsigned char>(1));
    return result;
}

// An opened stream holding the bytes 1..10 with the cursor at 4.
MemoryDataStream tenBytesAtFour()
{
    MemoryDataStream stream;
    stream.open();
    const auto data = bytes(10);
    stream.write(data.data(), data.size());
    stream.rseek(4, eFromStart);
    return stream;
}

TEST(MemoryDataStreamTest, GrowsToExactlyWhatAWriteNeeds)
{
    MemoryDataStream stream;
    EXPECT_EQ(stream.capacity(), 0u);
    ASSERT_TRUE(stream.open());
    EXPECT_EQ(stream.capacity(), 0x10000u);

    const auto data = bytes(70000);
    EXPECT_EQ(stream.write(data.data(), data.size()), 70000u);
    EXPECT_EQ(stream.capacity(), 70001u);
    EXPECT_EQ(stream.size(), 70000);
    EXPECT_EQ(stream.position(), 70000);

    stream.write("x", 1);
    EXPECT_EQ(stream.capacity(), 70002u);
    EXPECT_EQ(std::memcmp(stream.data(), data.data(), data.size()), 0);
    EXPECT_EQ(stream.data()[70000], 'x');

    // Overwriting inside the data keeps its size.
    stream.rseek(10, eFromStart);
    stream.write("ab", 2);
    EXPECT_EQ(stream.size(), 70001);
    EXPECT_EQ(stream.position(), 12);
    EXPECT_EQ(stream.data()[11], 'b');
}

TEST(MemoryDataStreamTest, ReadTakesWhatIsLeftWhileFillIsAllOrNothing)
{
    MemoryDataStream stream = tenBytesAtFour();
    unsigned char buffer[100] = {};

    EXPECT_FALSE(stream.fill(buffer, 7));
    EXPECT_EQ(stream.position(), 4);
    EXPECT_EQ(buffer[0], 0);
    EXPECT_EQ(stream.read(buffer, 0), 0u);
    EXPECT_EQ(stream.read(nullptr, 5), 0u);
    EXPECT_FALSE(stream.fill(nullptr, 1));
    EXPECT_EQ(stream.position(), 4);

    EXPECT_TRUE(stream.fill(buffer, 2));
    EXPECT_EQ(buffer[0], 5);
    EXPECT_EQ(stream.position(), 6);
    EXPECT_EQ(stream.read(buffer, sizeof buffer), 4u);
    EXPECT_EQ(buffer[3], 10);
    EXPECT_FALSE(stream.availableToRead());
    EXPECT_EQ(stream.read(buffer, 1), 0u);
    EXPECT_FALSE(stream.fill(buffer, 1));
}

struct Move {
    const char* name;
    std::int64_t offset;
    teStreamPosition from;
    std::int64_t expected;
};

TEST(MemoryDataStreamTest, RfindMovesOnlyInsideTheData)
{
    const Move moves[] = {
        {"start", 0, eFromStart, 0},
        {"last byte", 9, eFromStart, 9},
        {"size is refused", 10, eFromStart, 4},
        {"negative is refused", -1, eFromStart, 4},
        {"forward", 5, eFromCurrent, 9},
        {"past the data", 6, eFromCurrent, 4},
        {"back to start", -4, eFromCurrent, 0},
        {"before start", -5, eFromCurrent, 4},
        {"overflowing offset", kInt64Max, eFromCurrent, 4},
        {"end itself", 0, eFromEnd, 10},
        {"back from end", -9, eFromEnd, 1},
        {"whole size back", -10, eFromEnd, 4},
        {"beyond end", 1, eFromEnd, 4},
        {"unknown origin", 1, kUnknownOrigin, 4},
    };
    for (const Move& move : moves) {
        SCOPED_TRACE(move.name);
        MemoryDataStream stream = tenBytesAtFour();
        EXPECT_EQ(stream.rfind(move.offset, move.from), move.expected);
        EXPECT_EQ(stream.position(), move.expected);
    }
}

TEST(MemoryDataStreamTest, RseekClampsIntoTheData)
{
    const Move moves[] = {
        {"beyond size", 15, eFromStart, 10},
        {"negative", -3, eFromStart, 0},
        {"forward", 3, eFromCurrent, 7},
        {"far back", -10, eFromCurrent, 0},
        {"overflowing offset", kInt64Max, eFromCurrent, 10},
        {"back from end", -2, eFromEnd, 8},
        {"beyond end", 5, eFromEnd, 10},
        {"unknown origin counts from start", 3, kUnknownOrigin, 3},
    };
    for (const Move& move : moves) {
        SCOPED_TRACE(move.name);
        MemoryDataStream stream = tenBytesAtFour();
        EXPECT_EQ(stream.rseek(move.offset, move.from), move.expected);
    }
}

TEST(MemoryDataStreamTest, WriteCursorMovesGrowTheBlock)
{
    struct Case {
        Move move;
        std::uint64_t capacity;
    };
    const Case cases[] = {
        {{"within", 100, eFromStart, 100}, 0x10000},
        {{"beyond capacity grows exactly", 100000, eFromStart, 100000}, 100000},
        {{"to capacity does not grow", 0x10000, eFromStart, 0x10000}, 0x10000},
        {{"negative is refused", -1, eFromStart, 4}, 0x10000},
        {{"forward", 3, eFromCurrent, 7}, 0x10000},
        {{"before start", -5, eFromCurrent, 4}, 0x10000},
        {{"beyond end", 5, eFromEnd, 15}, 0x10000},
        {{"beyond end and capacity", 0x10000 - 9, eFromEnd, 0x10001}, 0x10001},
        {{"back from end", -3, eFromEnd, 7}, 0x10000},
        {{"before start from end", -11, eFromEnd, -1}, 0x10000},
        {{"back beyond the block from end", -0x10001, eFromEnd, 4}, 0x10000},
        {{"unknown origin", 3, kUnknownOrigin, 4}, 0x10000},
    };
    for (const auto& [name, move] : {std::pair{"wfind", &MemoryDataStream::wfind}, std::pair{"wseek", &MemoryDataStream::wseek}}) {
        for (const Case& c : cases) {
            SCOPED_TRACE(std::string(name) + ": " + c.move.name);
            MemoryDataStream stream = tenBytesAtFour();
            EXPECT_EQ((stream.*move)(c.move.offset, c.move.from), c.move.expected);
            EXPECT_EQ(stream.capacity(), c.capacity);
            EXPECT_EQ(stream.size(), 10);
            EXPECT_EQ(std::memcmp(stream.data(), bytes(10).data(), 10), 0);
        }
    }
}

TEST(MemoryDataStreamTest, GapsBeyondTheDataReadAsZeros)
{
    MemoryDataStream stream;
    stream.open();
    stream.write("ab", 2);
    stream.wfind(0x10000 + 3, eFromStart);
    stream.write("c", 1);
    ASSERT_EQ(stream.size(), 0x10004);
    std::vector<unsigned char> content(0x10004);
    stream.rseek(0, eFromStart);
    ASSERT_TRUE(stream.fill(content.data(), content.size()));
    EXPECT_EQ(content[1], 'b');
    EXPECT_EQ(content.back(), 'c');
    EXPECT_EQ(std::count(content.begin() + 2, content.end() - 1, 0), 0x10001);
}

TEST(MemoryDataStreamTest, DetachHandsOverTheBlock)
{
    MemoryDataStream stream = tenBytesAtFour();
    std::uint64_t size = 0;
    unsigned char* block = nullptr;
    stream.DetachStreamBuffer(size, block);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(size, 10u);
    EXPECT_EQ(block[9], 10);
    std::free(block);

    EXPECT_EQ(stream.data(), nullptr);
    EXPECT_EQ(stream.capacity(), 0u);
    EXPECT_EQ(stream.position(), 0);
    EXPECT_FALSE(stream.availableToRead());
    // Without a block the first write allocates exactly what it needs.
    EXPECT_EQ(stream.write("xyz", 3), 3u);
    EXPECT_EQ(stream.capacity(), 4u);
}

TEST(MemoryDataStreamTest, NullSourceIsReportedAndWritesZeros)
{
    MemoryDataStream stream = tenBytesAtFour();
    Kx::ScopedAssertionCapture capture;
    EXPECT_EQ(stream.write(nullptr, 8), 8u);
    EXPECT_EQ(capture.count(), 1u);
    EXPECT_EQ(stream.position(), 12);
    EXPECT_EQ(stream.size(), 12);
    EXPECT_EQ(std::count(stream.data() + 4, stream.data() + 12, 0), 8);
    EXPECT_EQ(stream.data()[3], 4);
}

// The write cursor may be moved before the start from the end; the stream then neither reads nor
// writes outside its block, and a later move brings it back.
TEST(MemoryDataStreamTest, ACursorBeforeTheStartTouchesNothing)
{
    MemoryDataStream stream = tenBytesAtFour();
    ASSERT_EQ(stream.wfind(-12, eFromEnd), -2);
    Kx::ScopedAssertionCapture capture;
    EXPECT_EQ(stream.write("xy", 2), 0u);
    EXPECT_EQ(capture.count(), 1u);
    unsigned char byte = 0;
    EXPECT_EQ(stream.read(&byte, 1), 0u);
    EXPECT_FALSE(stream.fill(&byte, 1));
    EXPECT_EQ(stream.size(), 10);
    EXPECT_EQ(std::memcmp(stream.data(), bytes(10).data(), 10), 0);
    EXPECT_EQ(stream.rseek(0, eFromStart), 0);
    EXPECT_EQ(stream.read(&byte, 1), 1u);
}

TEST(MemoryDataStreamTest, MovingTransfersTheBlock)
{
    MemoryDataStream source = tenBytesAtFour();
    const unsigned char* block = source.data();
    MemoryDataStream target;
    target.open();
    target = std::move(source);
    EXPECT_EQ(target.data(), block);
    EXPECT_EQ(target.position(), 4);
    EXPECT_EQ(source.data(), nullptr);
    EXPECT_EQ(source.size(), 0);
}

} // namespace
