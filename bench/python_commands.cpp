// The cost of a text command called from Python: Geometry.DotProduct from a loop of the embedded
// interpreter, with Point3 and with dict arguments, beside the same command run through the
// registry from C++ with the arguments as JSON text already (the work the bridge adds to is the
// argument conversion, the GIL hand-over and the answer's conversion).

#include <Types/GeLib/GePythonConvertors.h>

#include <base/TextCommandRegistry.h>

#include <python/PythonInterpreter.h>

#include <benchmark/benchmark.h>

#include <sstream>
#include <string>

namespace {

constexpr int kCalls = 100'000;

void throughRegistry(benchmark::State& state)
{
    const Kx::TextCommandRegistry& registry = Kx::TextCommandRegistry::instance();
    for (auto _ : state) {
        for (int i = 0; i < kCalls; ++i) {
            Kx::TextCommandOutcome outcome = registry.run(L"Geometry.DotProduct",
                Kx::TextCommandParameters({LR"({"x":1.5,"y":-2,"z":3})", LR"({"x":0.25,"y":4,"z":-1})"}, {}));
            benchmark::DoNotOptimize(outcome);
        }
    }
    state.SetItemsProcessed(state.iterations() * kCalls);
}
BENCHMARK(throughRegistry)->Name("DotProduct.python/baseline")->Unit(benchmark::kMillisecond);

void fromPython(benchmark::State& state, const char* arguments)
{
    (void)Kx::Types::GeometryPythonTypeCodes();
    std::ostringstream printed;
    Kx::PythonInterpreter interpreter(printed);
    const std::string script = std::string(arguments) + "\ns = 0\nfor i in range(" + std::to_string(kCalls)
        + "):\n    s += trvGeometry.dotProduct(a, b)\n";
    for (auto _ : state) {
        const Kx::PythonInterpreter::Result result = interpreter.run(script, "bench.py");
        if (!result.ok)
            state.SkipWithError(result.text.c_str());
    }
    state.SetItemsProcessed(state.iterations() * kCalls);
}
BENCHMARK_CAPTURE(fromPython, point3, "P = TarvelBasicPythonTypes.Point3\na, b = P(1.5, -2, 3), P(0.25, 4, -1)")
    ->Name("DotProduct.python/point3")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(fromPython, dict, "a, b = {'x': 1.5, 'y': -2, 'z': 3}, {'x': 0.25, 'y': 4, 'z': -1}")
    ->Name("DotProduct.python/dict")->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
