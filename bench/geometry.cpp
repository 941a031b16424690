// The geometry kernel and its JSON form at work: transforming points, writing and reading arcs as
// JSON, evaluating a NURBS curve; each beside a baseline measured in the same run.

#include <Types/GeLib/GeJSONCurves.h>

#include <base/JSONNode.h>
#include <geometry/TmGe.h>

#include <Eigen/Dense>
#include <benchmark/benchmark.h>
#include <boost/json.hpp>

#include <cmath>
#include <random>
#include <vector>

namespace {

constexpr std::size_t kPoints = 1'000'000;
constexpr std::size_t kArcs = 100'000;

std::vector<TmGePoint3d> samplePoints()
{
    std::mt19937 random(7);
    std::uniform_real_distribution<double> coordinate(-100.0, 100.0);
    std::vector<TmGePoint3d> points(kPoints);
    for (auto& point : points)
        point = TmGePoint3d(coordinate(random), coordinate(random), coordinate(random));
    return points;
}

const TmGeMatrix3d& sampleTransform()
{
    static const TmGeMatrix3d transform = TmGeMatrix3d::rotation(0.3, TmGeVector3d(1, 2, 3), TmGePoint3d(4, 5, 6))
        * TmGeMatrix3d::translation(TmGeVector3d(1, -1, 2));
    return transform;
}

void transformPoints(benchmark::State& state)
{
    auto points = samplePoints();
    const TmGeMatrix3d& transform = sampleTransform();
    for (auto _ : state) {
        transform.transformPoints(points);
        benchmark::DoNotOptimize(points.data());
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kPoints));
}

// One call per point, as code transforming single points does.
void transformPointsOneByOne(benchmark::State& state)
{
    auto points = samplePoints();
    const TmGeMatrix3d& transform = sampleTransform();
    for (auto _ : state) {
        for (TmGePoint3d& point : points)
            point.transformBy(transform);
        benchmark::DoNotOptimize(points.data());
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kPoints));
}

// The same affine arithmetic written as a plain loop over doubles.
void transformPointsBaseline(benchmark::State& state)
{
    auto points = samplePoints();
    const TmGeMatrix3d& transform = sampleTransform();
    double m[3][4];
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 4; ++column)
            m[row][column] = transform.entry[row][column];
    for (auto _ : state) {
        for (TmGePoint3d& point : points) {
            const double x = point.x, y = point.y, z = point.z;
            point.x = m[0][0] * x + m[0][1] * y + m[0][2] * z + m[0][3];
            point.y = m[1][0] * x + m[1][1] * y + m[1][2] * z + m[1][3];
            point.z = m[2][0] * x + m[2][1] * y + m[2][2] * z + m[2][3];
        }
        benchmark::DoNotOptimize(points.data());
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kPoints));
}

void transformPointsEigen(benchmark::State& state)
{
    const auto source = samplePoints();
    Eigen::Matrix3Xd points(3, kPoints);
    for (std::size_t i = 0; i < kPoints; ++i)
        points.col(static_cast<Eigen::Index>(i)) << source[i].x, source[i].y, source[i].z;
    Eigen::Affine3d transform;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 4; ++column)
            transform.matrix()(row, column) = sampleTransform().entry[row][column];
    for (auto _ : state) {
        points = transform * points;
        benchmark::DoNotOptimize(points.data());
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kPoints));
}

std::vector<TmGeCircArc3d> sampleArcs()
{
    std::vector<TmGeCircArc3d> arcs;
    arcs.reserve(kArcs);
    for (std::size_t i = 0; i < kArcs; ++i) {
        const double t = static_cast<double>(i);
        arcs.emplace_back(TmGePoint3d(t, -t, 0.5 * t), TmGeVector3d(0, 0, 1), TmGeVector3d(1, 0, 0), 1 + t / kArcs, 0.1,
            3.0);
    }
    return arcs;
}

void arcsJSONRoundTrip(benchmark::State& state)
{
    const auto arcs = sampleArcs();
    std::vector<TmGeCircArc3d> read(kArcs);
    for (auto _ : state) {
        std::string text;
        for (const TmGeCircArc3d& arc : arcs) {
            Kx::JSONNode node;
            Kx::Types::CircArc3dToJSON(arc, node, nullptr);
            text = node.stringify(false);
            const Kx::JSONNode parsed(text);
            (void)Kx::Types::JSONToCircArc3d(parsed, read[&arc - arcs.data()], nullptr);
        }
        benchmark::DoNotOptimize(read.data());
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kArcs));
}

boost::json::object pointObject(double x, double y, double z)
{
    return {{"x", x}, {"y", y}, {"z", z}};
}

// Boost.JSON building, writing, parsing and reading the same objects directly.
void arcsJSONRoundTripBaseline(benchmark::State& state)
{
    const auto arcs = sampleArcs();
    std::vector<TmGeCircArc3d> read(kArcs);
    for (auto _ : state) {
        for (const TmGeCircArc3d& arc : arcs) {
            const boost::json::object object{
                {"center", pointObject(arc.center().x, arc.center().y, arc.center().z)},
                {"normal", pointObject(arc.normal().x, arc.normal().y, arc.normal().z)},
                {"refVec", pointObject(arc.refVec().x, arc.refVec().y, arc.refVec().z)},
                {"radius", arc.radius()}, {"startAngle", arc.startAng()}, {"endAngle", arc.endAng()}};
            const std::string text = boost::json::serialize(object);
            const auto parsed = boost::json::parse(text).as_object();
            const auto point = [&](const char* key) {
                const auto& p = parsed.at(key).as_object();
                return TmGePoint3d(p.at("x").to_number<double>(), p.at("y").to_number<double>(), p.at("z").to_number<double>());
            };
            const TmGePoint3d center = point("center");
            const TmGePoint3d normal = point("normal");
            const TmGePoint3d refVec = point("refVec");
            read[&arc - arcs.data()] = TmGeCircArc3d(center, normal.asVector(), refVec.asVector(),
                parsed.at("radius").to_number<double>(), parsed.at("startAngle").to_number<double>(),
                parsed.at("endAngle").to_number<double>());
        }
        benchmark::DoNotOptimize(read.data());
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kArcs));
}

const std::vector<double> kKnots{0, 0, 0, 0, 0.25, 0.5, 0.75, 1, 1, 1, 1};
const std::vector<TmGePoint3d> kControlPoints{{0, 0, 0}, {1, 2, 0}, {2, -1, 1}, {3, 0, 2}, {4, 1, 0}, {5, 3, 1}, {6, 0, 0}};
const std::vector<double> kWeights{1, 0.8, 1.2, 1, 0.9, 1.1, 1};

void evaluateCubicNurbs(benchmark::State& state)
{
    const TmGeNurbCurve3d curve(3, kKnots, kControlPoints, kWeights);
    for (auto _ : state) {
        TmGePoint3d sum;
        for (std::size_t i = 0; i < kPoints; ++i) {
            const TmGePoint3d point = curve.evalPoint(static_cast<double>(i) / kPoints);
            sum.x += point.x;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kPoints));
}

// The textbook evaluation written out for this one curve: find the span, build the four cubic
// basis functions with the triangular Cox-de Boor scheme, and divide the weighted sum.
void evaluateCubicNurbsBaseline(benchmark::State& state)
{
    constexpr int degree = 3;
    for (auto _ : state) {
        TmGePoint3d sum;
        for (std::size_t i = 0; i < kPoints; ++i) {
            const double u = static_cast<double>(i) / kPoints;
            std::size_t span = degree;
            while (span + 1 < kControlPoints.size() && u >= kKnots[span + 1])
                ++span;
            double basis[degree + 1] = {1.0};
            double left[degree + 1];
            double right[degree + 1];
            for (int j = 1; j <= degree; ++j) {
                left[j] = u - kKnots[span + 1 - j];
                right[j] = kKnots[span + j] - u;
                double saved = 0.0;
                for (int r = 0; r < j; ++r) {
                    const double temp = basis[r] / (right[r + 1] + left[j - r]);
                    basis[r] = saved + right[r + 1] * temp;
                    saved = left[j - r] * temp;
                }
                basis[j] = saved;
            }
            double x = 0, w = 0;
            for (int j = 0; j <= degree; ++j) {
                const std::size_t k = span - degree + j;
                const double weighted = basis[j] * kWeights[k];
                x += weighted * kControlPoints[k].x;
                w += weighted;
            }
            sum.x += x / w;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kPoints));
}

// The same sweep handed to the kernel as one batch.
void evaluateCubicNurbsBatch(benchmark::State& state)
{
    const TmGeNurbCurve3d curve(3, kKnots, kControlPoints, kWeights);
    std::vector<double> params(kPoints);
    for (std::size_t i = 0; i < kPoints; ++i)
        params[i] = static_cast<double>(i) / kPoints;
    std::vector<TmGePoint3d> points(kPoints);
    for (auto _ : state) {
        (void)curve.evalPoints(params, points);
        benchmark::DoNotOptimize(points.data());
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kPoints));
}

// Adaptive tessellation to a chord tolerance, beside the uniform sweep that evaluates as many
// points as the polyline has vertices (counted per vertex).
constexpr double kChordTol = 1e-5;

std::size_t tessellationVertices()
{
    std::vector<double> params;
    std::vector<TmGePoint3d> points;
    (void)TmGeNurbCurve3d(3, kKnots, kControlPoints, kWeights).tessellate(kChordTol, params, points);
    return points.size();
}

void tessellateCubicNurbs(benchmark::State& state)
{
    const TmGeNurbCurve3d curve(3, kKnots, kControlPoints, kWeights);
    std::vector<double> params;
    std::vector<TmGePoint3d> points;
    for (auto _ : state) {
        (void)curve.tessellate(kChordTol, params, points);
        benchmark::DoNotOptimize(points.data());
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * points.size()));
}

void tessellateCubicNurbsBaseline(benchmark::State& state)
{
    const TmGeNurbCurve3d curve(3, kKnots, kControlPoints, kWeights);
    const std::size_t count = tessellationVertices();
    std::vector<TmGePoint3d> points(count);
    for (auto _ : state) {
        for (std::size_t i = 0; i < count; ++i)
            points[i] = curve.evalPoint(static_cast<double>(i) / static_cast<double>(count - 1));
        benchmark::DoNotOptimize(points.data());
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * count));
}

BENCHMARK(transformPoints)->Name("Point3d.transform/kernel")->Unit(benchmark::kMillisecond);
BENCHMARK(transformPointsOneByOne)->Name("Point3d.transform/one-by-one")->Unit(benchmark::kMillisecond);
BENCHMARK(transformPointsEigen)->Name("Point3d.transform/eigen")->Unit(benchmark::kMillisecond);
BENCHMARK(transformPointsBaseline)->Name("Point3d.transform/baseline")->Unit(benchmark::kMillisecond);
BENCHMARK(arcsJSONRoundTrip)->Name("CircArc3d.json-roundtrip/kx")->Unit(benchmark::kMillisecond);
BENCHMARK(arcsJSONRoundTripBaseline)->Name("CircArc3d.json-roundtrip/baseline")->Unit(benchmark::kMillisecond);
BENCHMARK(evaluateCubicNurbs)->Name("NurbCurve3d.evaluate/kernel")->Unit(benchmark::kMillisecond);
BENCHMARK(evaluateCubicNurbsBatch)->Name("NurbCurve3d.evaluate/batch")->Unit(benchmark::kMillisecond);
BENCHMARK(evaluateCubicNurbsBaseline)->Name("NurbCurve3d.evaluate/baseline")->Unit(benchmark::kMillisecond);
BENCHMARK(tessellateCubicNurbs)->Name("NurbCurve3d.tessellate/adaptive")->Unit(benchmark::kMicrosecond);
BENCHMARK(tessellateCubicNurbsBaseline)->Name("NurbCurve3d.tessellate/baseline")->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
