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

#include <type_traits>

using Tmk::ErrorStatus;
using TmGeInternal::readLayout;
using TmGeInternal::writeLayout;

namespace TmGeInternal {

template <> struct Layout<TmGePoint2d> : PointLayout<TmGePoint2d> {};
template <> struct Layout<TmGePoint3d> : PointLayout<TmGePoint3d> {};
template <> struct Layout<TmGeVector2d> : VectorLayout<TmGeVector2d> {};
template <> struct Layout<TmGeVector3d> : VectorLayout<TmGeVector3d> {};
template <> struct Layout<TmGeMatrix2d> : MatrixLayout<TmGeMatrix2d, 3> {};
template <> struct Layout<TmGeMatrix3d> : MatrixLayout<TmGeMatrix3d, 4> {};

template <>
struct Layout<TmGeLine3d> {
    static void write(Out& out, const TmGeLine3d& value, const TmGeLibVersion&)
    {
        out.point(value.pointOnLine()).vector(value.direction());
    }
    static void read(In& in, TmGeLine3d& value, const TmGeLibVersion&)
    {
        TmGePoint3d point;
        TmGeVector3d direction;
        if (in.point(point).vector(direction).ok())
            value.set(point, direction);
    }
};

template <>
struct Layout<TmGeLineSeg3d> {
    static void write(Out& out, const TmGeLineSeg3d& value, const TmGeLibVersion& version)
    {
        out.point(value.startPoint()).point(value.endPoint());
        if (hasLayout3_2(version))
            out.real(value.interval().lowerBound()).real(value.interval().upperBound());
    }
    static void read(In& in, TmGeLineSeg3d& value, const TmGeLibVersion& version)
    {
        TmGePoint3d start;
        TmGePoint3d end;
        double lower = 0.0;
        double upper = 1.0;
        in.point(start).point(end);
        if (hasLayout3_2(version))
            in.real(lower).real(upper);
        acceptBuilt(in, value, [&](TmGeLineSeg3d& seg) {
            seg = TmGeLineSeg3d(start, end);
            return seg.setInterval({lower, upper});
        });
    }
};

template <>
struct Layout<TmGePlane> {
    static void write(Out& out, const TmGePlane& value, const TmGeLibVersion&)
    {
        out.point(value.pointOnPlane()).vector(value.normal());
    }
    static void read(In& in, TmGePlane& value, const TmGeLibVersion&)
    {
        TmGePoint3d point;
        TmGeVector3d normal;
        in.point(point).vector(normal);
        acceptBuilt(in, value, [&](TmGePlane& plane) { return plane.set(point, normal); });
    }
};

template <>
struct Layout<TmGeBoundedPlane> {
    static void write(Out& out, const TmGeBoundedPlane& value, const TmGeLibVersion&)
    {
        out.point(value.origin()).vector(value.uVector()).vector(value.vVector());
    }
    static void read(In& in, TmGeBoundedPlane& value, const TmGeLibVersion&)
    {
        TmGePoint3d origin;
        TmGeVector3d u;
        TmGeVector3d v;
        if (in.point(origin).vector(u).vector(v).ok())
            value.set(origin, u, v);
    }
};

template <>
struct Layout<TmGeCircArc2d> {
    static void write(Out& out, const TmGeCircArc2d& value, const TmGeLibVersion&)
    {
        out.point(value.center())
            .vector(value.refVec())
            .real(value.radius())
            .real(value.startAng())
            .real(value.endAng())
            .boolean(value.isClockWise());
    }
    static void read(In& in, TmGeCircArc2d& value, const TmGeLibVersion&)
    {
        TmGePoint2d center;
        TmGeVector2d ref;
        double radius = 0.0;
        double start = 0.0;
        double end = 0.0;
        bool clockwise = false;
        in.point(center).vector(ref).real(radius).real(start).real(end).boolean(clockwise);
        acceptBuilt(in, value,
                    [&](TmGeCircArc2d& arc) { return arc.set(center, radius, start, end, ref, clockwise); });
    }
};

template <>
struct Layout<TmGeCircArc3d> {
    static void write(Out& out, const TmGeCircArc3d& value, const TmGeLibVersion&)
    {
        out.point(value.center())
            .vector(value.normal())
            .vector(value.refVec())
            .real(value.radius())
            .real(value.startAng())
            .real(value.endAng());
    }
    static void read(In& in, TmGeCircArc3d& value, const TmGeLibVersion&)
    {
        TmGePoint3d center;
        TmGeVector3d normal;
        TmGeVector3d ref;
        double radius = 0.0;
        double start = 0.0;
        double end = 0.0;
        in.point(center).vector(normal).vector(ref).real(radius).real(start).real(end);
        acceptBuilt(in, value, [&](TmGeCircArc3d& arc) { return arc.set(center, normal, ref, radius, start, end); });
    }
};

// Elliptical arcs store the same fields in the plane and in space.
template <class Arc>
struct EllipArcLayout {
    using Point = std::remove_cvref_t<decltype(std::declval<const Arc&>().center())>;
    using Vector = std::remove_cvref_t<decltype(std::declval<const Arc&>().majorAxis())>;

    static void write(Out& out, const Arc& value, const TmGeLibVersion&)
    {
        out.point(value.center())
            .vector(value.majorAxis())
            .vector(value.minorAxis())
            .real(value.majorRadius())
            .real(value.minorRadius())
            .real(value.startAng())
            .real(value.endAng());
    }
    static void read(In& in, Arc& value, const TmGeLibVersion&)
    {
        Point center;
        Vector major;
        Vector minor;
        double majorRadius = 0.0;
        double minorRadius = 0.0;
        double start = 0.0;
        double end = 0.0;
        in.point(center).vector(major).vector(minor).real(majorRadius).real(minorRadius).real(start).real(end);
        acceptBuilt(in, value,
                    [&](Arc& arc) { return arc.set(center, major, minor, majorRadius, minorRadius, start, end); });
    }
};

template <> struct Layout<TmGeEllipArc2d> : EllipArcLayout<TmGeEllipArc2d> {};
template <> struct Layout<TmGeEllipArc3d> : EllipArcLayout<TmGeEllipArc3d> {};

} // namespace TmGeInternal

// ---- points, vectors, matrices ----

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGePoint2d& value, const TmGeLibVersion& version)
{
    return writeLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGePoint3d& value, const TmGeLibVersion& version)
{
    return writeLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGeVector2d& value, const TmGeLibVersion& version)
{
    return writeLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGeVector3d& value, const TmGeLibVersion& version)
{
    return writeLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGeMatrix2d& value, const TmGeLibVersion& version)
{
    return writeLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGeMatrix3d& value, const TmGeLibVersion& version)
{
    return writeLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGePoint2d& value, const TmGeLibVersion& version)
{
    return readLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGePoint3d& value, const TmGeLibVersion& version)
{
    return readLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGeVector2d& value, const TmGeLibVersion& version)
{
    return readLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGeVector3d& value, const TmGeLibVersion& version)
{
    return readLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGeMatrix2d& value, const TmGeLibVersion& version)
{
    return readLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGeMatrix3d& value, const TmGeLibVersion& version)
{
    return readLayout(filer, value, version);
}

// ---- lines and planes ----

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGeLine3d& value, const TmGeLibVersion& version)
{
    return writeLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGeLine3d& value, const TmGeLibVersion& version)
{
    return readLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGeLineSeg3d& value, const TmGeLibVersion& version)
{
    return writeLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGeLineSeg3d& value, const TmGeLibVersion& version)
{
    return readLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGePlane& value, const TmGeLibVersion& version)
{
    return writeLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGePlane& value, const TmGeLibVersion& version)
{
    return readLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGeBoundedPlane& value, const TmGeLibVersion& version)
{
    return writeLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGeBoundedPlane& value, const TmGeLibVersion& version)
{
    return readLayout(filer, value, version);
}

// ---- arcs ----

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGeCircArc2d& value, const TmGeLibVersion& version)
{
    return writeLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGeCircArc2d& value, const TmGeLibVersion& version)
{
    return readLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGeCircArc3d& value, const TmGeLibVersion& version)
{
    return writeLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGeCircArc3d& value, const TmGeLibVersion& version)
{
    return readLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGeEllipArc2d& value, const TmGeLibVersion& version)
{
    return writeLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGeEllipArc2d& value, const TmGeLibVersion& version)
{
    return readLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::outFields(TmGeFiler* filer, const TmGeEllipArc3d& value, const TmGeLibVersion& version)
{
    return writeLayout(filer, value, version);
}

ErrorStatus TmGeFileIO::inFields(TmGeFiler* filer, TmGeEllipArc3d& value, const TmGeLibVersion& version)
{
    return readLayout(filer, value, version);
}
