#include <datamodel/BinaryStreams.h>

#include <base/Exception.h>

#include <gtest/gtest.h>

#include <limits>

namespace Kx {
namespace {

TEST(BinaryStreams, FixedWidthLittleEndianFieldsAndLengthPrefixedUtf8)
{
    BinaryWriteStream out;
    out.write(std::int32_t{-2});
    out.write(true);
    out.write(std::uint16_t{0x1234});
    out.write(1.0f);
    out.write(std::wstring_view(L"\u00e9"));
    const std::vector<std::uint8_t> expected{0xFE, 0xFF, 0xFF, 0xFF, 0x01, 0x34, 0x12, 0x00, 0x00, 0x80, 0x3F,
        0x02, 0x00, 0x00, 0x00, 0xC3, 0xA9};
    EXPECT_EQ(std::vector<std::uint8_t>(out.bytes().begin(), out.bytes().end()), expected);

    BinaryReadStream in(out.bytes());
    EXPECT_EQ(in.read<std::int32_t>(), -2);
    EXPECT_TRUE(in.read<bool>());
    EXPECT_EQ(in.read<std::uint16_t>(), 0x1234);
    EXPECT_EQ(in.read<float>(), 1.0f);
    std::wstring text;
    in.read(text);
    EXPECT_EQ(text, L"\u00e9");
    EXPECT_TRUE(in.atEnd());
}

TEST(BinaryStreams, ReadsPastTheEndThrowAndLeaveTheCursor)
{
    const std::vector<std::uint8_t> bytes{1, 2, 3};
    BinaryReadStream in(bytes);
    EXPECT_THROW((void)in.read<std::int32_t>(), Exception);
    EXPECT_EQ(in.position(), 0u);
    EXPECT_EQ(in.read<std::uint8_t>(), 1);
    EXPECT_THROW(in.skip(3), Exception);
    EXPECT_THROW((void)in.sub(3), Exception);
    const BinaryReadStream part = in.sub(2);
    EXPECT_EQ(part.remaining(), 2u);
    EXPECT_TRUE(in.atEnd());
}

TEST(BinaryStreams, AStringLengthBeyondTheDataIsRefusedBeforeAnyAllocation)
{
    BinaryWriteStream out;
    out.write(std::numeric_limits<std::uint32_t>::max());
    out.write(std::uint8_t{'a'});
    BinaryReadStream in(out.bytes());
    std::string text = "unchanged";
    EXPECT_THROW(in.read(text), Exception);
    EXPECT_EQ(text, "unchanged");
}

} // namespace
} // namespace Kx
