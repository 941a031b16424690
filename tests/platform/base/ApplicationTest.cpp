#include <base/AmbrelMaterialOptionGroup.h>
#include <base/Application.h>
#include <base/BootstrapOptionGroup.h>
#include <base/Paths.h>

#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

using namespace Kx;

// In the test program's private user directory (a directory of the test's own would be deleted
// under the application log, which stays open in the first directory it was written to).
class ApplicationStart : public ::testing::Test {
protected:
    ApplicationStart() { std::filesystem::remove_all(Paths::optionsDirectory()); }
    ~ApplicationStart() override
    {
        AmbrelMaterialOptionGroup::get().resetToDefaults();
        BootstrapOptionGroup::get().resetToDefaults();
        std::filesystem::remove_all(Paths::optionsDirectory());
    }

    void writeOptionFile(const OptionGroup& group, const std::string& text)
    {
        std::filesystem::create_directories(group.persistFile().parent_path());
        std::ofstream(group.persistFile(), std::ios::binary) << text;
    }

};

// The library manager opens the user's libraries from the material options, so they must be read
// at the start like the bootstrap options, or a host never sees the libraries its user added.
TEST_F(ApplicationStart, ReadsTheUserLibrariesOfTheMaterialOptions)
{
    writeOptionFile(AmbrelMaterialOptionGroup::get(), R"(<?xml version="1.0"?>
<OptionGroup Name="AmbrelMaterialOptionGroup" Version="1">
  <UserLibraryNames><Item Value="Meine Bibliothek" /></UserLibraryNames>
  <UserLibraryPaths><Item Value="/data/mine.tvrnlib" /></UserLibraryPaths>
</OptionGroup>)");
    EXPECT_TRUE(Application::initialize().empty());
    EXPECT_EQ(AmbrelMaterialOptionGroup::get().libraryNames(), std::vector<std::wstring>{L"Meine Bibliothek"});
    EXPECT_EQ(AmbrelMaterialOptionGroup::get().libraryPaths(), std::vector<std::wstring>{L"/data/mine.tvrnlib"});
}

TEST_F(ApplicationStart, ADamagedOptionFileIsReportedAndItsGroupKeepsTheDefaults)
{
    const struct {
        const char* name;
        const char* text;
        const char* reason;
    } cases[] = {
        {"NotXML", "<OptionGroup Name=", "AmbrelMaterialOptionGroup.xml: "},
        {"AnotherGroup", R"(<OptionGroup Name="BootstrapOptionGroup" Version="1" />)",
            "not the option file of AmbrelMaterialOptionGroup"},
    };
    for (const auto& input : cases) {
        SCOPED_TRACE(input.name);
        AmbrelMaterialOptionGroup::get().resetToDefaults();
        writeOptionFile(AmbrelMaterialOptionGroup::get(), input.text);
        const std::vector<std::string> problems = Application::initialize();
        ASSERT_EQ(problems.size(), 1u);
        EXPECT_NE(problems[0].find(input.reason), std::string::npos) << problems[0];
        EXPECT_NE(problems[0].find("the defaults are used"), std::string::npos) << problems[0];
        EXPECT_TRUE(AmbrelMaterialOptionGroup::get().libraryPaths().empty());
    }
}

} // namespace
