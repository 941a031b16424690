#include <Types/Geometry/Color.h>

#include <base/Strings.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <ostream>
#include <stdexcept>

namespace Kx {
static void PrintTo(const Color& value, std::ostream* os) { *os << ToUTF8(value.toString()); }
} // namespace Kx

namespace {

using Kx::Color;

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

// The channel addressed by index, through the setters, so every channel gets the same checks.
Color withChannel(Color color, int channel, float value)
{
    switch (channel) {
    case 0: color.red(value); break;
    case 1: color.green(value); break;
    case 2: color.blue(value); break;
    default: color.alpha(value); break;
    }
    return color;
}

TEST(ColorTest, DefaultIsOpaqueBlackAndScalingKeepsAlpha)
{
    EXPECT_EQ(Color().red(), 0.0f);
    EXPECT_EQ(Color().alpha(), 1.0f);
    EXPECT_EQ((Color() * 0.5).alpha(), 1.0f);

    const Color scaled = Color(0.2f, 0.4f, 0.6f, 0.5f) * 0.5;
    EXPECT_FLOAT_EQ(scaled.red(), 0.1f);
    EXPECT_FLOAT_EQ(scaled.green(), 0.2f);
    EXPECT_FLOAT_EQ(scaled.blue(), 0.3f);
    EXPECT_EQ(scaled.alpha(), 0.5f);
}

TEST(ColorTest, EqualityToleratesLessThanOneTenThousandthPerChannel)
{
    const Color white(1.0f, 1.0f, 1.0f, 1.0f);
    for (int channel = 0; channel < 4; ++channel) {
        SCOPED_TRACE(channel);
        EXPECT_EQ(white, withChannel(white, channel, 0.99995f));
        EXPECT_NE(white, withChannel(white, channel, 0.9998f));
        EXPECT_NE(white, withChannel(white, channel, kNaN));
        EXPECT_FALSE(white == withChannel(white, channel, 1.5f));
    }
}

TEST(ColorTest, AsIntTruncatesTowardsZero)
{
    struct Case {
        float channel;
        int expected;
    };
    const Case cases[] = {{1.0f, 255}, {0.999f, 254}, {0.5f, 127}, {0.0f, 0}, {-0.5f, -127}, {2.0f, 510},
        {kNaN, 0}, {1e30f, std::numeric_limits<int>::max()}, {-1e30f, std::numeric_limits<int>::min()}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.channel);
        const Color color(c.channel, c.channel, c.channel, c.channel);
        EXPECT_EQ(color.redAsInt(), c.expected);
        EXPECT_EQ(color.greenAsInt(), c.expected);
        EXPECT_EQ(color.blueAsInt(), c.expected);
        EXPECT_EQ(color.alphaAsInt(), c.expected);
    }
}

TEST(ColorTest, ValidOnlyWithEveryChannelInTheUnitRange)
{
    EXPECT_TRUE(Color(0.0f, 1.0f, 0.0f, 1.0f).isValid());
    for (int channel = 0; channel < 4; ++channel) {
        SCOPED_TRACE(channel);
        const Color grey(0.5f, 0.5f, 0.5f, 0.5f);
        EXPECT_FALSE(withChannel(grey, channel, 1.2f).isValid());
        EXPECT_FALSE(withChannel(grey, channel, -0.01f).isValid());
        EXPECT_FALSE(withChannel(grey, channel, kNaN).isValid());
    }
}

TEST(ColorTest, OrderedBySumOfChannels)
{
    EXPECT_FALSE(Color(1, 0, 0, 1) < Color(0, 1, 0, 1));
    EXPECT_FALSE(Color(0, 1, 0, 1) < Color(1, 0, 0, 1));
    EXPECT_TRUE(Color(0, 0, 0.9f, 1) < Color(0.5f, 0.5f, 0, 1));
}

TEST(ColorTest, TextForms)
{
    EXPECT_EQ(Color(1, 0.5f, 0, 1).toString(), L"(Red: 1, Green: 0.5, Blue: 0, Alpha: 1)");
    EXPECT_EQ(Color(1, 0, 0, 1).toHex(true), L"#FF0000FF");
    EXPECT_EQ(Color(1, 0, 0, 1).toHex(false), L"#FF0000");
    EXPECT_EQ(Color(1, 0.5f, 0, 1).toHex(false), L"#FF7F00");
    EXPECT_EQ(Color(0.0392157f, 0.6f, 0.8f, 0.2f).toHex(true), L"#0A99CC33");
}

TEST(ColorTest, FromHex)
{
    struct Case {
        const char* text;
        Color expected;
    };
    const Case cases[] = {
        {"#FF7F00", Color(1, 127 / 255.0f, 0, 1)},
        {"FF7F0080", Color(1, 127 / 255.0f, 0, 128 / 255.0f)},
        {"#ff7f00", Color(1, 127 / 255.0f, 0, 1)},
        {"ff:7f:00:40", Color(1, 127 / 255.0f, 0, 64 / 255.0f)},
        {"rgb(0A 14 1E)", Color(10 / 255.0f, 20 / 255.0f, 30 / 255.0f, 1)},
        {"#0000FF80C0", Color(0, 0, 1, 128 / 255.0f)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(Color::fromHex(c.text), c.expected);
    }
    for (const char* text : {"", "#FFF", "#FF00", "#GG0000", "F F F F"}) {
        SCOPED_TRACE(text);
        EXPECT_THROW((void)Color::fromHex(text), std::invalid_argument);
    }
}

TEST(ColorTest, HexTextRoundTripsEveryByteValue)
{
    for (int byte = 0; byte < 256; ++byte) {
        char text[16];
        std::snprintf(text, sizeof text, "#%02X%02X%02X%02X", byte, 255 - byte, byte / 2, (byte * 7) % 256);
        SCOPED_TRACE(text);
        EXPECT_EQ(Kx::ToUTF8(Color::fromHex(text).toHex(true)), text);
    }
}

TEST(ColorTest, RandomColoursAreValidAndVary)
{
    const Color first = Color::random();
    bool varied = false;
    for (int i = 0; i < 16; ++i) {
        const Color next = Color::random();
        EXPECT_TRUE(next.isValid());
        varied = varied || next != first;
    }
    EXPECT_TRUE(varied);
}

} // namespace
