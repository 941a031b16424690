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
#include <utility>
#include <vector>

using Tmk::ErrorStatus;
using TmGeInternal::checkCall;
using TmGeInternal::hasLayout3_2;
using TmGeInternal::In;
using TmGeInternal::Out;

namespace {

template <class Curve>
ErrorStatus writeNurbs(TmGeFiler* filer, const Curve& curve, const TmGeLibVersion& version)
{
    Out out(filer);
    out.integer(curve.degree());
    if (hasLayout3_2(version))
        out.boolean(curve.isPeriodic());
    out.boolean(curve.isRational());
    out.count(curve.knots().size());
    for (double knot : curve.knots())
        out.real(knot);
    out.count(curve.controlPoints().size());
    for (const auto& point : curve.controlPoints())
        out.point(point);
    for (double weight : curve.weights())
        out.real(weight);
    return out.result();
}

template <class Curve, class Point>
ErrorStatus readNurbs(TmGeFiler* filer, Curve& value, const TmGeLibVersion& version)
{
    In in(filer);
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
    if (!in.ok())
        return in.result();
    Curve curve;
    in.accept(curve.set(degree, std::move(knots), std::move(points), std::move(weights), periodic));
    if (in.ok())
        value = std::move(curve);
    return in.result();
}

} // namespace

// ---- splines, polylines, curve lists ----

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGeNurbCurve2d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    return writeNurbs(filer, value, version);
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGeNurbCurve2d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    return readNurbs<TmGeNurbCurve2d, TmGePoint2d>(filer, value, version);
}

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGeNurbCurve3d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    return writeNurbs(filer, value, version);
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGeNurbCurve3d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    return readNurbs<TmGeNurbCurve3d, TmGePoint3d>(filer, value, version);
}

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGePolyline3d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    Out out(filer);
    out.count(value.points().size());
    for (const TmGePoint3d& point : value.points())
        out.point(point);
    return out.result();
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGePolyline3d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    std::uint32_t n = 0;
    std::vector<TmGePoint3d> points;
    In in(filer);
    if (in.count(n).points(points, n).ok())
        value.set(std::move(points));
    return in.result();
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

bool isCurve3dKind(Tmk::EEntityKind kind)
{
    using Tmk::EEntityKind;
    return kind == EEntityKind::eLine3d || kind == EEntityKind::eLineSeg3d || kind == EEntityKind::eCircArc3d
        || kind == EEntityKind::eEllipArc3d || kind == EEntityKind::eNurbCurve3d || kind == EEntityKind::ePolyline3d;
}

bool isCurve2dKind(Tmk::EEntityKind kind)
{
    using Tmk::EEntityKind;
    return kind == EEntityKind::eCircArc2d || kind == EEntityKind::eEllipArc2d || kind == EEntityKind::eNurbCurve2d;
}

template <class Concrete, class Base>
ErrorStatus readAs(TmGeFiler* filer, std::unique_ptr<Base>& curve, const TmGeLibVersion& version)
{
    auto concrete = std::make_unique<Concrete>();
    const ErrorStatus status = TmGeFileIO::inFields(filer, *concrete, version);
    if (status == ErrorStatus::eOk)
        curve = std::move(concrete);
    return status;
}

} // namespace

ErrorStatus TmGeFileIO::outCurve3d(TmGeFiler* filer, const TmGeCurve3d& curve, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    // A kind of curve this kernel does not know has no layout; nothing is written for it.
    if (!isCurve3dKind(curve.type()))
        return ErrorStatus::eInvalidInput;
    if (const ErrorStatus s = Out(filer).tag(curve.type()).result(); s != ErrorStatus::eOk)
        return s;
    switch (curve.type()) {
    case Tmk::EEntityKind::eLine3d:
        return outFields(filer, static_cast<const TmGeLine3d&>(curve), version);
    case Tmk::EEntityKind::eLineSeg3d:
        return outFields(filer, static_cast<const TmGeLineSeg3d&>(curve), version);
    case Tmk::EEntityKind::eCircArc3d:
        return outFields(filer, static_cast<const TmGeCircArc3d&>(curve), version);
    case Tmk::EEntityKind::eEllipArc3d:
        return outFields(filer, static_cast<const TmGeEllipArc3d&>(curve), version);
    case Tmk::EEntityKind::eNurbCurve3d:
        return outFields(filer, static_cast<const TmGeNurbCurve3d&>(curve), version);
    case Tmk::EEntityKind::ePolyline3d:
        return outFields(filer, static_cast<const TmGePolyline3d&>(curve), version);
    default:
        return ErrorStatus::eInvalidInput;
    }
}

ErrorStatus TmGeFileIO::inCurve3d(TmGeFiler* filer, std::unique_ptr<TmGeCurve3d>& curve, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    std::uint16_t tag = 0;
    In in(filer);
    if (!in.tag(tag).ok())
        return in.result();
    switch (static_cast<Tmk::EEntityKind>(tag)) {
    case Tmk::EEntityKind::eLine3d:
        return readAs<TmGeLine3d>(filer, curve, version);
    case Tmk::EEntityKind::eLineSeg3d:
        return readAs<TmGeLineSeg3d>(filer, curve, version);
    case Tmk::EEntityKind::eCircArc3d:
        return readAs<TmGeCircArc3d>(filer, curve, version);
    case Tmk::EEntityKind::eEllipArc3d:
        return readAs<TmGeEllipArc3d>(filer, curve, version);
    case Tmk::EEntityKind::eNurbCurve3d:
        return readAs<TmGeNurbCurve3d>(filer, curve, version);
    case Tmk::EEntityKind::ePolyline3d:
        return readAs<TmGePolyline3d>(filer, curve, version);
    default:
        return ErrorStatus::eCorruptData;
    }
}

ErrorStatus TmGeFileIO::outCurve2d(TmGeFiler* filer, const TmGeCurve2d& curve, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    if (!isCurve2dKind(curve.type()))
        return ErrorStatus::eInvalidInput;
    if (const ErrorStatus s = Out(filer).tag(curve.type()).result(); s != ErrorStatus::eOk)
        return s;
    switch (curve.type()) {
    case Tmk::EEntityKind::eCircArc2d:
        return outFields(filer, static_cast<const TmGeCircArc2d&>(curve), version);
    case Tmk::EEntityKind::eEllipArc2d:
        return outFields(filer, static_cast<const TmGeEllipArc2d&>(curve), version);
    case Tmk::EEntityKind::eNurbCurve2d:
        return outFields(filer, static_cast<const TmGeNurbCurve2d&>(curve), version);
    default:
        return ErrorStatus::eInvalidInput;
    }
}

ErrorStatus TmGeFileIO::inCurve2d(TmGeFiler* filer, std::unique_ptr<TmGeCurve2d>& curve, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    std::uint16_t tag = 0;
    In in(filer);
    if (!in.tag(tag).ok())
        return in.result();
    switch (static_cast<Tmk::EEntityKind>(tag)) {
    case Tmk::EEntityKind::eCircArc2d:
        return readAs<TmGeCircArc2d>(filer, curve, version);
    case Tmk::EEntityKind::eEllipArc2d:
        return readAs<TmGeEllipArc2d>(filer, curve, version);
    case Tmk::EEntityKind::eNurbCurve2d:
        return readAs<TmGeNurbCurve2d>(filer, curve, version);
    default:
        return ErrorStatus::eCorruptData;
    }
}
