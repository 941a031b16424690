#include <geometry/TmGeFileIO.h>

#include <geometry/TmGeBoundedPlane.h>
#include <geometry/TmGeCircArc2d.h>
#include <geometry/TmGeCircArc3d.h>
#include <geometry/TmGeCurve3dVec.h>
#include <geometry/TmGeEllipArc2d.h>
#include <geometry/TmGeEllipArc3d.h>
#include <geometry/TmGeFiler.h>
#include <geometry/TmGeLine3d.h>
#include <geometry/TmGeLineSeg3d.h>
#include <geometry/TmGeMatrix2d.h>
#include <geometry/TmGeMatrix3d.h>
#include <geometry/TmGeNurbCurve2d.h>
#include <geometry/TmGeNurbCurve3d.h>
#include <geometry/TmGePlane.h>
#include <geometry/TmGePolyline3d.h>

#include <utility>
#include <vector>

using Tmk::ErrorStatus;

namespace {

// The layout switches of 3.2: a segment carries its parameter interval, a spline its periodic flag.
bool hasLayout3_2(const TmGeLibVersion& version)
{
    return version >= TmGeLibVersion::kTmGeLibVersion3_2;
}

ErrorStatus checkCall(const TmGeFiler* filer, const TmGeLibVersion& version)
{
    if (filer == nullptr)
        return ErrorStatus::eNullFiler;
    if (!version.isSupported())
        return ErrorStatus::eUnsupportedVersion;
    return ErrorStatus::eOk;
}

// Chains filer writes and keeps the first failure; later writes are skipped.
class Out {
public:
    explicit Out(TmGeFiler* filer) : m_filer(filer) {}

    Out& boolean(bool v) { return run([&] { return m_filer->writeBool(v); }); }
    Out& count(std::size_t v) { return run([&] { return m_filer->writeULong(static_cast<std::uint32_t>(v)); }); }
    Out& integer(int v) { return run([&] { return m_filer->writeLong(static_cast<std::int32_t>(v)); }); }
    Out& tag(Tmk::EntityKind v) { return run([&] { return m_filer->writeUShort(static_cast<std::uint16_t>(v)); }); }
    Out& real(double v) { return run([&] { return m_filer->writeDouble(v); }); }
    Out& point(const TmGePoint2d& v) { return run([&] { return m_filer->writePoint2d(v); }); }
    Out& point(const TmGePoint3d& v) { return run([&] { return m_filer->writePoint3d(v); }); }
    Out& vector(const TmGeVector2d& v) { return run([&] { return m_filer->writeVector2d(v); }); }
    Out& vector(const TmGeVector3d& v) { return run([&] { return m_filer->writeVector3d(v); }); }
    
    [[nodiscard]] ErrorStatus result() const { return m_status; }

private:
    template <class F>
    Out& run(F&& write)
    {
        if (m_status == ErrorStatus::eOk)
            m_status = write();
        return *this;
    }

    TmGeFiler* m_filer;
    ErrorStatus m_status = ErrorStatus::eOk;
};

// Chains filer reads into local variables and keeps the first failure.
class In {
public:
    explicit In(TmGeFiler* filer) : m_filer(filer) {}

    In& boolean(bool& v) { return run([&] { return m_filer->readBool(&v); }); }
    In& integer(int& v)
    {
        std::int32_t raw = 0;
        run([&] { return m_filer->readLong(&raw); });
        v = raw;
        return *this;
    }
    In& count(std::uint32_t& v)
    {
        run([&] { return m_filer->readULong(&v); });
        if (m_status == ErrorStatus::eOk && v > TmGeFileIO::kMaxCount)
            m_status = ErrorStatus::eCorruptData;
        return *this;
    }
    In& tag(std::uint16_t& v) { return run([&] { return m_filer->readUShort(&v); }); }
    In& real(double& v) { return run([&] { return m_filer->readDouble(&v); }); }
    In& point(TmGePoint2d& v) { return run([&] { return m_filer->readPoint2d(&v); }); }
    In& point(TmGePoint3d& v) { return run([&] { return m_filer->readPoint3d(&v); }); }
    In& vector(TmGeVector2d& v) { return run([&] { return m_filer->readVector2d(&v); }); }
    In& vector(TmGeVector3d& v) { return run([&] { return m_filer->readVector3d(&v); }); }
    // Marks the data corrupt when the object built from them refuses them.
    In& accept(ErrorStatus built)
    {
        if (m_status == ErrorStatus::eOk && built != ErrorStatus::eOk)
            m_status = ErrorStatus::eCorruptData;
        return *this;
    }
    template <class T>
    In& reals(std::vector<T>& out, std::uint32_t n)
    {
        // Grow as the data arrive, so a lying count fails at the end of the data, not in malloc.
        for (std::uint32_t i = 0; i < n && ok(); ++i) {
            T value{};
            real(value);
            out.push_back(value);
        }
        return *this;
    }
    template <class T>
    In& points(std::vector<T>& out, std::uint32_t n)
    {
        for (std::uint32_t i = 0; i < n && ok(); ++i) {
            T value{};
            point(value);
            out.push_back(value);
        }
        return *this;
    }

    [[nodiscard]] bool ok() const { return m_status == ErrorStatus::eOk; }
    [[nodiscard]] ErrorStatus result() const { return m_status; }

private:
    template <class F>
    In& run(F&& read)
    {
        if (m_status == ErrorStatus::eOk)
            m_status = read();
        return *this;
    }

    TmGeFiler* m_filer;
    ErrorStatus m_status = ErrorStatus::eOk;
};

template <class Matrix, int N>
ErrorStatus writeMatrix(TmGeFiler* filer, const Matrix& m)
{
    Out out(filer);
    for (int i = 0; i < N; ++i)
        for (int j = 0; j < N; ++j)
            out.real(m.entry[i][j]);
    return out.result();
}

template <class Matrix, int N>
ErrorStatus readMatrix(TmGeFiler* filer, Matrix& value)
{
    In in(filer);
    Matrix m;
    for (int i = 0; i < N; ++i)
        for (int j = 0; j < N; ++j)
            in.real(m.entry[i][j]);
    if (in.ok())
        value = m;
    return in.result();
}

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

bool isCurve3dKind(Tmk::EntityKind kind)
{
    using Tmk::EntityKind;
    return kind == EntityKind::eLine3d || kind == EntityKind::eLineSeg3d || kind == EntityKind::eCircArc3d
        || kind == EntityKind::eEllipArc3d || kind == EntityKind::eNurbCurve3d || kind == EntityKind::ePolyline3d;
}

bool isCurve2dKind(Tmk::EntityKind kind)
{
    using Tmk::EntityKind;
    return kind == EntityKind::eCircArc2d || kind == EntityKind::eEllipArc2d || kind == EntityKind::eNurbCurve2d;
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
    case Tmk::EntityKind::eLine3d:
        return outFields(filer, static_cast<const TmGeLine3d&>(curve), version);
    case Tmk::EntityKind::eLineSeg3d:
        return outFields(filer, static_cast<const TmGeLineSeg3d&>(curve), version);
    case Tmk::EntityKind::eCircArc3d:
        return outFields(filer, static_cast<const TmGeCircArc3d&>(curve), version);
    case Tmk::EntityKind::eEllipArc3d:
        return outFields(filer, static_cast<const TmGeEllipArc3d&>(curve), version);
    case Tmk::EntityKind::eNurbCurve3d:
        return outFields(filer, static_cast<const TmGeNurbCurve3d&>(curve), version);
    case Tmk::EntityKind::ePolyline3d:
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
    switch (static_cast<Tmk::EntityKind>(tag)) {
    case Tmk::EntityKind::eLine3d:
        return readAs<TmGeLine3d>(filer, curve, version);
    case Tmk::EntityKind::eLineSeg3d:
        return readAs<TmGeLineSeg3d>(filer, curve, version);
    case Tmk::EntityKind::eCircArc3d:
        return readAs<TmGeCircArc3d>(filer, curve, version);
    case Tmk::EntityKind::eEllipArc3d:
        return readAs<TmGeEllipArc3d>(filer, curve, version);
    case Tmk::EntityKind::eNurbCurve3d:
        return readAs<TmGeNurbCurve3d>(filer, curve, version);
    case Tmk::EntityKind::ePolyline3d:
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
    case Tmk::EntityKind::eCircArc2d:
        return outFields(filer, static_cast<const TmGeCircArc2d&>(curve), version);
    case Tmk::EntityKind::eEllipArc2d:
        return outFields(filer, static_cast<const TmGeEllipArc2d&>(curve), version);
    case Tmk::EntityKind::eNurbCurve2d:
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
    switch (static_cast<Tmk::EntityKind>(tag)) {
    case Tmk::EntityKind::eCircArc2d:
        return readAs<TmGeCircArc2d>(filer, curve, version);
    case Tmk::EntityKind::eEllipArc2d:
        return readAs<TmGeEllipArc2d>(filer, curve, version);
    case Tmk::EntityKind::eNurbCurve2d:
        return readAs<TmGeNurbCurve2d>(filer, curve, version);
    default:
        return ErrorStatus::eCorruptData;
    }
}
