#include <Types/Geometry/Float2.h>
#include <Types/Geometry/Float3.h>
#include <Types/Geometry/Point2f.h>
#include <Types/Geometry/Point3f.h>
#include <Types/Geometry/Vector2f.h>
#include <Types/Geometry/Vector3f.h>

#include <base/Strings.h>

#include <boost/lexical_cast.hpp>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <ostream>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <vector>

namespace Kx {
template <class T>
    requires requires(const T& value) { value.m_x; }
static void PrintTo(const T& value, std::ostream* os)
{
    *os << ToUTF8(value.toString());
}
} // namespace Kx

namespace {

using namespace Kx;

constexpr float kInf = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

template <class T>
constexpr bool kSpatial = requires(const T& value) { value.m_z; };
template <class T>
constexpr unsigned kAxes = kSpatial<T> ? 3 : 2;

// A tuple of any of the six types; z is dropped for the planar ones.
template <class T>
T make(float x, float y, float z = 0.0f)
{
    if constexpr (kSpatial<T>)
        return T(x, y, z);
    else
        return T(x, y);
}

// The component addressed by index, written through the setters.
template <class T>
T withComponent(T tuple, unsigned index, float value)
{
    if (index == 0)
        tuple.x(value);
    else if (index == 1)
        tuple.y(value);
    else if constexpr (kSpatial<T>)
        tuple.z(value);
    return tuple;
}

template <class T>
class FloatTupleTest : public testing::Test {};
using AllTuples = testing::Types<Float2, Float3, Point2f, Point3f, Vector2f, Vector3f>;
TYPED_TEST_SUITE(FloatTupleTest, AllTuples);

TYPED_TEST(FloatTupleTest, EqualWithinOneMillionthAbsoluteOnEveryComponent)
{
    struct Case {
        const char* name;
        float a, b;
        bool equal;
    };
    const Case cases[] = {
        {"0.9e-6 apart", 0.0f, 0.9e-6f, true},
        {"1.1e-6 apart", 0.0f, 1.1e-6f, false},
        // The float nearest 1e-6 lies just below the double 1e-6: inside, because the bound is
        // the widened double and not the float.
        {"nearest float to 1e-6 apart", 0.0f, 1e-6f, true},
        {"0.5e-6 apart near 1", 1.0f, 1.0000005f, true},
        {"2e-6 apart near 1", 1.0f, 1.000002f, false},
        // The float difference rounds back to 1e-6f; the exact difference would exceed 1e-6.
        {"difference taken in float", 1e-6f, -1e-14f, true},
        {"absolute, not relative", 1e6f, std::nextafter(1e6f, 2e6f), false},
        {"NaN", kNaN, kNaN, false},
        {"infinity", kInf, kInf, false},
    };
    const TypeParam base = make<TypeParam>(3.0f, -7.0f, 11.0f);
    for (const Case& c : cases) {
        for (unsigned index = 0; index < kAxes<TypeParam>; ++index) {
            SCOPED_TRACE(testing::Message() << c.name << ", component " << index);
            const TypeParam a = withComponent(base, index, c.a);
            const TypeParam b = withComponent(base, index, c.b);
            EXPECT_EQ(a == b, c.equal);
            EXPECT_EQ(b == a, c.equal);
            EXPECT_EQ(a != b, !c.equal);
        }
    }
}

TYPED_TEST(FloatTupleTest, TextFormPrintsSixSignificantDigits)
{
    if constexpr (kSpatial<TypeParam>) {
        EXPECT_EQ(TypeParam().toString(), L"(x: 0, y: 0, z: 0)");
        EXPECT_EQ(make<TypeParam>(0.1f, -2.5e7f, 123456789.0f).toString(), L"(x: 0.1, y: -2.5e+07, z: 1.23457e+08)");
    } else {
        EXPECT_EQ(TypeParam().toString(), L"(0, 0)");
        EXPECT_EQ(make<TypeParam>(0.1f, 1e-7f).toString(), L"(0.1, 1e-07)");
    }
}

template <class T>
struct OrderCase {
    const char* name;
    T a, b;
    bool aLess, bLess;
};

template <class T>
void expectOrder(const std::vector<OrderCase<T>>& cases)
{
    for (const OrderCase<T>& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.a < c.b, c.aLess);
        EXPECT_EQ(c.b < c.a, c.bLess);
    }
}

// Point3f is left out: it is ordered lexicographically.
template <class T>
class SumOrderedTupleTest : public testing::Test {};
using SumOrderedTuples = testing::Types<Float2, Float3, Point2f, Vector2f, Vector3f>;
TYPED_TEST_SUITE(SumOrderedTupleTest, SumOrderedTuples);

TYPED_TEST(SumOrderedTupleTest, OrderedBySingleFloatSum)
{
    const auto m = [](float x, float y, float z = 0) { return make<TypeParam>(x, y, z); };
    std::vector<OrderCase<TypeParam>> cases = {
        {"sum decides, not the first component", m(1, 5), m(4, 3), true, false},
        {"equal sums are unordered", m(1, 2), m(2, 1), false, false},
        {"sums equal after rounding to float", m(1e8f, 1), m(1e8f, 0), false, false},
        {"ordered though equal by ==", m(0, 0), m(0, 1e-7f), true, false},
    };
    // (y + x) + z is 1; adding z before either of x or y loses it and gives 0.
    if constexpr (kSpatial<TypeParam>)
        cases.push_back({"(y + x) + z in that order", m(1e8f, -1e8f, 1), m(0, 0, 0.5f), false, true});
    expectOrder(cases);
}

TEST(Point3fTest, OrderedLexicographicallyAndExactly)
{
    expectOrder<Point3f>({
        {"x decides before a larger sum", {1, 9, 9}, {2, 0, 0}, true, false},
        {"equal points", {1, 2, 3}, {1, 2, 3}, false, false},
        {"y decides when x ties", {1, 2, 9}, {1, 3, 0}, true, false},
        {"z decides last", {1, 2, 3}, {1, 2, 4}, true, false},
        {"below the tolerance of ==", {1, 2, 3}, {1, 2, std::nextafter(3.0f, 4.0f)}, true, false},
        {"a NaN x is a tie", {kNaN, 1, 0}, {0, 2, 0}, true, false},
    });
}

template <class T>
class GelibTupleTest : public testing::Test {};
using GelibTuples = testing::Types<Point2f, Point3f, Vector2f, Vector3f>;
TYPED_TEST_SUITE(GelibTupleTest, GelibTuples);

TYPED_TEST(GelibTupleTest, RoundsToNearestFloatAndWidensExactly)
{
    using G = decltype(TypeParam().makeGelib());
    static_assert(!std::is_convertible_v<G, TypeParam>, "the lossy conversion must be explicit");

    // 0.1 rounds up, -0.7 rounds towards zero, and 2^24 + 1 is a tie that goes to the even 2^24.
    const double source[] = {0.1, -0.7, 16777217.0};
    const float rounded[] = {0.1f, -0.7f, 16777216.0f};
    G geometry;
    for (unsigned axis = 0; axis < kAxes<TypeParam>; ++axis)
        geometry[axis] = source[axis];
    const G widened = TypeParam(geometry).makeGelib();
    for (unsigned axis = 0; axis < kAxes<TypeParam>; ++axis) {
        SCOPED_TRACE(axis);
        EXPECT_EQ(widened[axis], static_cast<double>(rounded[axis]));
    }
}

template <class P>
class PointVectorTest : public testing::Test {};
using Points = testing::Types<Point2f, Point3f>;
TYPED_TEST_SUITE(PointVectorTest, Points);

TYPED_TEST(PointVectorTest, PointsAndVectorsCombineLikeTheGeometryKernel)
{
    using P = TypeParam;
    using V = decltype(P() - P());
    static_assert(std::is_same_v<V, std::conditional_t<kSpatial<P>, Vector3f, Vector2f>>);
    static_assert(std::is_same_v<decltype(P() + V()), P> && std::is_same_v<decltype(P() - V()), P>);

    const P p = make<P>(1, 2, 3);
    const V v = make<V>(0.5f, -4, 10);
    EXPECT_EQ(p - make<P>(4, 8, -1), make<V>(-3, -6, 4));
    EXPECT_EQ(p + v, make<P>(1.5f, -2, 13));
    EXPECT_EQ(p - v, make<P>(0.5f, 6, -7));
    EXPECT_EQ(p.asVector(), make<V>(1, 2, 3));
    EXPECT_EQ(v + make<V>(1, 1, 1) - make<V>(2, 0, 0), make<V>(-0.5f, -3, 11));
    EXPECT_EQ(-v, make<V>(-0.5f, 4, -10));

    P moved = p;
    moved += v;
    moved -= make<V>(1, 1, 1);
    EXPECT_EQ(moved, make<P>(0.5f, -3, 12));
    V twice = v;
    twice += v;
    twice -= make<V>(1, 1, 1);
    EXPECT_EQ(twice, make<V>(0, -9, 19));
}

TEST(Point3fTest, FromStringReadsThreeFloats)
{
    EXPECT_EQ(Point3f::fromString(L"( .25 ,+7, \"1e3\")"), Point3f(0.25f, 7.0f, 1000.0f));
    const Point3f special = Point3f::fromString(L"(inf, -INF, nan)");
    EXPECT_EQ(special.x(), kInf);
    EXPECT_EQ(special.y(), -kInf);
    EXPECT_TRUE(std::isnan(special.z()));

    // The wrong shape throws std::bad_cast itself, not its derived bad_lexical_cast.
    for (const wchar_t* text : {L"(1, 2)", L"(1, 2, 3, 4)", L"1, 2, 3", L""}) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(text)));
        try {
            (void)Point3f::fromString(text);
            ADD_FAILURE() << "no exception";
        } catch (const std::exception& error) {
            EXPECT_EQ(typeid(error), typeid(std::bad_cast));
        }
    }
    for (const wchar_t* text : {L"(1, 2, x)", L"(1e40, 0, 0)", L"(0x10, 0, 0)", L"(\" 1\", 0, 0)", L"(x: 1, y: 2, z: 3)"}) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(text)));
        EXPECT_THROW((void)Point3f::fromString(text), boost::bad_lexical_cast);
    }
}

} // namespace
