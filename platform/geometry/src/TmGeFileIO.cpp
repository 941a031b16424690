#include <geometry/TmGeFileIO.h>

#include <geometry/TmGeBoundedPlane.h>
#include <geometry/TmGeCircArc2d.h>
#include <geometry/TmGeCircArc3d.h>
#include <geometry/TmGeEllipArc2d.h>
#include <geometry/TmGeEllipArc3d.h>
#include <geometry/TmGeLine3d.h>
#include <geometry/TmGeLineSeg3d.h>
#include <geometry/TmGeMatrix2d.h>
#include <geometry/TmGeMatrix3d.h>
#include <geometry/TmGePlane.h>

#include "FileIOFields.h"

using Tmk::ErrorStatus;
using TmGeInternal::checkCall;
using TmGeInternal::hasLayout3_2;
using TmGeInternal::In;
using TmGeInternal::Out;
using TmGeInternal::readMatrix;
using TmGeInternal::writeMatrix;

// ---- points, vectors, matrices ----

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGePoint2d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    return Out(filer).point(value).result();
}

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGePoint3d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    return Out(filer).point(value).result();
}

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGeVector2d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    return Out(filer).vector(value).result();
}

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGeVector3d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    return Out(filer).vector(value).result();
}

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGeMatrix2d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    return writeMatrix<TmGeMatrix2d, 3>(filer, value);
}

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGeMatrix3d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    return writeMatrix<TmGeMatrix3d, 4>(filer, value);
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGePoint2d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    TmGePoint2d v;
    In in(filer);
    if (in.point(v).ok())
        value = v;
    return in.result();
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGePoint3d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    TmGePoint3d v;
    In in(filer);
    if (in.point(v).ok())
        value = v;
    return in.result();
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGeVector2d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    TmGeVector2d v;
    In in(filer);
    if (in.vector(v).ok())
        value = v;
    return in.result();
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGeVector3d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    TmGeVector3d v;
    In in(filer);
    if (in.vector(v).ok())
        value = v;
    return in.result();
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGeMatrix2d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    return readMatrix<TmGeMatrix2d, 3>(filer, value);
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGeMatrix3d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    return readMatrix<TmGeMatrix3d, 4>(filer, value);
}

// ---- lines and planes ----

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGeLine3d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    return Out(filer).point(value.pointOnLine()).vector(value.direction()).result();
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGeLine3d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    TmGePoint3d point;
    TmGeVector3d direction;
    In in(filer);
    if (in.point(point).vector(direction).ok())
        value.set(point, direction);
    return in.result();
}

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGeLineSeg3d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    Out out(filer);
    out.point(value.startPoint()).point(value.endPoint());
    if (hasLayout3_2(version))
        out.real(value.interval().lowerBound()).real(value.interval().upperBound());
    return out.result();
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGeLineSeg3d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    TmGePoint3d start;
    TmGePoint3d end;
    double lower = 0.0;
    double upper = 1.0;
    In in(filer);
    in.point(start).point(end);
    if (hasLayout3_2(version))
        in.real(lower).real(upper);
    TmGeLineSeg3d seg(start, end);
    in.accept(seg.setInterval({lower, upper}));
    if (in.ok())
        value = seg;
    return in.result();
}

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGePlane& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    return Out(filer).point(value.pointOnPlane()).vector(value.normal()).result();
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGePlane& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    TmGePoint3d point;
    TmGeVector3d normal;
    In in(filer);
    in.point(point).vector(normal);
    TmGePlane plane;
    if (in.ok())
        in.accept(plane.set(point, normal));
    if (in.ok())
        value = plane;
    return in.result();
}

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGeBoundedPlane& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    return Out(filer).point(value.origin()).vector(value.uVector()).vector(value.vVector()).result();
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGeBoundedPlane& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    TmGePoint3d origin;
    TmGeVector3d u;
    TmGeVector3d v;
    In in(filer);
    if (in.point(origin).vector(u).vector(v).ok())
        value.set(origin, u, v);
    return in.result();
}

// ---- arcs ----

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGeCircArc2d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    return Out(filer)
        .point(value.center())
        .vector(value.refVec())
        .real(value.radius())
        .real(value.startAng())
        .real(value.endAng())
        .boolean(value.isClockWise())
        .result();
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGeCircArc2d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    TmGePoint2d center;
    TmGeVector2d ref;
    double radius = 0.0;
    double start = 0.0;
    double end = 0.0;
    bool clockwise = false;
    In in(filer);
    in.point(center).vector(ref).real(radius).real(start).real(end).boolean(clockwise);
    TmGeCircArc2d arc;
    if (in.ok())
        in.accept(arc.set(center, radius, start, end, ref, clockwise));
    if (in.ok())
        value = arc;
    return in.result();
}

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGeCircArc3d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    return Out(filer)
        .point(value.center())
        .vector(value.normal())
        .vector(value.refVec())
        .real(value.radius())
        .real(value.startAng())
        .real(value.endAng())
        .result();
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGeCircArc3d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    TmGePoint3d center;
    TmGeVector3d normal;
    TmGeVector3d ref;
    double radius = 0.0;
    double start = 0.0;
    double end = 0.0;
    In in(filer);
    in.point(center).vector(normal).vector(ref).real(radius).real(start).real(end);
    TmGeCircArc3d arc;
    if (in.ok())
        in.accept(arc.set(center, normal, ref, radius, start, end));
    if (in.ok())
        value = arc;
    return in.result();
}

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGeEllipArc2d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    return Out(filer)
        .point(value.center())
        .vector(value.majorAxis())
        .vector(value.minorAxis())
        .real(value.majorRadius())
        .real(value.minorRadius())
        .real(value.startAng())
        .real(value.endAng())
        .result();
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGeEllipArc2d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    TmGePoint2d center;
    TmGeVector2d major;
    TmGeVector2d minor;
    double majorRadius = 0.0;
    double minorRadius = 0.0;
    double start = 0.0;
    double end = 0.0;
    In in(filer);
    in.point(center).vector(major).vector(minor).real(majorRadius).real(minorRadius).real(start).real(end);
    TmGeEllipArc2d arc;
    if (in.ok())
        in.accept(arc.set(center, major, minor, majorRadius, minorRadius, start, end));
    if (in.ok())
        value = arc;
    return in.result();
}

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGeEllipArc3d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    return Out(filer)
        .point(value.center())
        .vector(value.majorAxis())
        .vector(value.minorAxis())
        .real(value.majorRadius())
        .real(value.minorRadius())
        .real(value.startAng())
        .real(value.endAng())
        .result();
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGeEllipArc3d& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    TmGePoint3d center;
    TmGeVector3d major;
    TmGeVector3d minor;
    double majorRadius = 0.0;
    double minorRadius = 0.0;
    double start = 0.0;
    double end = 0.0;
    In in(filer);
    in.point(center).vector(major).vector(minor).real(majorRadius).real(minorRadius).real(start).real(end);
    TmGeEllipArc3d arc;
    if (in.ok())
        in.accept(arc.set(center, major, minor, majorRadius, minorRadius, start, end));
    if (in.ok())
        value = arc;
    return in.result();
}
