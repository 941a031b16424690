#include <Types/TextCommands/GeometryTextCommands.h>

#include <Types/GeLib/GeJSONCurves.h>
#include <Types/GeLib/GeJSONPlane.h>
#include <Types/GeLib/GeJSONPoints.h>
#include <Types/GeLib/GeJSONScalars.h>
#include <Types/GeLib/GeJSONStrings.h>
#include <Types/GeLib/GeText.h>

#include <base/JSONNode.h>
#include <base/Strings.h>

#include <geometry/MatrixChain.h>
#include <geometry/TmGeLine3d.h>
#include <geometry/TmGeMatrix3d.h>
#include <geometry/TmGePlane.h>
#include <geometry/TmGePoint3d.h>
#include <geometry/TmGeVector3d.h>

#include <boost/json/object.hpp>

#include <optional>

namespace Kx {

namespace {

using namespace Kx::Types;

// How each kind of argument is read, and the word its messages use ("No parameter for the
// Point", "Invalid json for vector"): the words are the commands' own, capital P included.
template <class T>
struct Argument;
template <>
struct Argument<TmGePoint3d> {
    static constexpr const wchar_t* kind = L"Point";
    static bool read(const std::wstring& text, TmGePoint3d& out) { return JSONStringToPoint3d(text, out, nullptr); }
    static std::wstring write(const TmGePoint3d& value) { return Point3dToJSONString(value, nullptr); }
};
template <>
struct Argument<TmGeVector3d> {
    static constexpr const wchar_t* kind = L"vector";
    static bool read(const std::wstring& text, TmGeVector3d& out) { return JSONStringToVector3d(text, out, nullptr); }
    static std::wstring write(const TmGeVector3d& value) { return Vector3dToJSONString(value, nullptr); }
};
template <>
struct Argument<TmGeLine3d> {
    static constexpr const wchar_t* kind = L"line";
    static bool read(const std::wstring& text, TmGeLine3d& out) { return JSONStringToLine3d(text, out, nullptr); }
    static std::wstring write(const TmGeLine3d& value) { return Line3dToJSONString(value, nullptr); }
};
template <>
struct Argument<TmGePlane> {
    static constexpr const wchar_t* kind = L"plane";
    static bool read(const std::wstring& text, TmGePlane& out) { return JSONStringToPlane(text, out, nullptr); }
    static std::wstring write(const TmGePlane& value) { return PlaneToJSONString(value, nullptr); }
};
template <>
struct Argument<TmGeMatrix3d> {
    static constexpr const wchar_t* kind = L"matrix";
    static bool read(const std::wstring& text, TmGeMatrix3d& out) { return JSONStringToMatrix3d(text, out, nullptr); }
    static std::wstring write(const TmGeMatrix3d& value) { return Matrix3dToJSONString(value, nullptr); }
};

// Reads parameter `index` as a T, or makes the failure answer in `error`.
template <class T>
bool readArgument(const TextCommandParameters& parameters, std::size_t index, T& out, std::wstring& error)
{
    if (index >= parameters.parameters()) {
        error = TextCommand::failure(std::wstring(L"No parameter for the ") + Argument<T>::kind);
        return false;
    }
    if (!Argument<T>::read(parameters[index], out)) {
        error = TextCommand::failure(std::wstring(L"Invalid json for ") + Argument<T>::kind);
        return false;
    }
    return true;
}

template <class T>
std::wstring answer(const T& value)
{
    return Argument<T>::write(value);
}
std::wstring answer(bool value)
{
    return value ? L"1" : L"0";
}
std::wstring answer(double value)
{
    return DoubleToString(value);
}
std::wstring answer(const JSONNode& node)
{
    return ToIString(node.stringify(false));
}

// The shape of most commands: two values in, in order (a matrix is always the first), one out.
template <class A, class B, class F>
std::wstring binary(const TextCommandParameters& parameters, F&& compute)
{
    A a;
    B b;
    std::wstring error;
    if (!readArgument(parameters, 0, a, error) || !readArgument(parameters, 1, b, error))
        return error;
    return answer(compute(a, b));
}

template <class A, class F>
std::wstring unary(const TextCommandParameters& parameters, F&& compute)
{
    A a;
    std::wstring error;
    if (!readArgument(parameters, 0, a, error))
        return error;
    return answer(compute(a));
}

// World-to-local needs the chain's inverse; a flattening chain has none, and transforming by the
// singular matrix unchanged would answer plausible nonsense.
template <class T>
std::wstring inverseTransformed(const TextCommandParameters& parameters, T (*transform)(T, const TmGeMatrix3d&))
{
    TmGeMatrix3d chain;
    T value;
    std::wstring error;
    if (!readArgument(parameters, 0, chain, error) || !readArgument(parameters, 1, value, error))
        return error;
    TmGeMatrix3d inverse;
    if (!Tmk::isOk(chain.inverse(inverse)))
        return TextCommand::failure(L"The local to world matrix is singular and has no inverse");
    return answer(transform(std::move(value), inverse));
}

TmGePoint3d transformed(TmGePoint3d point, const TmGeMatrix3d& m) { return m * point; }
TmGeVector3d transformed(TmGeVector3d vector, const TmGeMatrix3d& m) { return vector.transformBy(m); }
TmGeLine3d transformed(TmGeLine3d line, const TmGeMatrix3d& m)
{
    (void)line.transformBy(m);
    return line;
}
TmGePlane transformed(TmGePlane plane, const TmGeMatrix3d& m) { return plane.transformBy(m); }

template <class T>
std::wstring localToWorld(const TextCommandParameters& parameters)
{
    return binary<TmGeMatrix3d, T>(parameters, [](const TmGeMatrix3d& m, const T& value) { return transformed(value, m); });
}

template <class T>
std::wstring worldToLocal(const TextCommandParameters& parameters)
{
    return inverseTransformed<T>(parameters, [](T value, const TmGeMatrix3d& m) { return transformed(std::move(value), m); });
}

std::wstring popMatrix(const TextCommandParameters& parameters, bool (*pop)(TmGeMatrix3d&, const TmGeMatrix3d&) noexcept)
{
    TmGeMatrix3d chain;
    TmGeMatrix3d removed;
    std::wstring error;
    if (!readArgument(parameters, 0, chain, error) || !readArgument(parameters, 1, removed, error))
        return error;
    if (!pop(chain, removed))
        return TextCommand::failure(L"The matrix to remove is singular: it cannot have been added");
    return answer(chain);
}

// The properties object of the line and plane builders: a JSON text, or nothing when the
// parameter is missing or not JSON (with the builder's own message).
std::optional<JSONNode> properties(const TextCommandParameters& parameters, const wchar_t* what, std::wstring& error)
{
    if (parameters.parameters() == 0) {
        error = TextCommand::failure(std::wstring(L"No properties specified to create ") + what);
        return std::nullopt;
    }
    auto node = JSONNode::parse(ToUTF8(parameters[0]));
    if (!node)
        error = TextCommand::failure(std::wstring(L"Invalid JSON specified for properties to create ") + what);
    return node;
}

// Reads the named numbers of `node`, all or nothing.
template <std::size_t N>
bool readNumbers(const JSONNode& node, const char* const (&keys)[N], double (&out)[N])
{
    for (std::size_t i = 0; i < N; ++i)
        if (!JSONToDouble(node, out[i], keys[i]))
            return false;
    return true;
}

constexpr const char* s_sixNumbers[] = {"x0", "y0", "z0", "x1", "y1", "z1"};

} // namespace

std::wstring TextCmdGeometryAddVector3dToPoint3d::execute(const TextCommandParameters& parameters) const
{
    return binary<TmGePoint3d, TmGeVector3d>(parameters, [](const TmGePoint3d& p, const TmGeVector3d& v) { return p + v; });
}

std::wstring TextCmdGeometryAddVector3ds::execute(const TextCommandParameters& parameters) const
{
    return binary<TmGeVector3d, TmGeVector3d>(parameters, [](const TmGeVector3d& a, const TmGeVector3d& b) { return a + b; });
}

// Entity equality (the same point and direction), not co-linearity, whatever the help text says:
// scripts written against this command rely on it.
std::wstring TextCmdGeometryAreLine3dsEqual::execute(const TextCommandParameters& parameters) const
{
    return binary<TmGeLine3d, TmGeLine3d>(parameters, [](const TmGeLine3d& a, const TmGeLine3d& b) { return a.isEqualTo(b); });
}

// Co-planar planes are equal even when their stored points differ.
std::wstring TextCmdGeometryArePlanesEqual::execute(const TextCommandParameters& parameters) const
{
    return binary<TmGePlane, TmGePlane>(parameters, [](const TmGePlane& a, const TmGePlane& b) { return a.isCoplanarTo(b); });
}

std::wstring TextCmdGeometryArePoint3dEqual::execute(const TextCommandParameters& parameters) const
{
    return binary<TmGePoint3d, TmGePoint3d>(parameters, [](const TmGePoint3d& a, const TmGePoint3d& b) { return a.isEqualTo(b); });
}

std::wstring TextCmdGeometryAreVector3dEqual::execute(const TextCommandParameters& parameters) const
{
    return binary<TmGeVector3d, TmGeVector3d>(parameters, [](const TmGeVector3d& a, const TmGeVector3d& b) { return a.isEqualTo(b); });
}

std::wstring TextCmdGeometryCrossProduct::execute(const TextCommandParameters& parameters) const
{
    return binary<TmGeVector3d, TmGeVector3d>(parameters, [](const TmGeVector3d& a, const TmGeVector3d& b) { return a.crossProduct(b); });
}

std::wstring TextCmdGeometryDotProduct::execute(const TextCommandParameters& parameters) const
{
    return binary<TmGeVector3d, TmGeVector3d>(parameters, [](const TmGeVector3d& a, const TmGeVector3d& b) { return a.dotProduct(b); });
}

std::wstring TextCmdGeometryLine3dCreate::execute(const TextCommandParameters& parameters) const
{
    std::wstring error;
    const auto node = properties(parameters, L"line3d", error);
    if (!node)
        return error;
    TmGeLine3d line;
    TmGePoint3d start;
    TmGeVector3d direction;
    double numbers[6];
    if (JSONToLine3d(*node, line, nullptr))
        return answer(line);
    if (JSONToPoint3d(*node, start, "startPoint") && JSONToVector3d(*node, direction, "vector"))
        return answer(TmGeLine3d(start, direction));
    if (readNumbers(*node, s_sixNumbers, numbers))
        return answer(TmGeLine3d(TmGePoint3d(numbers[0], numbers[1], numbers[2]), TmGePoint3d(numbers[3], numbers[4], numbers[5])));
    return failure(L"Invalid properties to create line3d - use either startPoint+endPoint or startPoint+vector or x0+y0+z0+x1+y1+z1");
}

// The length is that between the points at parameters 0 and 1, the two points the line is
// written with: the length of the unbounded line is infinite, which JSON cannot hold.
std::wstring TextCmdGeometryLine3dProperties::execute(const TextCommandParameters& parameters) const
{
    return unary<TmGeLine3d>(parameters, [](const TmGeLine3d& line) {
        const TmGePoint3d start = line.evalPoint(0.0);
        JSONNode node = JSONNode::fromValue(boost::json::object());
        Point3dToJSON(start, node, "startPoint");
        Vector3dToJSON(line.evalPoint(1.0) - start, node, "vector");
        node["length"] = line.length(0.0, 1.0, TmGeContext::gTol.equalPoint());
        return node;
    });
}

std::wstring TextCmdGeometryPlaneCreate::execute(const TextCommandParameters& parameters) const
{
    std::wstring error;
    const auto node = properties(parameters, L"plane", error);
    if (!node)
        return error;
    TmGePlane plane;
    double coefficients[4];
    double numbers[6];
    static constexpr const char* s_coefficients[] = {"a", "b", "c", "d"};
    if (JSONToPlane(*node, plane, nullptr))
        return answer(plane);
    if (readNumbers(*node, s_coefficients, coefficients))
        return answer(TmGePlane(coefficients[0], coefficients[1], coefficients[2], coefficients[3]));
    if (readNumbers(*node, s_sixNumbers, numbers))
        return answer(TmGePlane(TmGePoint3d(numbers[0], numbers[1], numbers[2]),
            TmGeVector3d(numbers[3], numbers[4], numbers[5]).normal(TmGeContext::gTol)));
    return failure(L"Invalid properties to create plane - use either pointOnPlane+normal or a+b+c+d or x0+y0+z0+x1+y1+z1");
}

std::wstring TextCmdGeometryPlaneProperties::execute(const TextCommandParameters& parameters) const
{
    return unary<TmGePlane>(parameters, [](const TmGePlane& plane) {
        TmGePoint3d origin;
        TmGeVector3d uAxis;
        TmGeVector3d vAxis;
        plane.get(origin, uAxis, vAxis);
        double a = 0.0, b = 0.0, c = 0.0, d = 0.0;
        plane.getCoefficients(a, b, c, d);
        JSONNode coefficients = JSONNode::fromValue(boost::json::object());
        coefficients["a"] = a;
        coefficients["b"] = b;
        coefficients["c"] = c;
        coefficients["d"] = d;
        JSONNode node = JSONNode::fromValue(boost::json::object());
        Point3dToJSON(plane.pointOnPlane(), node, "pointOnPlane");
        Vector3dToJSON(plane.normal(), node, "normal");
        Vector3dToJSON(vAxis, node, "vdir");
        node["coefficients"] = coefficients;
        return node;
    });
}

std::wstring TextCmdGeometrySubtractPoint3dFromPoint3d::execute(const TextCommandParameters& parameters) const
{
    return binary<TmGePoint3d, TmGePoint3d>(parameters, [](const TmGePoint3d& a, const TmGePoint3d& b) { return a - b; });
}

std::wstring TextCmdGeometrySubtractVector3ds::execute(const TextCommandParameters& parameters) const
{
    return binary<TmGeVector3d, TmGeVector3d>(parameters, [](const TmGeVector3d& a, const TmGeVector3d& b) { return a - b; });
}

// A scalar that is not a number is as good as none.
std::wstring TextCmdGeometryVector3dMultiply::execute(const TextCommandParameters& parameters) const
{
    TmGeVector3d vector;
    std::wstring error;
    if (!readArgument(parameters, 0, vector, error))
        return error;
    const std::optional<double> scalar = parameters.parameterAsDouble(1);
    if (!scalar)
        return failure(L"No scalar (double) specified");
    return answer(vector * *scalar);
}

std::wstring TextCmdLocalToWorldLine3d::execute(const TextCommandParameters& parameters) const { return localToWorld<TmGeLine3d>(parameters); }
std::wstring TextCmdLocalToWorldPlane::execute(const TextCommandParameters& parameters) const { return localToWorld<TmGePlane>(parameters); }
std::wstring TextCmdLocalToWorldPoint3d::execute(const TextCommandParameters& parameters) const { return localToWorld<TmGePoint3d>(parameters); }
std::wstring TextCmdLocalToWorldVector3d::execute(const TextCommandParameters& parameters) const { return localToWorld<TmGeVector3d>(parameters); }
std::wstring TextCmdWorldToLocalLine3d::execute(const TextCommandParameters& parameters) const { return worldToLocal<TmGeLine3d>(parameters); }
std::wstring TextCmdWorldToLocalPlane::execute(const TextCommandParameters& parameters) const { return worldToLocal<TmGePlane>(parameters); }
std::wstring TextCmdWorldToLocalPoint3d::execute(const TextCommandParameters& parameters) const { return worldToLocal<TmGePoint3d>(parameters); }
std::wstring TextCmdWorldToLocalVector3d::execute(const TextCommandParameters& parameters) const { return worldToLocal<TmGeVector3d>(parameters); }

std::wstring TextCmdMatrixAreMatricesEqual::execute(const TextCommandParameters& parameters) const
{
    return binary<TmGeMatrix3d, TmGeMatrix3d>(parameters, [](const TmGeMatrix3d& a, const TmGeMatrix3d& b) { return a.isEqualTo(b); });
}

std::wstring TextCmdMatrixIdentity::execute(const TextCommandParameters&) const
{
    return answer(TmGeMatrix3d::kIdentity);
}

std::wstring TextCmdMatrixMultiply::execute(const TextCommandParameters& parameters) const
{
    return binary<TmGeMatrix3d, TmGeMatrix3d>(parameters, [](const TmGeMatrix3d& left, const TmGeMatrix3d& right) {
        TmGeMatrix3d product;
        return product.setToProduct(left, right);
    });
}

std::wstring TextCmdMatrixPushBack::execute(const TextCommandParameters& parameters) const
{
    return binary<TmGeMatrix3d, TmGeMatrix3d>(parameters, [](TmGeMatrix3d chain, const TmGeMatrix3d& leaf) {
        Utility::push_back(chain, leaf);
        return chain;
    });
}

std::wstring TextCmdMatrixPushFront::execute(const TextCommandParameters& parameters) const
{
    return binary<TmGeMatrix3d, TmGeMatrix3d>(parameters, [](TmGeMatrix3d chain, const TmGeMatrix3d& root) {
        Utility::push_front(chain, root);
        return chain;
    });
}

std::wstring TextCmdMatrixPopBack::execute(const TextCommandParameters& parameters) const { return popMatrix(parameters, &Utility::pop_back); }
std::wstring TextCmdMatrixPopFront::execute(const TextCommandParameters& parameters) const { return popMatrix(parameters, &Utility::pop_front); }

std::wstring TextCmdMatrixSetToRotation::execute(const TextCommandParameters& parameters) const
{
    if (parameters.parameters() < 2)
        return failure(L"No angle and axis parameter specified");
    const std::optional<double> angle = parameters.parameterAsDouble(0);
    if (!angle)
        return failure(L"Invalid number for the rotation angle (radians)");
    TmGeVector3d axis;
    TmGePoint3d center = TmGePoint3d::kOrigin;
    std::wstring error;
    if (!readArgument(parameters, 1, axis, error) || (parameters.parameters() > 2 && !readArgument(parameters, 2, center, error)))
        return error;
    TmGeMatrix3d rotation;
    return answer(rotation.setToRotation(*angle, axis, center));
}

std::wstring TextCmdMatrixSetToTranslation::execute(const TextCommandParameters& parameters) const
{
    return unary<TmGeVector3d>(parameters, [](const TmGeVector3d& v) {
        TmGeMatrix3d translation;
        return translation.setToTranslation(v);
    });
}

} // namespace Kx
