// Arbitrary bytes as an option file (<user dir>/options/<group>.xml): loaded into a group with an
// option of every kind and a nested group. A load answers true or false and never crashes; what it
// accepted, saved and loaded again, must give the same values.

#include "FuzzScratch.h"

#include <base/BoolOption.h>
#include <base/ChoiceOption.h>
#include <base/DoubleOption.h>
#include <base/IntOption.h>
#include <base/OptionGroup.h>
#include <base/StringListOption.h>
#include <base/StringOption.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

using namespace Kx;

class FuzzOptionGroup : public OptionGroup {
public:
    FuzzOptionGroup() : OptionGroup("FuzzOptionGroup")
    {
        add<BoolOption>("Flag", false);
        add<IntOption>("Count", 7);
        add<DoubleOption>("Scale", 0.5);
        add<StringOption>("Name", "default");
        add<ChoiceOption>("Units", "mm", std::vector<ChoiceOption::Choice>{{"mm", L""}, {"in", L""}});
        add<StringListOption>("Paths", std::vector<std::string>{"a", "b"});
        OptionGroup& nested = subGroup("Nested");
        nested.add<IntOption>("Depth", 1);
        nested.add<StringListOption>("Items");
    }
};

std::vector<std::string> valuesOf(const OptionGroup& group)
{
    std::vector<std::string> values;
    for (const auto& option : group.options())
        values.push_back(option->toText());
    for (const auto& nested : group.subGroups()) {
        for (std::string& value : valuesOf(*nested))
            values.push_back(std::move(value));
    }
    return values;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzScratch scratch("kx-options-fuzz");
    const std::filesystem::path& folder = scratch.path();
    const std::filesystem::path file = folder / "FuzzOptionGroup.xml";
    {
        std::ofstream out(file, std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    }
    FuzzOptionGroup group;
    if (!group.loadFrom(file)) {
        // A refused file is kept aside under this name; clear it so the next one takes it again.
        std::error_code ignored;
        std::filesystem::remove(file.string() + ".unreadable", ignored);
        return 0;
    }
    const std::vector<std::string> loaded = valuesOf(group);
    FuzzOptionGroup again;
    if (!group.saveTo(folder / "again.xml") || !again.loadFrom(folder / "again.xml") || valuesOf(again) != loaded)
        __builtin_trap();
    return 0;
}
