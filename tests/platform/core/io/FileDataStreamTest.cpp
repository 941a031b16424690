#include <core/io/FileDataStream.h>

#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <string>

using telvarin::platform::core::io::eFromCurrent;
using telvarin::platform::core::io::eFromEnd;
using telvarin::platform::core::io::eFromStart;
using telvarin::platform::core::io::FileDataStream;
using telvarin::platform::core::io::teStreamPosition;
using Mode = FileDataStream::EOpenMode;

namespace {

class FileDataStreamTest : public ::testing::Test {
protected:
    // A file of ten bytes "0123456789".
    std::filesystem::path tenBytes()
    {
        const auto file = m_dir / "ten.bin";
        const std::string digits = "0123456789";
        KxTest::writeBytes(file, {digits.begin(), digits.end()});
        return file;
    }

    KxTest::TempDir m_dir;
};

TEST_F(FileDataStreamTest, WrittenBytesReadBackThroughOneSharedCursor)
{
    const auto file = m_dir / "data.bin";
    FileDataStream stream(file, Mode::eReadWrite);
    ASSERT_TRUE(stream.openForWrite());
    ASSERT_TRUE(stream.openForRead());
    EXPECT_EQ(stream.write("hello world", 11), 11u);
    EXPECT_EQ(stream.position(), 11);
    EXPECT_FALSE(stream.availableToRead());

    EXPECT_EQ(stream.rseek(6, eFromStart), 6);
    char text[16] = {};
    EXPECT_EQ(stream.read(text, sizeof text), 5u);
    EXPECT_STREQ(text, "world");
    stream.close();
    EXPECT_EQ(KxTest::readText(file), "hello world");
}

TEST_F(FileDataStreamTest, ReadIsShortButFillIsAllOrNothing)
{
    FileDataStream stream(tenBytes(), Mode::eRead);
    ASSERT_TRUE(stream.openForRead());
    ASSERT_EQ(stream.rfind(7, eFromStart), 7);

    std::array<char, 8> buffer{};
    EXPECT_FALSE(stream.fill(buffer.data(), 4));
    EXPECT_EQ(stream.position(), 7);
    EXPECT_TRUE(stream.fill(buffer.data(), 3));
    EXPECT_EQ(std::string(buffer.data(), 3), "789");
    EXPECT_FALSE(stream.availableToRead());

    stream.rseek(7, eFromStart);
    EXPECT_EQ(stream.read(buffer.data(), 8), 3u);
    EXPECT_EQ(stream.read(buffer.data(), 8), 0u);
    EXPECT_EQ(stream.read(nullptr, 8), 0u);
    EXPECT_FALSE(stream.fill(buffer.data(), 0));
}

struct CursorCase {
    const char* name;
    std::int64_t start;
    std::int64_t offset;
    int from;
    std::int64_t expected;
};

TEST_F(FileDataStreamTest, RfindRefusesTargetsOutsideTheData)
{
    const CursorCase cases[] = {
        {"inside from start", 0, 4, eFromStart, 4},
        {"size itself is outside", 3, 10, eFromStart, 3},
        {"negative from start", 3, -1, eFromStart, 3},
        {"back from current", 5, -5, eFromCurrent, 0},
        {"before start from current", 5, -6, eFromCurrent, 5},
        {"last byte from end", 0, -1, eFromEnd, 9},
        {"first byte from end", 2, -10, eFromEnd, 0},
        {"before start from end", 2, -11, eFromEnd, 2},
        {"positive from end", 2, 1, eFromEnd, 2},
        {"unknown origin", 2, 1, 7, 2},
        {"wrapping offset", 5, INT64_MAX, eFromCurrent, 5},
        {"most negative offset", 5, INT64_MIN, eFromCurrent, 5},
    };
    FileDataStream stream(tenBytes(), Mode::eRead);
    ASSERT_TRUE(stream.openForRead());
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_EQ(stream.rseek(c.start, eFromStart), c.start);
        EXPECT_EQ(stream.rfind(c.offset, static_cast<teStreamPosition>(c.from)), c.expected);
        EXPECT_EQ(stream.position(), c.expected);
    }
}

TEST_F(FileDataStreamTest, RseekClampsIntoTheData)
{
    const CursorCase cases[] = {
        {"past the end", 0, 15, eFromStart, 10},
        {"to the end", 4, 10, eFromStart, 10},
        {"before the start", 4, -5, eFromCurrent, 0},
        {"back from end", 0, -3, eFromEnd, 7},
        {"past end from end", 0, 3, eFromEnd, 10},
        {"unknown origin counts from start", 8, 2, 9, 2},
        {"wrapping offset", 5, INT64_MAX, eFromCurrent, 10},
        {"most negative offset", 5, INT64_MIN, eFromEnd, 0},
    };
    FileDataStream stream(tenBytes(), Mode::eRead);
    ASSERT_TRUE(stream.openForRead());
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_EQ(stream.rseek(c.start, eFromStart), c.start);
        EXPECT_EQ(stream.rseek(c.offset, static_cast<teStreamPosition>(c.from)), c.expected);
    }
}

TEST_F(FileDataStreamTest, WriteCursorMayPassTheEndLeavingAZeroGap)
{
    const auto file = m_dir / "gap.bin";
    FileDataStream stream(file, Mode::eWrite);
    ASSERT_TRUE(stream.openForWrite());
    EXPECT_EQ(stream.wfind(-1, eFromStart), 0);
    EXPECT_EQ(stream.wfind(4, eFromStart), 4);
    EXPECT_EQ(stream.write("ab", 2), 2u);
    EXPECT_EQ(stream.size(), 6u);
    EXPECT_EQ(stream.wfind(-7, eFromEnd), 6);
    EXPECT_EQ(stream.wseek(-7, eFromEnd), 0);
    EXPECT_EQ(stream.wfind(2, eFromEnd), 8);
    EXPECT_EQ(stream.write("c", 1), 1u);
    stream.close();
    EXPECT_EQ(KxTest::readBytes(file), (std::vector<std::uint8_t>{0, 0, 0, 0, 'a', 'b', 0, 0, 'c'}));
}

TEST_F(FileDataStreamTest, TruncateCutsAtTheCursorAndCommitWrites)
{
    const auto file = tenBytes();
    FileDataStream stream(file, Mode::eReadWrite);
    ASSERT_TRUE(stream.open());
    EXPECT_EQ(stream.size(), 10u);
    stream.wseek(4, eFromStart);
    EXPECT_TRUE(stream.truncate());
    EXPECT_TRUE(stream.commit("xy", 2));
    EXPECT_EQ(stream.size(), 6u);
    stream.close();
    EXPECT_EQ(KxTest::readText(file), "0123xy");
}

TEST_F(FileDataStreamTest, OpenModesDecideWhatIsAllowed)
{
    const auto file = tenBytes();
    {
        FileDataStream reader(file, Mode::eRead);
        EXPECT_FALSE(reader.openForWrite());
        EXPECT_EQ(reader.lastError(), std::errc::bad_file_descriptor);
        ASSERT_TRUE(reader.openForRead());
        EXPECT_FALSE(reader.availableToWrite());
        EXPECT_EQ(reader.write("x", 1), 0u);
        EXPECT_FALSE(reader.truncate());
        EXPECT_FALSE(reader.commit(nullptr, 0));
    }
    {
        FileDataStream keeper(file, Mode::eReadWrite);
        ASSERT_TRUE(keeper.open());
        EXPECT_EQ(keeper.size(), 10u);
    }
    {
        FileDataStream writer(file, Mode::eWrite);
        EXPECT_FALSE(writer.openForRead());
        ASSERT_TRUE(writer.openForWrite());
        EXPECT_EQ(writer.size(), 0u);
        char byte = 0;
        EXPECT_EQ(writer.read(&byte, 1), 0u);
    }
    EXPECT_EQ(KxTest::readText(file), "");
}

TEST_F(FileDataStreamTest, FailuresAreReportedNotThrown)
{
    const struct {
        const char* name;
        std::filesystem::path path;
        Mode mode;
        std::errc error;
    } cases[] = {
        {"missing file", m_dir / "missing.bin", Mode::eRead, std::errc::no_such_file_or_directory},
        {"missing folder", m_dir / "no" / "file.bin", Mode::eWrite, std::errc::no_such_file_or_directory},
        {"directory", m_dir.path(), Mode::eRead, std::errc::is_a_directory},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        FileDataStream stream(c.path, c.mode);
        EXPECT_FALSE(stream.open());
        EXPECT_FALSE(stream.isOpen());
        EXPECT_EQ(stream.lastError(), c.error);
        char byte = 0;
        EXPECT_EQ(stream.read(&byte, 1), 0u);
        EXPECT_EQ(stream.rseek(3, eFromStart), 0);
    }
}

TEST_F(FileDataStreamTest, ClosingBothRolesClosesTheFile)
{
    FileDataStream stream(tenBytes(), Mode::eReadWrite);
    ASSERT_TRUE(stream.openForRead());
    ASSERT_TRUE(stream.openForWrite());
    stream.rseek(5, eFromStart);
    stream.closeForRead();
    EXPECT_TRUE(stream.isOpen());
    EXPECT_FALSE(stream.availableToRead());
    EXPECT_TRUE(stream.availableToWrite());
    stream.closeForWrite();
    EXPECT_FALSE(stream.isOpen());
    EXPECT_EQ(stream.position(), 0);
}

} // namespace
