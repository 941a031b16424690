#include <geometry/TmGeFileIO.h>

#include <geometry/TmGeCircArc2d.h>
#include <geometry/TmGeCircArc3d.h>
#include <geometry/TmGeCurve3dVec.h>
#include <geometry/TmGeEllipArc2d.h>
#include <geometry/TmGeEllipArc3d.h>
#include <geometry/TmGeLine3d.h>
#include <geometry/TmGeLineSeg3d.h>
#include <geometry/TmGeNurbCurve2d.h>
#include <geometry/TmGeNurbCurve3d.h>
#include <geometry/TmGePolyline3d.h>

#include "FileIOFields.h"

#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

using Tmk::ErrorStatus;
using TmGeInternal::checkCall;
using TmGeInternal::In;
using TmGeInternal::Out;
using TmGeInternal::readLayout;
using TmGeInternal::writeLayout;

namespace TmGeInternal {

// Splines in the plane and in space share one layout; 3.2 added the periodic flag.
template <class Curve>
struct NurbsLayout {
    using Point = typename std::remove_cvref_t<decltype(std::declval<const Curve&>().controlPoints())>::value_type;

    static void write(Out& out, const Curve& curve, const TmGeLibVersion& version)
    {
        out.integer(curve.degree());
        if (hasLayout3_2(version))
            out.boolean(curve.isPeriodic());
        out.boolean(curve.isRational());
        out.count(curve.knots().size());
        for (double knot : curve.knots())
            out.real(knot);
        out.count(curve.controlPoints().size());
        for (const Point& point : curve.controlPoints())
            out.point(point);
        for (double weight : curve.weights())
            out.real(weight);
    }
    static void read(In& in, Curve& value, const TmGeLibVersion& version)
    {
        int degree = 0;
        bool periodic = false;
        bool rational = false;
        std::uint32_t numKnots = 0;
        std::uint32_t numPoints = 0;
        std::vector<double> knots;
        std::vector<Point> points;
        std::vector<double> weights;
        in.integer(degree);
        if (hasLayout3_2(version))
            in.boolean(periodic);
        in.boolean(rational).count(numKnots).reals(knots, numKnots).count(numPoints).points(points, numPoints);
        if (rational)
            in.reals(weights, numPoints);
        acceptBuilt(in, value, [&](Curve& curve) {
            return curve.set(degree, std::move(knots), std::move(points), std::move(weights), periodic);
        });
    }
};

template <> struct Layout<TmGeNurbCurve2d> : NurbsLayout<TmGeNurbCurve2d> {};
template <> struct Layout<TmGeNurbCurve3d> : NurbsLayout<TmGeNurbCurve3d> {};

template <>
struct Layout<TmGePolyline3d> {
    static void write(Out& out, const TmGePolyline3d& value, const TmGeLibVersion&)
    {
        out.count(value.points().size());
        for (const TmGePoint3d& point : value.points())
            out.point(point);
    }
    static void read(In& in, TmGePolyline3d& value, const TmGeLibVersion&)
    {
        std::uint32_t n = 0;
        std::vector<TmGePoint3d> points;
        if (in.count(n).points(points, n).ok())
            value.set(std::move(points));
    }
};

} // namespace TmGeInternal

// ---- splines, polylines, curve lists ----

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGeNurbCurve2d& value, const TmGeLibVersion& version)
{
    return writeLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGeNurbCurve2d& value, const TmGeLibVersion& version)
{
    return readLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGeNurbCurve3d& value, const TmGeLibVersion& version)
{
    return writeLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGeNurbCurve3d& value, const TmGeLibVersion& version)
{
    return readLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGePolyline3d& value, const TmGeLibVersion& version)
{
    return writeLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGePolyline3d& value, const TmGeLibVersion& version)
{
    return readLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGeCurve3dVec& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    if (const ErrorStatus s = Out(filer).count(value.size()).result(); s != ErrorStatus::eOk)
        return s;
    for (const TmGeCurve3d* curve : value.curves())
        if (const ErrorStatus s = outCurve3d(filer, *curve, version); s != ErrorStatus::eOk)
            return s;
    return ErrorStatus::eOk;
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGeCurve3dVec& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    std::uint32_t n = 0;
    In in(filer);
    in.count(n);
    TmGeCurve3dVec curves;
    for (std::uint32_t i = 0; i < n && in.ok(); ++i) {
        std::unique_ptr<TmGeCurve3d> curve;
        const ErrorStatus status = inCurve3d(filer, curve, version);
        if (status != ErrorStatus::eOk)
            return status;
        curves.append(std::move(curve));
    }
    if (in.ok())
        value = std::move(curves);
    return in.result();
}

// ---- curves behind their base class ----

namespace {

// One concrete curve class a tagged record may hold, and the tag it is stored under.
template <Tmk::EEntityKind Kind, class Concrete>
struct TaggedAs {
    static constexpr Tmk::EEntityKind kKind = Kind;
    using Type = Concrete;
};

// The concrete classes behind one base class: a tag, then that class's fields.
template <class Base, class... Entries>
struct CurveFamily {
    [[nodiscard]] static bool knows(Tmk::EEntityKind kind) { return ((kind == Entries::kKind) || ...); }

    static ErrorStatus write(TmGeFiler* filer, const Base& curve, const TmGeLibVersion& version)
    {
        if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
            return s;
        // A kind of curve this kernel does not know has no layout; nothing is written for it.
        if (!knows(curve.type()))
            return ErrorStatus::eInvalidInput;
        if (const ErrorStatus s = Out(filer).tag(curve.type()).result(); s != ErrorStatus::eOk)
            return s;
        ErrorStatus status = ErrorStatus::eInvalidInput;
        (void)((curve.type() == Entries::kKind
                && (status = TmGeFileIO::outFields(filer, static_cast<const typename Entries::Type&>(curve), version),
                    true))
               || ...);
        return status;
    }

    static ErrorStatus read(TmGeFiler* filer, std::unique_ptr<Base>& curve, const TmGeLibVersion& version)
    {
        if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
            return s;
        std::uint16_t tag = 0;
        In in(filer);
        if (!in.tag(tag).ok())
            return in.result();
        const auto kind = static_cast<Tmk::EEntityKind>(tag);
        ErrorStatus status = ErrorStatus::eCorruptData;
        (void)((kind == Entries::kKind && (status = readAs<typename Entries::Type>(filer, curve, version), true))
               || ...);
        return status;
    }

private:
    template <class Concrete>
    static ErrorStatus readAs(TmGeFiler* filer, std::unique_ptr<Base>& curve, const TmGeLibVersion& version)
    {
        auto concrete = std::make_unique<Concrete>();
        const ErrorStatus status = TmGeFileIO::inFields(filer, *concrete, version);
        if (status == ErrorStatus::eOk)
            curve = std::move(concrete);
        return status;
    }
};

using Tmk::EEntityKind;

using Curves3d = CurveFamily<TmGeCurve3d, TaggedAs<EEntityKind::eLine3d, TmGeLine3d>,
                             TaggedAs<EEntityKind::eLineSeg3d, TmGeLineSeg3d>,
                             TaggedAs<EEntityKind::eCircArc3d, TmGeCircArc3d>,
                             TaggedAs<EEntityKind::eEllipArc3d, TmGeEllipArc3d>,
                             TaggedAs<EEntityKind::eNurbCurve3d, TmGeNurbCurve3d>,
                             TaggedAs<EEntityKind::ePolyline3d, TmGePolyline3d>>;

using Curves2d = CurveFamily<TmGeCurve2d, TaggedAs<EEntityKind::eCircArc2d, TmGeCircArc2d>,
                             TaggedAs<EEntityKind::eEllipArc2d, TmGeEllipArc2d>,
                             TaggedAs<EEntityKind::eNurbCurve2d, TmGeNurbCurve2d>>;

} // namespace

ErrorStatus TmGeFileIO::outCurve3d(TmGeFiler* filer, const TmGeCurve3d& curve, const TmGeLibVersion& version)
{
    return Curves3d::write(filer, curve, version);
}

ErrorStatus TmGeFileIO::inCurve3d(TmGeFiler* filer, std::unique_ptr<TmGeCurve3d>& curve, const TmGeLibVersion& version)
{
    return Curves3d::read(filer, curve, version);
}

ErrorStatus TmGeFileIO::outCurve2d(TmGeFiler* filer, const TmGeCurve2d& curve, const TmGeLibVersion& version)
{
    return Curves2d::write(filer, curve, version);
}

ErrorStatus TmGeFileIO::inCurve2d(TmGeFiler* filer, std::unique_ptr<TmGeCurve2d>& curve, const TmGeLibVersion& version)
{
    return Curves2d::read(filer, curve, version);
}
