#include <Types/Appearance/AmbrelManager.h>

#include "AmbrelTestLibraries.h"

#include <base/Assert.h>
#include <base/OperationContext.h>

#include <gtest/gtest.h>

#include <map>

namespace AmbrelTest {
namespace {

using Kx::AmbrelManager;

class AmbrelLoading : public AmbrelFixture {};

TEST_F(AmbrelLoading, FailedLoadIsRetriedOnlyWhenForced)
{
    auto manager = makeManager();
    EXPECT_FALSE(manager->LoadLibs(false));
    EXPECT_FALSE(manager->LibsLoaded());

    writeVisualLibrary(librariesFolder() / "assetlibrary_base.tvrnlib");
    EXPECT_FALSE(manager->LoadLibs(false)) << "a failed load must not be tried again without force";
    EXPECT_EQ(manager->GetVisualAssetLibrary(), nullptr);
    EXPECT_TRUE(manager->LoadLibs(true));
    EXPECT_TRUE(manager->LibsLoaded());
    EXPECT_EQ(manager->GetVisualLibraryID(), s_visualId);
}

TEST_F(AmbrelLoading, DamagedVisualLibraryFailsCleanly)
{
    const auto file = librariesFolder() / "assetlibrary_base.tvrnlib";
    writeVisualLibrary(file);
    const std::vector<std::uint8_t> good = KxTest::readBytes(file);
    const std::pair<const char*, std::vector<std::uint8_t>> cases[] = {
        {"not SQLite", std::vector<std::uint8_t>(4096, 0x5A)},
        {"truncated", std::vector<std::uint8_t>(good.begin(), good.begin() + static_cast<long>(good.size() / 3))},
        {"empty", {}},
    };
    for (const auto& [name, bytes] : cases) {
        SCOPED_TRACE(name);
        KxTest::writeBytes(file, bytes);
        auto manager = makeManager();
        EXPECT_FALSE(manager->LoadLibs(false));
        EXPECT_FALSE(manager->LibsLoaded());
        EXPECT_EQ(manager->GetVisualAssetLibrary(), nullptr);
        EXPECT_EQ(InstancePtr(manager->GetAssetInstance("red", s_visualId, {})), nullptr);
    }
}

TEST_F(AmbrelLoading, OnlyTheVisualLibraryIsMandatory)
{
    writePhysicalLibrary(librariesFolder() / "PhysicalMaterial.tvrnlib");
    auto manager = makeManager();
    EXPECT_FALSE(manager->LoadLibs(false));
    EXPECT_TRUE(manager->GetPhysicalLibraryID().empty()) << "nothing is opened after the visual library failed";

    writeVisualLibrary(librariesFolder() / "assetlibrary_base.tvrnlib");
    ASSERT_TRUE(manager->LoadLibs(true));
    EXPECT_EQ(manager->GetPhysicalLibraryID(), s_physicalId);
    EXPECT_EQ(manager->GetAdvancedPhysicalAssetLibrary(), nullptr);
    EXPECT_TRUE(manager->GetAdditivePhysicalLibraryID().empty());
    EXPECT_TRUE(manager->IsSystemMaterialLibrary(s_physicalId));
    EXPECT_FALSE(manager->IsSystemMaterialLibrary(L""));
}

TEST_F(AmbrelLoading, UserLibraries)
{
    writeVisualLibrary(librariesFolder() / "assetlibrary_base.tvrnlib");
    const auto userFile = m_root.path() / "mine" / "Mine.tvrnlib";
    writeVisualLibrary(userFile, L"22222222-0000-4000-8000-000000000003");
    const std::string missing = (m_root.path() / "gone.tvrnlib").string();

    struct Case {
        const char* name;
        std::vector<std::string> names;
        std::vector<std::string> paths;
        std::size_t loaded;
        std::size_t assertions;
    };
    const Case cases[] = {
        {"one library", {"Mine"}, {userFile.string()}, 1, 0},
        {"a missing file is skipped", {"Gone", "Mine"}, {missing, userFile.string()}, 1, 0},
        {"unequal lists load none", {"Mine", "Extra"}, {userFile.string()}, 0, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        setUserLibraries(c.names, c.paths);
        auto manager = makeManager();
        Kx::ScopedAssertionCapture capture;
        ASSERT_TRUE(manager->LoadLibs(false));
        const Kx::LibraryInfoMap users = manager->GetUserLibrariesInfo();
        EXPECT_EQ(users.size(), c.loaded);
        if (c.loaded == 1) {
            EXPECT_EQ(users.at(L"Mine").second, L"22222222-0000-4000-8000-000000000003");
            EXPECT_NE(manager->GetLibraryByIdentifier(L"22222222-0000-4000-8000-000000000003"), nullptr);
        }
        ASSERT_EQ(capture.count(), c.assertions);
        if (c.assertions > 0) {
            EXPECT_EQ(capture.reports().front().condition, "userLibNames.size() == userLibs.size()");
        }
    }
}

// A host names every library it could not open, with the reason, so the user is not left to guess
// why a library is missing from its lists; the load itself goes on with the others.
TEST_F(AmbrelLoading, LibrariesThatCannotBeOpenedAreReportedByNameWithTheReason)
{
    writeVisualLibrary(librariesFolder() / "assetlibrary_base.tvrnlib");
    const auto physical = librariesFolder() / "PhysicalMaterial.tvrnlib";
    KxTest::writeBytes(physical, std::vector<std::uint8_t>(4096, 0x5A));
    const auto userFile = m_root.path() / "mine" / "Mine.tvrnlib";
    writeVisualLibrary(userFile, L"22222222-0000-4000-8000-000000000003");
    const auto damaged = m_root.path() / "damaged.tvrnlib";
    KxTest::writeBytes(damaged, {'n', 'o', 't'});
    const auto missing = m_root.path() / "gone.tvrnlib";
    setUserLibraries({"Gone", "Mine", "Kaputt \u00fc"}, {missing.string(), userFile.string(), damaged.string()});

    auto manager = makeManager();
    ASSERT_TRUE(manager->LoadLibs(false));
    EXPECT_EQ(manager->GetUserLibrariesInfo().size(), 1u);
    // The two advanced libraries are not installed here: expected libraries, so failures too.
    std::map<std::wstring, AmbrelManager::LibraryFailure> failures;
    for (const AmbrelManager::LibraryFailure& failure : manager->GetLibraryFailures()) {
        EXPECT_FALSE(failure.reason.empty());
        failures.emplace(failure.name, failure);
    }
    const std::vector<WideString>& standard = AmbrelManager::GetStandardLibraryDisplayNames();
    EXPECT_EQ(failures.size(), 5u);
    ASSERT_EQ(failures.count(standard[1]), 1u);
    EXPECT_EQ(failures.at(standard[1]).location, (reducedFolder() / "PhysicalMaterial.tvrnlib").wstring())
        << "a server edition opens the copy of the installed file in the reduced library folder";
    EXPECT_EQ(failures.count(standard[2]) + failures.count(standard[3]), 2u);
    ASSERT_EQ(failures.count(L"Gone"), 1u);
    EXPECT_EQ(failures.at(L"Gone").reason, "the file does not exist");
    ASSERT_EQ(failures.count(L"Kaputt \u00fc"), 1u);
    EXPECT_EQ(failures.at(L"Kaputt \u00fc").location, damaged.wstring());
    EXPECT_EQ(failures.count(L"Mine"), 0u);
}

TEST_F(AmbrelLoading, ReleaseLibReturnsToUnloadedUnlessAnOperationIsActive)
{
    writeVisualLibrary(librariesFolder() / "assetlibrary_base.tvrnlib");
    auto manager = makeManager();
    ASSERT_TRUE(manager->LoadLibs(false));

    {
        Kx::OperationContext::Scope saving(2);
        manager->ReleaseLib();
        EXPECT_TRUE(manager->LibsLoaded());
        EXPECT_NE(manager->GetAssetLibMgr(), nullptr);
    }
    {
        // Only an operation of kind 2 holds the libraries.
        Kx::OperationContext::Scope other(1);
        manager->ReleaseLib();
    }
    EXPECT_FALSE(manager->LibsLoaded());
    EXPECT_EQ(manager->GetAssetLibMgr(), nullptr);
    EXPECT_TRUE(manager->GetVisualLibraryID().empty());
    EXPECT_TRUE(m_assets->GetAssetLibraries().empty()) << "every library is given back";
    EXPECT_TRUE(manager->LoadLibs(false)) << "a released manager loads again";
}

TEST(AmbrelLanguage, LocaleTagsMapWholeAndCaseSensitively)
{
    const std::pair<const char*, const char*> cases[] = {
        {"de-DE", "deu"}, {"en-US", "eng"}, {"cs-CZ", "csy"}, {"es-ES", "esp"}, {"fr-FR", "fra"},
        {"hu-HU", "hun"}, {"it-IT", "ita"}, {"ja-JP", "jpn"}, {"ko-KR", "kor"}, {"pl-PL", "plk"},
        {"pt-BR", "ptb"}, {"ru-RU", "rus"}, {"zh-CN", "chs"}, {"zn-TW", "cht"},
        {"zh-TW", "eng"}, {"de-de", "eng"}, {"de", "eng"}, {"de-AT", "eng"}, {"", "eng"}};
    for (const auto& [tag, code] : cases) {
        SCOPED_TRACE(tag);
        EXPECT_EQ(AmbrelManager::LanguageCodeForLocale(tag), code);
    }
}

TEST(AmbrelDisplayName, NumbersRepeatedBaseNames)
{
    Kx::LibraryInfoMap known;
    const std::pair<const wchar_t*, const wchar_t*> steps[] = {
        {L"C:\\libs\\Metals.tvrnlib", L"Metals"},
        {L"/home/jo/Metals.tvrnlib", L"Metals1"},
        {L"D:\\other\\Metals.v2.tvrnlib", L"Metals.v2"},
        {L"D:\\mixed/dir\\Metals.tvrnlib", L"Metals2"},
        {L"NoExtension", L"NoExtension"},
    };
    for (const auto& [path, expected] : steps) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(path)));
        const std::wstring name = AmbrelManager::GenerateLibraryDisplayName(known, path);
        EXPECT_EQ(name, expected);
        known[name] = {path, L""};
    }
}

// The libraries generated from content/data, opened the way a desktop edition opens them: through
// netfs URIs resolved under the build's content root (ctest sets KX_CONTENT_DIR).
TEST(AmbrelStandardLibraries, OpenThroughTheContentService)
{
    KxTest::ScopedEnvironment edition("KX_EDITION", "desktop");
    auto assets = CreateAssetLibraryManager();
    AmbrelManager manager([&] { return assets.get(); });
    ASSERT_TRUE(manager.LoadLibs(false));
    EXPECT_EQ(manager.GetVisualLibraryPath(), L"netfs://LOCAL:/slib/content/appearance");
    EXPECT_EQ(manager.GetVisualLibraryID(), L"1F6B9E24-C83A-4D5F-8E07-B4A2D95C3E12");
    EXPECT_EQ(manager.GetPhysicalLibraryID(), L"8A3F52C1-6D0E-4B7A-9C15-2E84F7D3A601");
    EXPECT_EQ(manager.GetAdvancedPhysicalLibraryID(), L"C4D81A73-2B5E-4F69-A3D0-7E16B8F24C35");
    EXPECT_EQ(manager.GetAdvancedVisualLibraryID(), L"5E29C7B8-9A14-4E3D-B6F2-0C85D1A7E946");
    EXPECT_EQ(manager.GetAdditivePhysicalLibraryID(), L"B7E03D95-4C2A-4A81-9F6E-3D58A2C1B077");
    EXPECT_EQ(manager.GetNonlinearPhysicalLibraryID(), L"2D94F6A8-E71B-4C03-8A5D-F6C3B0E9D188");

    const Kx::LibraryInfoMap libraries = manager.GetLibrariesInfo();
    ASSERT_EQ(libraries.count(L"Orvane Additive Material Library"), 1U);
    EXPECT_EQ(libraries.at(L"Orvane Appearance Library").second, manager.GetVisualLibraryID());
    EXPECT_EQ(libraries.size(), 6U);
}

} // namespace
} // namespace AmbrelTest
