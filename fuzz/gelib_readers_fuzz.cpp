// Arbitrary input to every reader of geometry JSON and geometry text: the bytes parsed as JSON and
// read by each JSON reader with and without a key, the JSON text readers on the same text, and the
// grouped text readers on it. JSON readers answer false and never throw; text readers throw only
// std::bad_cast or boost::bad_lexical_cast. What a text reader accepts must read back bit for bit
// (NaNs by sign) from the text its writer makes of it.

#include <kx/GeLib.h>
#include <Types/Geometry/BRect.h>
#include <Types/Testors/GeLibTestor.h>

#include <base/Exception.h>
#include <datamodel/EntityCodec.h>

#include <base/JSONNode.h>
#include <base/Strings.h>

#include <geometry/TmGe.h>

#include <boost/lexical_cast/bad_lexical_cast.hpp>

#include <bit>
#include <cmath>
#include <cstdint>
#include <span>
#include <string>
#include <typeinfo>

namespace {

using namespace Kx::Types;

bool sameDouble(double a, double b)
{
    if (std::isnan(a) || std::isnan(b)) {
        return std::isnan(a) && std::isnan(b) && std::signbit(a) == std::signbit(b);
    }
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

template <class T, class Read>
void readJSON(const Kx::JSONNode& node, Read read)
{
    for (const char* key : {static_cast<const char*>(nullptr), "v", "center", "x"}) {
        T out;
        (void)read(node, out, key);
    }
}

double entry(const TmGeMatrix3d& matrix, unsigned k) { return matrix(k / 4, k % 4); }
template <class T>
double entry(const T& coordinates, unsigned k)
{
    return coordinates[k];
}

// The first read may throw the stated exceptions; reading the writer's text of what it accepted
// must not throw at all, and must give the same doubles.
template <class T>
void checkText(const std::wstring& text, T (*read)(const std::wstring&), std::wstring (*write)(const T&), unsigned count)
{
    T value;
    try {
        value = read(text);
    } catch (const boost::bad_lexical_cast&) {
        return;
    } catch (const std::bad_cast&) {
        return;
    }
    const T again = read(write(value));
    for (unsigned k = 0; k < count; ++k) {
        if (!sameDouble(entry(value, k), entry(again, k)))
            __builtin_trap();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::wstring wide = Kx::ToIString(text);

    if (const auto node = Kx::JSONNode::parse(text)) {
        readJSON<TmGePoint2d>(*node, &JSONToPoint2d);
        readJSON<TmGeVector2d>(*node, &JSONToVector2d);
        readJSON<TmGePoint3d>(*node, &JSONToPoint3d);
        readJSON<TmGeVector3d>(*node, &JSONToVector3d);
        readJSON<TmGeMatrix2d>(*node, &JSONToMatrix2d);
        readJSON<TmGeMatrix3d>(*node, &JSONToMatrix3d);
        readJSON<TmGeLine3d>(*node, &JSONToLine3d);
        readJSON<TmGeLineSeg3d>(*node, &JSONToLineSeg3d);
        readJSON<TmGePlane>(*node, &JSONToPlane);
        readJSON<TmGeCircArc2d>(*node, &JSONToCircArc2d);
        readJSON<TmGeCircArc3d>(*node, &JSONToCircArc3d);
        readJSON<TmGeEllipArc2d>(*node, &JSONToEllipArc2d);
        readJSON<TmGeEllipArc3d>(*node, &JSONToEllipArc3d);
        double number = 0;
        bool flag = false;
        (void)JSONToDouble(*node, number, "v");
        (void)JSONToBool(*node, flag, "v");
    }
    for (const char* key : {static_cast<const char*>(nullptr), "v"}) {
        TmGePoint3d point;
        TmGeVector3d vector;
        TmGeLine3d line;
        TmGePlane plane;
        TmGeMatrix3d matrix;
        (void)JSONStringToPoint3d(wide, point, key);
        (void)JSONStringToVector3d(wide, vector, key);
        (void)JSONStringToLine3d(wide, line, key);
        (void)JSONStringToPlane(wide, plane, key);
        (void)JSONStringToMatrix3d(wide, matrix, key);
    }

    checkText(wide, &StringToPoint2d, &Point2dToString, 2);
    checkText(wide, &StringToVector2d, &Vector2dToString, 2);
    checkText(wide, &StringToPoint3d, &Point3dToString, 3);
    checkText(wide, &StringToVector3d, &Vector3dToString, 3);
    checkText(wide, &StringToMatrix3d, &Matrix3dToString, 16);
    try {
        (void)StringToBRect(wide);
    } catch (const std::bad_cast&) {
    }

    // Whole entities of geometry (kernel types, float tuples, bounds) from arbitrary JSON, XML
    // and bytes: the stated loading error or nothing.
    const auto loadQuietly = [](auto&& load) {
        try {
            Kx::GeLibTestor entity;
            load(entity);
        } catch (const Kx::Exception&) {
        }
    };
    loadQuietly([&](Kx::GeLibTestor& entity) { Kx::entityFromJSON(entity, text); });
    loadQuietly([&](Kx::GeLibTestor& entity) { Kx::loadEntityXml(entity, text); });
    loadQuietly([&](Kx::GeLibTestor& entity) { Kx::loadEntityBinary(entity, std::span(data, size)); });
    return 0;
}
