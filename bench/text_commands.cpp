// Text command dispatch: Geometry.DotProduct run a million times through the parser and the
// registry, beside the same work done with the JSON forms called directly (parse both vectors,
// compute, write the number), and the cost of one command called from JavaScript.

#include <Types/GeLib/GeJSONStrings.h>
#include <Types/GeLib/GeText.h>
#include <Types/TextCommands/GeometryTextCommands.h>

#include <base/JavaScriptEngine.h>
#include <base/TextCommandRegistry.h>

#include <geometry/TmGe.h>

#include <benchmark/benchmark.h>

#include <sstream>
#include <string>

namespace {

constexpr int kCalls = 1'000'000;
const std::string s_line = R"(Geometry.DotProduct {"x":1.5,"y":-2,"z":3} {"x":0.25,"y":4,"z":-1})";
const std::wstring s_first = LR"({"x":1.5,"y":-2,"z":3})";
const std::wstring s_second = LR"({"x":0.25,"y":4,"z":-1})";

// The baseline: what the command does, without the parser and the registry.
void directJSONForms(benchmark::State& state)
{
    static const Kx::TextCmdGeometryDotProduct s_loaded(L"Geometry", L"DotProduct", L"");
    for (auto _ : state) {
        for (int i = 0; i < kCalls; ++i) {
            TmGeVector3d a;
            TmGeVector3d b;
            const bool read = Kx::Types::JSONStringToVector3d(s_first, a, nullptr) && Kx::Types::JSONStringToVector3d(s_second, b, nullptr);
            std::wstring answer = read ? Kx::Types::DoubleToString(a.dotProduct(b)) : std::wstring();
            benchmark::DoNotOptimize(answer);
        }
    }
    state.SetItemsProcessed(state.iterations() * kCalls);
}
BENCHMARK(directJSONForms)->Name("DotProduct.command/baseline")->Unit(benchmark::kMillisecond);

void throughParserAndRegistry(benchmark::State& state)
{
    const Kx::TextCommandRegistry& registry = Kx::TextCommandRegistry::instance();
    for (auto _ : state) {
        for (int i = 0; i < kCalls; ++i) {
            Kx::TextCommandOutcome outcome = registry.runLine(s_line);
            benchmark::DoNotOptimize(outcome);
        }
    }
    state.SetItemsProcessed(state.iterations() * kCalls);
}
BENCHMARK(throughParserAndRegistry)->Name("DotProduct.command/registry")->Unit(benchmark::kMillisecond);

// One script call per iteration of a JavaScript loop: argument objects to JSON text, the command,
// the answer back to a JS number.
void fromJavaScript(benchmark::State& state)
{
    std::ostringstream printed;
    Kx::JavaScriptEngine engine(printed);
    const int calls = 100'000;
    const std::string script = "var a = {x:1.5,y:-2,z:3}, b = {x:0.25,y:4,z:-1}, s = 0;\n"
                               "for (var i = 0; i < " + std::to_string(calls) + "; ++i) s += trvGeometry.dotProduct(a, b);\ns";
    for (auto _ : state) {
        const Kx::JavaScriptEngine::Result result = engine.evaluate(script, "bench.js");
        if (!result.ok)
            state.SkipWithError(result.text.c_str());
    }
    state.SetItemsProcessed(state.iterations() * calls);
}
BENCHMARK(fromJavaScript)->Name("DotProduct.command/javascript")->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
