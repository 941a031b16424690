#include "Srgb.h"

#include <gtest/gtest.h>

namespace {

using Kx::Content::linearFromSrgbByte;
using Kx::Content::srgbByte;
using Kx::Content::srgbEncoded;

// Pairs every colour-managed tool agrees on: linear light to 8-bit sRGB.
TEST(SrgbTest, KnownPairsOfLinearAndDisplayValues)
{
    EXPECT_EQ(srgbByte(0.0), 0);
    EXPECT_EQ(srgbByte(1.0), 255);
    EXPECT_EQ(srgbByte(0.5), 188);
    EXPECT_EQ(srgbByte(0.18), 118) << "the photographer's 18 % grey card";
    EXPECT_EQ(srgbByte(0.001), 3) << "the linear segment near black: 12.92 x 0.001 x 255";
    EXPECT_NEAR(srgbEncoded(0.0031308), 0.04045, 1e-5) << "both segments meet at the breakpoint";
    EXPECT_NEAR(srgbEncoded(0.0031309), 0.04045, 1e-5);
}

TEST(SrgbTest, OutOfRangeChannelsAreClamped)
{
    EXPECT_EQ(srgbByte(1.059), 255) << "measured gold exceeds 1";
    EXPECT_EQ(srgbByte(-0.02), 0);
}

TEST(SrgbTest, EveryByteSurvivesTheRoundTripThroughLinear)
{
    for (int value = 0; value <= 255; ++value) {
        EXPECT_EQ(srgbByte(linearFromSrgbByte(value)), value);
    }
    EXPECT_LT(linearFromSrgbByte(128), 0.5) << "the encoding is not linear: mid-grey on screen is darker light";
}

} // namespace
