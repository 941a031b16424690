#include <Types/Utility/TypesUtil.h>
#include <Types/Utility/internal/MaterialLibraryHistoryFile.h>

#include <base/Assert.h>

#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

namespace Kx::Types {
namespace {

struct HistoryCase {
    const char* name;
    std::string body; // the file's text; empty: no file at all
    std::wstring current;
    std::vector<std::wstring> legacy;
    std::vector<std::string> reports; // the reported texts, in order
};

constexpr const char* kSizeCheck = "LegacyMaterialLibraryGUID.size() == libraryNum - 1";

TEST(MaterialLibraryHistory, EachKindOfFileGivesItsGUIDsAndReportsExactlyItsProblems)
{
    const std::vector<HistoryCase> cases{
        {"legacy sets in the order of their ids",
            R"(<MaterialLibraryHistory><Current GUID="C"/><Legacy ID="2" GUID="L2"/><Legacy ID="1" GUID="L1"/></MaterialLibraryHistory>)",
            L"C", {L"L1", L"L2"}, {}},
        {"a repeated id keeps the later GUID",
            R"(<MaterialLibraryHistory><Current GUID="C"/><Legacy ID="1" GUID="A"/><Legacy ID="1" GUID="B"/></MaterialLibraryHistory>)",
            L"C", {L"B"}, {"legacyGUIDs.find(id) == legacyGUIDs.end()", kSizeCheck}},
        {"an unknown element is skipped but counted",
            R"(<MaterialLibraryHistory><Current GUID="C"/><Legacy ID="1" GUID="L1"/><Other/></MaterialLibraryHistory>)",
            L"C", {L"L1"}, {"MaterialLibraryHistory only allows Current and Legacy elements", kSizeCheck}},
        {"a later current replaces an earlier one",
            R"(<MaterialLibraryHistory><Current GUID="A"/><Legacy ID="1" GUID="L1"/><Current GUID="B"/></MaterialLibraryHistory>)",
            L"B", {L"L1"}, {kSizeCheck}},
        {"the current set listed as legacy",
            R"(<MaterialLibraryHistory><Current GUID="C"/><Legacy ID="1" GUID="C"/></MaterialLibraryHistory>)",
            L"C", {L"C"},
            {"LegacyMaterialLibraryGUID.end() == std::find( LegacyMaterialLibraryGUID.begin(), "
             "LegacyMaterialLibraryGUID.end(), *CurrentMaterialLibraryGUID)"}},
        {"no current and no legacy",
            R"(<MaterialLibraryHistory></MaterialLibraryHistory>)", L"", {},
            {"No elements in MaterialLibraryHistory.", "!CurrentMaterialLibraryGUID->empty()",
                "!LegacyMaterialLibraryGUID.empty()", kSizeCheck}},
        {"a root of another name", R"(<materiallibraryhistory><Current GUID="C"/></materiallibraryhistory>)", L"", {},
            {"The root element must be MaterialLibraryHistory."}},
    };
    KxTest::TempDir folder;
    for (const HistoryCase& c : cases) {
        SCOPED_TRACE(c.name);
        const auto file = folder / "MaterialLibraryHistory.xml";
        std::ofstream(file, std::ios::trunc) << c.body;
        ScopedAssertionCapture capture;
        const MaterialLibraryHistory history = readMaterialLibraryHistory(file);
        EXPECT_EQ(history.current, c.current);
        EXPECT_EQ(history.legacy, c.legacy);
        std::vector<std::string> reported;
        for (const AssertionReport& report : capture.reports()) {
            reported.push_back(report.condition);
            EXPECT_EQ(report.function, "std::wstring Kx::Types::GetCurrentMaterialLibraryGUID()");
        }
        EXPECT_EQ(reported, c.reports);
    }
}

TEST(MaterialLibraryHistory, AMissingOrDamagedFileIsOneReportAndNoGUIDs)
{
    KxTest::TempDir folder;
    for (const char* body : {static_cast<const char*>(nullptr), "<MaterialLibraryHistory><Current GUID=", ""}) {
        const auto file = folder / "MaterialLibraryHistory.xml";
        std::filesystem::remove(file);
        if (body != nullptr)
            std::ofstream(file) << body;
        ScopedAssertionCapture capture;
        const MaterialLibraryHistory history = readMaterialLibraryHistory(file);
        EXPECT_TRUE(history.current.empty());
        EXPECT_TRUE(history.legacy.empty());
        ASSERT_EQ(capture.count(), 1u);
        EXPECT_EQ(capture.reports()[0].condition.rfind("Failed to open " + file.string() + ". Error: ", 0), 0u)
            << capture.reports()[0].condition;
    }
}

// The installed history is read once: a file changed later in the process is not read again.
TEST(MaterialLibraryHistory, TheInstalledFileIsReadOnceAndTheShippedOneIsSound)
{
    KxTest::TempDir content;
    std::filesystem::copy_file(std::filesystem::path(KX_TEST_SHIPPED_HISTORY), content / "MaterialLibraryHistory.xml");
    KxTest::ScopedEnvironment root("KX_CONTENT_DIR", content.path());
    ScopedAssertionCapture capture;
    const std::wstring current = GetCurrentMaterialLibraryGUID();
    EXPECT_EQ(current.size(), 36u);
    EXPECT_EQ(GetLegacyMaterialLibraryGUID().size(), 1u);
    EXPECT_EQ(capture.count(), 0u) << "the shipped history file is well formed";

    std::ofstream(content / "MaterialLibraryHistory.xml", std::ios::trunc)
        << R"(<MaterialLibraryHistory><Current GUID="changed"/></MaterialLibraryHistory>)";
    EXPECT_EQ(GetCurrentMaterialLibraryGUID(), current);
}

} // namespace
} // namespace Kx::Types
