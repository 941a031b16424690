#include <Types/Geometry/Rect2.h>

#include <base/Strings.h>
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <ostream>
#include <string>
#include <utility>

namespace Kx {
static void PrintTo(const Rect2& value, std::ostream* os) { *os << ToUTF8(value.toString()); }
static void PrintTo(const Border4& value, std::ostream* os) { *os << ToUTF8(value.toString()); }
} // namespace Kx

namespace {

using Kx::Border4;
using Kx::Point2;
using Kx::Rect2;
using Kx::Size2;

constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();

const Rect2 kSquare(0, 0, 10, 10);

TEST(Rect2Test, CornerAndSizeFormsAgree)
{
    const Rect2 r(Point2(2, 3), Size2(4, 5));
    EXPECT_EQ(r, Rect2(2, 3, 6, 8));
    EXPECT_EQ(r, Rect2(r.topLeft(), r.bottomRight()));
    EXPECT_EQ(r.size(), Size2(4, 5));
    EXPECT_EQ(r.topRight(), Point2(6, 3));
    EXPECT_EQ(r.bottomLeft(), Point2(2, 8));
    EXPECT_EQ(r.toString(), L"(2, 3, 6, 8)");
}

TEST(Rect2Test, EmptinessIsAZeroExtentNotAnInversion)
{
    EXPECT_TRUE(Rect2(0, 0, 0, 5).isEmpty());
    EXPECT_TRUE(Rect2(0, 3, 10, 3).isEmpty());
    EXPECT_FALSE(Rect2(5, 0, 0, 5).isEmpty());
    EXPECT_FALSE(Rect2(10, 10, 0, 0).isEmpty());

    Rect2 r(1, 2, 3, 4);
    r.empty();
    EXPECT_EQ(r, Rect2());
}

TEST(Rect2Test, TranslationWraps)
{
    Rect2 r(kMax - 1, 0, kMax, 1);
    r += Point2(1, 0);
    EXPECT_EQ(r, Rect2(kMax, 0, kMin, 1));
    EXPECT_EQ(r.width(), 1);
    EXPECT_EQ(r - Size2(1, 0), Rect2(kMax - 1, 0, kMax, 1));
    EXPECT_EQ(kSquare + Size2(1, 2), Rect2(1, 2, 11, 12));
}

TEST(Rect2Test, InflationMovesEachEdgeByItsOwnAmount)
{
    Rect2 r = kSquare;
    r.inflate(1, 2);
    EXPECT_EQ(r, Rect2(-1, -2, 11, 12));
    r = kSquare;
    r.inflate(1, 2, 3, 4);
    EXPECT_EQ(r, Rect2(-1, -2, 13, 14));
    // Border4 is (top, bottom, left, right).
    EXPECT_EQ(kSquare + Border4(2, 4, 1, 3), Rect2(-1, -2, 13, 14));
}

// Every deflate form, given the amounts (left, top, right, bottom).
const std::pair<const char*, std::function<Rect2(Rect2, int, int, int, int)>> kDeflateForms[] = {
    {"four ints", [](Rect2 r, int l, int t, int rt, int b) { r.deflate(l, t, rt, b); return r; }},
    {"Border4", [](Rect2 r, int l, int t, int rt, int b) { r.deflate(Border4(t, b, l, rt)); return r; }},
    {"-= Border4", [](Rect2 r, int l, int t, int rt, int b) { return r -= Border4(t, b, l, rt); }},
    {"- Border4", [](Rect2 r, int l, int t, int rt, int b) { return r - Border4(t, b, l, rt); }},
};

TEST(Rect2Test, DeflationCollapsesAsymmetrically)
{
    struct Case {
        const char* name;
        Rect2 rect;
        int left, top, right, bottom;
        Rect2 expected;
    };
    const Case cases[] = {
        {"no collapse", kSquare, 1, 2, 3, 4, Rect2(1, 2, 7, 6)},
        {"midpoint across, half the overlap below the bottom down", kSquare, 6, 6, 6, 6, Rect2(5, 3, 5, 3)},
        {"larger overlap", kSquare, 7, 7, 7, 7, Rect2(5, 1, 5, 1)},
        {"odd overlap truncates towards zero", Rect2(0, 0, 9, 9), 5, 5, 5, 5, Rect2(4, 4, 4, 4)},
        {"uneven amounts", kSquare, 9, 9, 4, 4, Rect2(7, 5, 7, 5)},
        {"edges that just meet stay", kSquare, 5, 5, 5, 5, Rect2(5, 5, 5, 5)},
        {"wraps", Rect2(kMax, 0, kMax, 0), 1, 0, 0, 0, Rect2(kMin, 0, kMax, 0)},
    };
    for (const auto& [form, deflate] : kDeflateForms) {
        for (const Case& c : cases) {
            SCOPED_TRACE(std::string(form) + ": " + c.name);
            EXPECT_EQ(deflate(c.rect, c.left, c.top, c.right, c.bottom), c.expected);
        }
    }
    Rect2 bySize = kSquare;
    bySize.deflate(Size2(6, 6));
    EXPECT_EQ(bySize, Rect2(5, 3, 5, 3));
    Rect2 byPair = kSquare;
    byPair.deflate(6, 7);
    EXPECT_EQ(byPair, Rect2(5, 1, 5, 1));
}

TEST(Rect2Test, CeilingAndFloorKeepTheTopLeftCorner)
{
    Rect2 r(5, 5, 15, 25);
    r.ceiling(Size2(8, 30));
    EXPECT_EQ(r, Rect2(5, 5, 13, 25));
    r.floor(Size2(12, 30));
    EXPECT_EQ(r, Rect2(5, 5, 17, 35));
}

TEST(Rect2Test, IntersectionFormsAgree)
{
    struct Case {
        const char* name;
        Rect2 a, b, expected;
    };
    const Case cases[] = {
        {"disjoint gives the zero rectangle", kSquare, Rect2(20, 20, 30, 30), Rect2()},
        {"touching gives a zero-width rectangle", kSquare, Rect2(10, 0, 20, 10), Rect2(10, 0, 10, 10)},
        {"overlap", kSquare, Rect2(5, -5, 15, 5), Rect2(5, 0, 10, 5)},
        {"empty input is not special", kSquare, Rect2(4, 4, 4, 4), Rect2(4, 4, 4, 4)},
        {"inverted input gives the zero rectangle", kSquare, Rect2(8, 8, 2, 2), Rect2()},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.a & c.b, c.expected);
        EXPECT_EQ(Rect2::intersect(c.b, c.a), c.expected);
        Rect2 inPlace = c.a;
        inPlace.intersect(c.b);
        EXPECT_EQ(inPlace, c.expected);
        Rect2 viaOperator = c.a;
        viaOperator &= c.b;
        EXPECT_EQ(viaOperator, c.expected);
    }
}

TEST(Rect2Test, IntersectsAndContains)
{
    EXPECT_TRUE(kSquare.intersects(Rect2(10, 10, 20, 20)));
    EXPECT_FALSE(kSquare.intersects(Rect2(11, 0, 20, 10)));
    EXPECT_TRUE(kSquare.intersects(Rect2(5, 5, 5, 5)));
    EXPECT_FALSE(Rect2(5, 5, 5, 5).intersects(kSquare));
    EXPECT_FALSE(Rect2(10, 10, 0, 0).intersects(kSquare));

    EXPECT_TRUE(kSquare.contains(Point2(10, 10)));
    EXPECT_TRUE(kSquare.contains(Point2(0, 0)));
    EXPECT_FALSE(kSquare.contains(Point2(11, 5)));
    EXPECT_FALSE(kSquare.contains(Point2(5, -1)));
    EXPECT_TRUE(Rect2(10, 10, 0, 0).contains(Point2(3, 7)));
    EXPECT_FALSE(Rect2(0, 0, 0, 10).contains(Point2(0, 5)));

    EXPECT_TRUE(kSquare.contains(Rect2(2, 2, 10, 10)));
    EXPECT_TRUE(kSquare.contains(Rect2(8, 8, 2, 2)));
    EXPECT_FALSE(kSquare.contains(Rect2(2, 2, 11, 10)));
}

TEST(Rect2Test, UnionWithRectangles)
{
    struct Case {
        const char* name;
        Rect2 a, b, expected;
    };
    const Case cases[] = {
        {"hull", kSquare, Rect2(5, -5, 20, 5), Rect2(0, -5, 20, 10)},
        {"empty operand is ignored", kSquare, Rect2(50, 50, 50, 60), kSquare},
        {"empty receiver takes the operand", Rect2(-50, -50, 50, -50), kSquare, kSquare},
        {"zero-width receiver is lost", Rect2(20, 0, 20, 30), kSquare, kSquare},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.a | c.b, c.expected);
        Rect2 inPlace = c.a;
        inPlace |= c.b;
        EXPECT_EQ(inPlace, c.expected);
    }
}

TEST(Rect2Test, UnionWithPointsCannotGrowFromNothing)
{
    EXPECT_EQ(kSquare | Point2(15, -5), Rect2(0, -5, 15, 10));
    EXPECT_EQ(kSquare | Point2(5, 5), kSquare);
    EXPECT_EQ(Rect2(0, 0, 0, 10) | Point2(7, 8), Rect2(7, 8, 7, 8));

    Rect2 hull;
    hull |= Point2(1, 2);
    hull |= Point2(5, 6);
    EXPECT_EQ(hull, Rect2(5, 6, 5, 6));
}

TEST(Rect2Test, DifferenceOfRectanglesIsTheBorderBetweenThem)
{
    EXPECT_EQ(kSquare - Rect2(2, 3, 7, 9), Border4(3, 1, 2, 3));
    EXPECT_EQ(kSquare + (Rect2(-1, -2, 13, 14) - kSquare), Rect2(-1, -2, 13, 14));
}

TEST(Rect2Test, OrderedByArea)
{
    EXPECT_FALSE(Rect2(0, 0, 2, 8) < Rect2(0, 0, 4, 4));
    EXPECT_FALSE(Rect2(0, 0, 4, 4) < Rect2(0, 0, 2, 8));
    EXPECT_TRUE(Rect2(100, 100, 102, 102) < Rect2(0, 0, 3, 3));
    // An inverted rectangle has a positive area.
    EXPECT_TRUE(Rect2(0, 0, 5, 5) < Rect2(10, 10, 0, 0));
    EXPECT_TRUE(Rect2(0, 0, 65536, 65536) < Rect2(0, 0, 1, 1));
}

TEST(Rect2Test, Alignment)
{
    const Rect2 reference(0, 0, 100, 50);
    struct Case {
        const char* name;
        Rect2 own;
        int alignment;
        Rect2 horizontal, vertical;
    };
    const Case cases[] = {
        {"start", Rect2(10, 10, 30, 20), 0, Rect2(0, 10, 20, 20), Rect2(10, 0, 30, 10)},
        {"centre", Rect2(10, 10, 30, 20), 1, Rect2(40, 10, 60, 20), Rect2(10, 20, 30, 30)},
        {"centre truncates", Rect2(0, 0, 21, 11), 1, Rect2(39, 0, 60, 11), Rect2(0, 19, 21, 30)},
        {"centre of a larger rectangle truncates towards zero", Rect2(0, 0, 111, 61), 1,
            Rect2(-5, 0, 106, 61), Rect2(0, -5, 111, 56)},
        {"end", Rect2(10, 10, 30, 20), 2, Rect2(80, 10, 100, 20), Rect2(10, 40, 30, 50)},
        {"unknown value", Rect2(10, 10, 30, 20), 7, Rect2(10, 10, 30, 20), Rect2(10, 10, 30, 20)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Rect2 horizontal = c.own;
        horizontal.alignHorizontally(reference, static_cast<Kx::EHorizontalAlignment>(c.alignment));
        EXPECT_EQ(horizontal, c.horizontal);
        Rect2 vertical = c.own;
        vertical.alignVertically(reference, static_cast<Kx::EVerticalAlignment>(c.alignment));
        EXPECT_EQ(vertical, c.vertical);
    }
}

TEST(Rect2Test, Splitting)
{
    const Rect2 r(10, 20, 30, 60);
    struct Case {
        const char* name;
        int at;
        Rect2 left, right, top, bottom;
    };
    const Case cases[] = {
        {"inside", 5, Rect2(10, 20, 15, 60), Rect2(15, 20, 30, 60), Rect2(10, 20, 30, 25), Rect2(10, 25, 30, 60)},
        {"capped at the extent", 100, r, Rect2(30, 20, 30, 60), r, Rect2(10, 60, 30, 60)},
        {"negative is not clamped", -5, Rect2(10, 20, 5, 60), Rect2(5, 20, 30, 60), Rect2(10, 20, 30, 15),
            Rect2(10, 15, 30, 60)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Rect2 first(1, 1, 1, 1);
        Rect2 second(2, 2, 2, 2);
        r.splitHorizontally(c.at, first, second);
        EXPECT_EQ(first, c.left);
        EXPECT_EQ(second, c.right);
        r.splitVertically(c.at, first, second);
        EXPECT_EQ(first, c.top);
        EXPECT_EQ(second, c.bottom);
    }
}

} // namespace
