// The member set of a type is built exactly once, by whichever of many threads constructs the
// first value through the meta type; the others wait for it. Run under ThreadSanitizer too
// (make test-tsan).

#include <Types/Geometry/ValueMetaTypeT.h>

#include <gtest/gtest.h>

#include <barrier>
#include <thread>
#include <vector>

namespace Kx {

// A value type of the test's own, so that its member set is certainly not built before the race.
class RaceValue : public ValueType<RaceValue> {
public:
    bool operator==(const RaceValue& other) const { return a == other.a && b == other.b; }
    bool operator!=(const RaceValue& other) const { return !(*this == other); }
    std::wstring toString() const { return L"race"; }

    std::int32_t a = 0;
    float b = 0;
};

template <>
struct ValueTraits<RaceValue> {
    static constexpr std::string_view name = "RaceValue";
    static constexpr std::string_view id = "0B5E3C1A-7D2F-4A68-9E01-5C4B3A291807";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = true;
    static constexpr auto fields = std::tuple{field(L"a", &RaceValue::a), field(L"b", &RaceValue::b)};
};

namespace {

TEST(MemberSetRace, EightThreadsRacingToConstructTheFirstValueBuildItOnce)
{
    auto* metaType = TValueMetaType<RaceValue>::init();
    const MemberSet* memberSet = metaType->memberSet(~0u);
    ASSERT_FALSE(memberSet->isComplete());

    constexpr int kThreads = 8;
    std::barrier start(kThreads);
    std::vector<void*> values(kThreads, nullptr);
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back([&, i] {
            start.arrive_and_wait();
            values[i] = metaType->construct();
        });
    for (auto& thread : threads)
        thread.join();

    EXPECT_TRUE(memberSet->isComplete());
    EXPECT_EQ(memberSet->initializationCount(), 1u);
    ASSERT_EQ(memberSet->members().size(), 2u);
    EXPECT_EQ(memberSet->members()[0].name, "a");
    EXPECT_EQ(memberSet->members()[1].name, "b");
    EXPECT_NE(metaType->dataModelCallback(), nullptr);
    for (void* value : values) {
        ASSERT_NE(value, nullptr);
        metaType->destruct(value);
    }
}

} // namespace
} // namespace Kx
