#include <Types/Geometry/Border4.h>

#include <gtest/gtest.h>

#include <limits>

namespace {

using Kx::Border4;

constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();

TEST(Border4Test, ConstructorAndTextFollowTopBottomLeftRight)
{
    const Border4 border(1, 2, 3, 4);
    EXPECT_EQ(border.top, 1);
    EXPECT_EQ(border.bottom, 2);
    EXPECT_EQ(border.left, 3);
    EXPECT_EQ(border.right, 4);
    EXPECT_EQ(border.toString(), L"(1, 2, 3, 4)");
}

TEST(Border4Test, ComponentwiseArithmeticWraps)
{
    EXPECT_EQ(Border4(1, 2, 3, 4) + Border4(10, 20, 30, 40), Border4(11, 22, 33, 44));
    EXPECT_EQ(Border4(kMax, 0, kMin, 0) + Border4(1, 0, -1, 0), Border4(kMin, 0, kMax, 0));
    EXPECT_EQ(Border4(0, kMin, 0, 0) - Border4(0, 1, 0, 0), Border4(0, kMax, 0, 0));
    EXPECT_EQ(-Border4(1, -2, kMin, 0), Border4(-1, 2, kMin, 0));

    Border4 border(1, 2, 3, 4);
    border += Border4(1, 1, 1, 1);
    EXPECT_EQ(border, Border4(2, 3, 4, 5));
    border -= Border4(2, 3, 4, 5);
    EXPECT_EQ(border, Border4());
    EXPECT_NE(Border4(0, 0, 0, 1), Border4());
}

} // namespace
