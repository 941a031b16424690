// Encoding and decoding Point2 and Color values through the data model (binary, XML, JSON), each
// beside a baseline that produces the same bytes or documents directly.

#include <Types/Geometry/ValueMetaTypes.h>

#include <datamodel/BinaryStreams.h>
#include <datamodel/JSONStreams.h>
#include <datamodel/XmlBulkStream.h>

#include <benchmark/benchmark.h>
#include <boost/json.hpp>
#include <pugixml.hpp>

#include <cstring>
#include <vector>

namespace {

using namespace Kx;

constexpr std::size_t kValues = 1'000'000;

template <class T>
std::vector<T> sampleValues();

template <>
std::vector<Point2> sampleValues<Point2>()
{
    std::vector<Point2> values(kValues);
    for (std::size_t i = 0; i < kValues; ++i)
        values[i] = Point2(static_cast<std::int32_t>(i), -static_cast<std::int32_t>(i * 7));
    return values;
}

template <>
std::vector<Color> sampleValues<Color>()
{
    std::vector<Color> values(kValues);
    for (std::size_t i = 0; i < kValues; ++i) {
        const float f = static_cast<float>(i % 1000) / 1000.0f;
        values[i] = Color(f, 1.0f - f, f * 0.5f, 1.0f);
    }
    return values;
}

void reportValues(benchmark::State& state)
{
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kValues));
}

// ---- binary ----

template <class T>
void binaryRoundTrip(benchmark::State& state)
{
    const auto values = sampleValues<T>();
    std::vector<T> readBack(kValues);
    auto* metaType = T::s_metaType();
    const VisitorContext saving(eVisitSave);
    const VisitorContext loading(eVisitLoad);
    for (auto _ : state) {
        BinaryWriteStream out(kValues * 16);
        for (const T& value : values)
            metaType->save(&value, &out, saving);
        BinaryReadStream in(out.bytes());
        for (T& value : readBack)
            metaType->load(&value, 0, &in, loading);
        benchmark::DoNotOptimize(readBack.data());
    }
    reportValues(state);
}

// The same bytes, packed and unpacked with memcpy.
template <class T>
void binaryRoundTripBaseline(benchmark::State& state)
{
    const auto values = sampleValues<T>();
    std::vector<T> readBack(kValues);
    constexpr std::size_t fieldBytes = std::is_same_v<T, Point2> ? 8 : 16;
    const std::size_t fieldOffset = sizeof(Value);
    for (auto _ : state) {
        std::vector<std::uint8_t> bytes(kValues * fieldBytes);
        for (std::size_t i = 0; i < kValues; ++i)
            std::memcpy(bytes.data() + i * fieldBytes, reinterpret_cast<const char*>(&values[i]) + fieldOffset, fieldBytes);
        for (std::size_t i = 0; i < kValues; ++i)
            std::memcpy(reinterpret_cast<char*>(&readBack[i]) + fieldOffset, bytes.data() + i * fieldBytes, fieldBytes);
        benchmark::DoNotOptimize(readBack.data());
    }
    reportValues(state);
}

// ---- XML ----

template <class T>
void xmlRoundTrip(benchmark::State& state)
{
    const auto values = sampleValues<T>();
    std::vector<T> readBack(kValues);
    auto* metaType = T::s_metaType();
    for (auto _ : state) {
        XmlWriteStream out;
        XMLNode root = out.root();
        const VisitorContext saving(eVisitSave);
        for (const T& value : values)
            metaType->save(&value, &out, saving.withEntity(nullptr, root.appendChild("v")));
        const std::string text = out.toString(false);
        XmlReadStream in(text);
        const VisitorContext loading(eVisitLoad);
        std::size_t i = 0;
        for (XMLNode node = in.root().firstChild(); !node.isNull(); node = node.nextSibling())
            metaType->load(&readBack[i++], 0, &in, loading.withEntity(nullptr, node));
        benchmark::DoNotOptimize(readBack.data());
    }
    reportValues(state);
}

template <class T>
void setXmlFields(pugi::xml_node node, const T& value)
{
    if constexpr (std::is_same_v<T, Point2>) {
        node.append_attribute("x").set_value(value.x);
        node.append_attribute("y").set_value(value.y);
    } else {
        node.append_attribute("red").set_value(value.red());
        node.append_attribute("green").set_value(value.green());
        node.append_attribute("blue").set_value(value.blue());
        node.append_attribute("alpha").set_value(value.alpha());
    }
}

template <class T>
void getXmlFields(pugi::xml_node node, T& value)
{
    if constexpr (std::is_same_v<T, Point2>) {
        value.x = node.attribute("x").as_int();
        value.y = node.attribute("y").as_int();
    } else {
        value = Color(node.attribute("red").as_float(), node.attribute("green").as_float(),
            node.attribute("blue").as_float(), node.attribute("alpha").as_float());
    }
}

// pugixml building and reading the same document directly.
template <class T>
void xmlRoundTripBaseline(benchmark::State& state)
{
    const auto values = sampleValues<T>();
    std::vector<T> readBack(kValues);
    for (auto _ : state) {
        pugi::xml_document out;
        pugi::xml_node root = out.append_child("KxData");
        for (const T& value : values)
            setXmlFields(root.append_child("v"), value);
        std::ostringstream text;
        out.save(text, "", pugi::format_raw);
        pugi::xml_document in;
        const std::string saved = text.str();
        in.load_buffer(saved.data(), saved.size());
        std::size_t i = 0;
        for (pugi::xml_node node = in.document_element().first_child(); node; node = node.next_sibling())
            getXmlFields(node, readBack[i++]);
        benchmark::DoNotOptimize(readBack.data());
    }
    reportValues(state);
}

// ---- JSON ----

template <class T>
void jsonGet(benchmark::State& state)
{
    const auto values = sampleValues<T>();
    auto* metaType = T::s_metaType();
    const VisitorContext context(eVisitJSON);
    for (auto _ : state) {
        JSONGetStream out;
        out.addText("[");
        for (const T& value : values) {
            metaType->getJSON(&value, &out, context);
            out.addText(",");
        }
        benchmark::DoNotOptimize(out.text().data());
    }
    reportValues(state);
}

template <class T>
boost::json::object jsonObjectOf(const T& value)
{
    if constexpr (std::is_same_v<T, Point2>)
        return {{"x", value.x}, {"y", value.y}};
    else
        return {{"red", value.red()}, {"green", value.green()}, {"blue", value.blue()}, {"alpha", value.alpha()}};
}

// Boost.JSON building each value's object and serialising it directly.
template <class T>
void jsonGetBaseline(benchmark::State& state)
{
    const auto values = sampleValues<T>();
    for (auto _ : state) {
        std::string out = "[";
        for (const T& value : values) {
            out += boost::json::serialize(jsonObjectOf(value));
            out += ',';
        }
        benchmark::DoNotOptimize(out.data());
    }
    reportValues(state);
}

template <class T>
void jsonSet(benchmark::State& state)
{
    const auto values = sampleValues<T>();
    std::string text = "[";
    for (const T& value : values)
        text += boost::json::serialize(jsonObjectOf(value)) + ",";
    text.back() = ']';
    std::vector<T> readBack(kValues);
    auto* metaType = T::s_metaType();
    const VisitorContext context(eVisitJSON);
    for (auto _ : state) {
        JSONSetStream in(JSONNode{std::string_view(text)});
        const JSONRef array = in.currentJSONRef();
        for (std::size_t i = 0; i < kValues; ++i) {
            ScopedJSONRef scope(in, array[i]);
            metaType->setJSON(&readBack[i], &in, context);
        }
        benchmark::DoNotOptimize(readBack.data());
    }
    reportValues(state);
}

template <class T>
void jsonSetBaseline(benchmark::State& state)
{
    const auto values = sampleValues<T>();
    std::string text = "[";
    for (const T& value : values)
        text += boost::json::serialize(jsonObjectOf(value)) + ",";
    text.back() = ']';
    std::vector<T> readBack(kValues);
    for (auto _ : state) {
        const boost::json::value parsed = boost::json::parse(text);
        const auto& array = parsed.as_array();
        for (std::size_t i = 0; i < kValues; ++i) {
            const auto& object = array[i].as_object();
            if constexpr (std::is_same_v<T, Point2>) {
                readBack[i].x = static_cast<std::int32_t>(object.at("x").as_int64());
                readBack[i].y = static_cast<std::int32_t>(object.at("y").as_int64());
            } else {
                readBack[i] = Color(static_cast<float>(object.at("red").to_number<double>()),
                    static_cast<float>(object.at("green").to_number<double>()),
                    static_cast<float>(object.at("blue").to_number<double>()),
                    static_cast<float>(object.at("alpha").to_number<double>()));
            }
        }
        benchmark::DoNotOptimize(readBack.data());
    }
    reportValues(state);
}

// Names are "<case>/<variant>"; the variant "baseline" is what scripts/bench divides by.
#define KX_CODEC_BENCHMARKS(Type)                                                                               \
    BENCHMARK(binaryRoundTrip<Type>)->Name(#Type ".binary-roundtrip/datamodel")->Unit(benchmark::kMillisecond);        \
    BENCHMARK(binaryRoundTripBaseline<Type>)->Name(#Type ".binary-roundtrip/baseline")->Unit(benchmark::kMillisecond); \
    BENCHMARK(xmlRoundTrip<Type>)->Name(#Type ".xml-roundtrip/datamodel")->Unit(benchmark::kMillisecond);              \
    BENCHMARK(xmlRoundTripBaseline<Type>)->Name(#Type ".xml-roundtrip/baseline")->Unit(benchmark::kMillisecond);       \
    BENCHMARK(jsonGet<Type>)->Name(#Type ".json-get/datamodel")->Unit(benchmark::kMillisecond);                        \
    BENCHMARK(jsonGetBaseline<Type>)->Name(#Type ".json-get/baseline")->Unit(benchmark::kMillisecond);                 \
    BENCHMARK(jsonSet<Type>)->Name(#Type ".json-set/datamodel")->Unit(benchmark::kMillisecond);                        \
    BENCHMARK(jsonSetBaseline<Type>)->Name(#Type ".json-set/baseline")->Unit(benchmark::kMillisecond)

KX_CODEC_BENCHMARKS(Point2);
KX_CODEC_BENCHMARKS(Color);

} // namespace

BENCHMARK_MAIN();
