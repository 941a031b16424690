#include "SampleLibrary.h"

#include <assets/IAssetDefinition.h>
#include <assets/ILocalizationManager.h>

#include <base/BootstrapOptionGroup.h>

#include "support/TestSupport.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <atomic>
#include <thread>

namespace {

using namespace telvarin::platform::assets;
using AssetTest::InstancePtr;

class AssetLibraryTest : public ::testing::Test {
protected:
    void SetUp() override { AssetTest::writeSampleLibrary(*m_manager, m_file); }

    IAssetLibrary* open()
    {
        AssetError error;
        IAssetLibrary* library = m_manager->OpenAssetLibrary(m_file.wstring(), &error);
        EXPECT_NE(library, nullptr) << error.message;
        return library;
    }

    static std::vector<UTF8String> ids(const AssetSearchIterator& results)
    {
        std::vector<UTF8String> found;
        for (const IAssetDefinition* definition : results) {
            found.push_back(definition->GetMaterialId() + (definition->GetVariant().empty() ? "" : "/hot"));
        }
        return found;
    }

    KxTest::TempDir m_dir;
    std::filesystem::path m_file = m_dir / "sample.tvrnlib";
    std::unique_ptr<IAssetLibraryManager> m_manager = CreateAssetLibraryManager();
};

TEST_F(AssetLibraryTest, ListsPresetsByCategoryAndSearches)
{
    IAssetLibrary* library = open();
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(library->GetLibraryId(), AssetTest::s_sampleLibraryId);
    EXPECT_EQ(library->GetName(), L"Sample");
    EXPECT_EQ(library->GetLibraryKind(), eUserLibrary);
    EXPECT_FALSE(library->IsReadOnly());
    EXPECT_EQ(library->GetAssetCount(), 4u) << "connected aspects and textures are not presets";

    EXPECT_EQ(ids(library->GetAssetDefinitions()), (std::vector<UTF8String>{"glass", "steel", "steel/hot", "oak"}));
    using Pair = std::pair<WideString, WideString>;
    EXPECT_EQ(library->GetCategories(), (std::vector<Pair>{{L"Glass", L""}, {L"Metal", L"Steel"}, {L"Wood", L"Hardwood"}}));
    EXPECT_EQ(ids(library->SearchBySchema(L"PHYSICALMATERIAL")), (std::vector<UTF8String>{"steel", "steel/hot", "oak"}));
    EXPECT_EQ(ids(library->SearchByCategory(L"Metal", L"Steel")), (std::vector<UTF8String>{"steel", "steel/hot"}));
    EXPECT_TRUE(library->SearchByCategory(L"Metal", L"Iron").IsEmpty());
    EXPECT_EQ(ids(library->SearchByMaterialId("steel")), (std::vector<UTF8String>{"steel", "steel/hot"}));
    EXPECT_EQ(ids(library->SearchByName(L"\u00f6KO", "deu")), (std::vector<UTF8String>{"glass"})) << "Latin-1 case folding";
    EXPECT_TRUE(library->SearchByName(L"eiche", "eng").IsEmpty());
    EXPECT_EQ(ids(library->SearchByName(L"eiche")), (std::vector<UTF8String>{"oak"}));

    const IAssetDefinition* steel = library->FindAssetDefinition("steel");
    ASSERT_NE(steel, nullptr);
    EXPECT_EQ(steel->GetLibraryId(), AssetTest::s_sampleLibraryId);
    EXPECT_EQ(steel->GetSchemaName(), L"physicalmaterial");
    EXPECT_EQ(steel->GetMajorVersion(), 2);
    EXPECT_EQ(steel->GetMinorVersion(), 7);
    EXPECT_EQ(steel->GetRevision(), L"2024.1");
    EXPECT_EQ(steel->GetVersionGUID(), L"0F1E2D3C-4B5A-4978-8695-A4B3C2D1E0F9");
    EXPECT_EQ(library->FindAssetDefinition("steel", L"cold"), nullptr);
    EXPECT_EQ(library->FindAssetDefinition("iron"), nullptr);
    EXPECT_TRUE(m_manager->ReleaseAssetLibrary(library));
}

TEST_F(AssetLibraryTest, InstancesReadBackEverythingThatWasWritten)
{
    IAssetLibrary* library = open();
    ASSERT_NE(library, nullptr);
    auto results = library->SearchByMaterialId("steel");
    InstancePtr steel(results.GetAssetInstance());
    ASSERT_NE(steel, nullptr) << library->GetLastError().message;
    EXPECT_EQ(steel->GetReferenceCount(), 1);
    EXPECT_EQ(steel->GetAssetDefinition(), results.GetAssetDefinition());
    EXPECT_TRUE(steel->IsEqual(AssetTest::makeSteel(*m_manager).get())) << "every kind, constraint, unit and connection";
    EXPECT_EQ(steel->GetName("deu"), L"Stahl");
    EXPECT_EQ(steel->GetThumbnailImageURI(), L"tvp:?asset=thumbnails/steel.png");

    InstancePtr structural(steel->GetConnectedAsset(L"Structural"));
    InstancePtr aspect(steel->GetConnectedAsset(L"physmat_aspects"));
    ASSERT_NE(structural, nullptr);
    EXPECT_EQ(structural.get(), aspect.get()) << "an asset connected twice is read once";
    EXPECT_EQ(structural->GetAssetDefinition(), nullptr);
    EXPECT_EQ(structural->GetAssetId(), "steel/Structural");
    EXPECT_EQ(structural->GetPropertyUnit(L"structural_Density"), L"kg/m^3");

    InstancePtr hot(library->CreateAssetInstance("steel", L"hot"));
    ASSERT_NE(hot, nullptr);
    double temperature = 0;
    EXPECT_TRUE(hot->GetDoubleValue(L"temperature", temperature));
    EXPECT_FALSE(steel->HasProperty(L"temperature"));

    std::vector<std::uint8_t> bytes;
    EXPECT_TRUE(library->ReadEmbeddedResource(L"tvp:?asset=textures/steel.png", bytes));
    EXPECT_EQ(bytes, (std::vector<std::uint8_t>{0x89, 'P', 'N', 'G', 0, 1, 2}));
    EXPECT_FALSE(library->ReadEmbeddedResource(L"tvp:?asset=missing.png", bytes));
    EXPECT_FALSE(library->ReadEmbeddedResource(L"file:///textures/steel.png", bytes));

    EXPECT_EQ(library->CreateAssetInstance("iron"), nullptr);
    EXPECT_EQ(library->GetLastError().code, EAssetError::eNotFound);
    EXPECT_TRUE(m_manager->ReleaseAssetLibrary(library));
}

TEST_F(AssetLibraryTest, UncommittedChangesRollBackAndCommittedOnesPersist)
{
    IAssetLibrary* library = open();
    ASSERT_NE(library, nullptr);
    IWritableAssetLibrary* writable = m_manager->GetWritableAssetLibrary(library);
    ASSERT_NE(writable, nullptr);
    AssetError busy;
    EXPECT_EQ(m_manager->GetWritableAssetLibrary(library, &busy), nullptr);
    EXPECT_EQ(busy.code, EAssetError::eBusy);

    ASSERT_TRUE(writable->DeleteAssetDefinition(library->FindAssetDefinition("oak")));
    InstancePtr copper(m_manager->CreateAssetInstance(L"physicalmaterial"));
    ASSERT_TRUE(writable->CreateNewAssetPreset(copper.get(), "copper"));
    EXPECT_EQ(ids(library->GetAssetDefinitions()), (std::vector<UTF8String>{"copper", "glass", "steel", "steel/hot"}))
        << "the writer's changes show at once";
    AssetError duplicate;
    EXPECT_FALSE(writable->CreateNewAssetPreset(copper.get(), "copper", &duplicate));
    EXPECT_EQ(duplicate.code, EAssetError::eDuplicate);
    m_manager->ReleaseWritableAssetLibrary(writable);
    EXPECT_EQ(ids(library->GetAssetDefinitions()), (std::vector<UTF8String>{"glass", "steel", "steel/hot", "oak"}));

    writable = m_manager->GetWritableAssetLibrary(library);
    ASSERT_NE(writable, nullptr);
    ASSERT_TRUE(writable->DeleteAssetDefinition(library->FindAssetDefinition("steel")));
    ASSERT_TRUE(writable->SetReadOnly(true));
    ASSERT_TRUE(m_manager->CommitAssetLibrary(writable));
    m_manager->ReleaseWritableAssetLibrary(writable);
    EXPECT_TRUE(m_manager->ReleaseAssetLibrary(library));

    library = open();
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(ids(library->GetAssetDefinitions()), (std::vector<UTF8String>{"glass", "steel/hot", "oak"}));
    EXPECT_TRUE(library->IsReadOnly());
    AssetError readOnly;
    EXPECT_EQ(m_manager->GetWritableAssetLibrary(library, &readOnly), nullptr);
    EXPECT_EQ(readOnly.code, EAssetError::eReadOnly);
    EXPECT_TRUE(m_manager->ReleaseAssetLibrary(library));
}

TEST_F(AssetLibraryTest, ClosingALibraryRollsBackItsWriter)
{
    IAssetLibrary* library = open();
    ASSERT_NE(library, nullptr);
    IWritableAssetLibrary* writable = m_manager->GetWritableAssetLibrary(library);
    ASSERT_NE(writable, nullptr);
    ASSERT_TRUE(writable->SetLibraryName(L"Renamed"));
    EXPECT_EQ(library->GetName(), L"Renamed");
    ASSERT_TRUE(writable->DeleteAssetDefinition(library->FindAssetDefinition("glass")));
    EXPECT_TRUE(m_manager->ReleaseAssetLibrary(library));

    library = open();
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(library->GetName(), L"Sample");
    EXPECT_NE(library->FindAssetDefinition("glass"), nullptr);
    writable = m_manager->GetWritableAssetLibrary(library);
    ASSERT_NE(writable, nullptr) << "no writer is left behind";
    ASSERT_TRUE(writable->SetLibraryName(L"Renamed"));
    m_manager->ReleaseWritableAssetLibrary(writable);
    EXPECT_EQ(library->GetName(), L"Sample") << "the header is read again after a rollback";
    EXPECT_TRUE(m_manager->ReleaseAssetLibrary(library));
}

// Category searches use the order the database sorts in; a category that is not valid UTF-8
// breaks that order, and the search must still find everything.
TEST_F(AssetLibraryTest, CategoriesOutOfOrderAreStillFound)
{
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(m_file.c_str(), &db), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(db, "UPDATE asset SET category = CAST(x'FF' AS TEXT) WHERE asset_id = 'glass'", nullptr, nullptr, nullptr),
        SQLITE_OK);
    sqlite3_close(db);
    IAssetLibrary* library = open();
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(ids(library->GetAssetDefinitions()), (std::vector<UTF8String>{"steel", "steel/hot", "oak", "glass"}));
    EXPECT_EQ(ids(library->SearchByCategory(L"Wood")), std::vector<UTF8String>{"oak"});
    EXPECT_EQ(ids(library->SearchByCategory(L"Metal", L"Steel")), (std::vector<UTF8String>{"steel", "steel/hot"}));
    EXPECT_EQ(ids(library->SearchByCategory(L"\ufffd")), std::vector<UTF8String>{"glass"});
    EXPECT_TRUE(m_manager->ReleaseAssetLibrary(library));
}

TEST_F(AssetLibraryTest, DeletingAPresetDeletesOnlyWhatItOwns)
{
    IAssetLibrary* library = open();
    ASSERT_NE(library, nullptr);
    IWritableAssetLibrary* writable = m_manager->GetWritableAssetLibrary(library);
    ASSERT_NE(writable, nullptr);
    ASSERT_TRUE(writable->DeleteAssetDefinition(library->FindAssetDefinition("steel")));
    ASSERT_TRUE(m_manager->CommitAssetLibrary(writable));
    m_manager->ReleaseWritableAssetLibrary(writable);
    InstancePtr hot(library->CreateAssetInstance("steel", L"hot"));
    ASSERT_NE(hot, nullptr) << library->GetLastError().message;
    EXPECT_EQ(hot->GetConnectedAssetCount(L"physmat_aspects"), 1) << "the variant's own aspect survives";
    EXPECT_TRUE(m_manager->ReleaseAssetLibrary(library));
}

TEST_F(AssetLibraryTest, OneFileIsOneLibraryAndIdentifiersAreUnique)
{
    IAssetLibrary* first = open();
    IAssetLibrary* second = m_manager->OpenAssetLibrary((m_dir.path() / "." / "sample.tvrnlib").wstring());
    EXPECT_EQ(first, second);
    EXPECT_EQ(m_manager->GetAssetLibrary(AssetTest::s_sampleLibraryId), first);

    std::filesystem::copy_file(m_file, m_dir / "copy.tvrnlib");
    AssetError duplicate;
    EXPECT_EQ(m_manager->OpenAssetLibrary((m_dir / "copy.tvrnlib").wstring(), &duplicate), nullptr);
    EXPECT_EQ(duplicate.code, EAssetError::eDuplicate);

    EXPECT_TRUE(m_manager->ReleaseAssetLibrary(first));
    EXPECT_EQ(m_manager->GetAssetLibrary(AssetTest::s_sampleLibraryId), first) << "one opening is still held";
    EXPECT_TRUE(m_manager->ReleaseAssetLibrary(second));
    EXPECT_EQ(m_manager->GetAssetLibrary(AssetTest::s_sampleLibraryId), nullptr);
    EXPECT_FALSE(m_manager->ReleaseAssetLibrary(second));

    m_manager->SetConfigurationPath(m_dir.path().wstring());
    IAssetLibrary* relative = m_manager->OpenAssetLibrary(L"copy.tvrnlib");
    ASSERT_NE(relative, nullptr);
    EXPECT_EQ(relative->GetFilePath(), (m_dir / "copy.tvrnlib").wstring());
    EXPECT_TRUE(m_manager->ReleaseAssetLibrary(relative));
}

TEST_F(AssetLibraryTest, ContentUrisResolveUnderTheContentRoot)
{
    // The user space ("/user/...") holds the user's own libraries: files under the user directory,
    // which the user can write, never the installed content.
    KxTest::ScopedEnvironment content("KX_CONTENT_DIR", m_dir.path() / "content");
    KxTest::ScopedEnvironment user("KX_USER_DIR", m_dir.path());
    const auto file = m_dir / "netfs" / "user" / "jo" / "content" / "private.tvrnlib";
    std::filesystem::create_directories(file.parent_path());
    std::filesystem::create_directories(m_dir / "content" / "libraries" / "user" / "jo" / "content");
    std::filesystem::copy_file(m_file, m_dir / "content" / "libraries" / "user" / "jo" / "content" / "private.tvrnlib");
    std::filesystem::rename(m_file, file);
    const WideString uri = L"netfs://LOCAL:/user/jo/content/private";
    AssetError error;
    IAssetLibrary* library = m_manager->OpenAssetLibrary(uri, &error);
    ASSERT_NE(library, nullptr) << error.message;
    EXPECT_EQ(library->GetLocation(), uri);
    EXPECT_EQ(library->GetFilePath(), file.wstring());
    EXPECT_EQ(m_manager->OpenAssetLibrary(library->GetFilePath()), library) << "a URI and a path of one file";
    EXPECT_TRUE(m_manager->ReleaseAssetLibrary(library));
    EXPECT_TRUE(m_manager->ReleaseAssetLibrary(library));

    const std::pair<const wchar_t*, EAssetError> refused[] = {{L"", EAssetError::eInvalidArgument},
        {L"netfs://LOCAL:/user/../jo", EAssetError::eInvalidArgument}, {L"netfs://LOCAL:/user/ann", EAssetError::eNotFound}};
    for (const auto& [location, code] : refused) {
        SCOPED_TRACE(telvarin::platform::core::toUTF8(location));
        EXPECT_EQ(m_manager->OpenAssetLibrary(location, &error), nullptr);
        EXPECT_EQ(error.code, code) << error.message;
    }
}

TEST_F(AssetLibraryTest, CreatedLibrariesAreFoundOnlyOnceRegistered)
{
    const WideString id = L"A0000000-0000-4000-8000-000000000001";
    IAssetLibrary* created = m_manager->CreateAssetLibrary((m_dir / "Favorites.tvrnlib").wstring(), eUserLibrary, id);
    ASSERT_NE(created, nullptr);
    EXPECT_EQ(created->GetFilePath(), L"");
    EXPECT_EQ(m_manager->GetAssetLibrary(id), nullptr);
    ASSERT_TRUE(m_manager->SaveAssetLibrary(created));
    EXPECT_TRUE(std::filesystem::exists(m_dir / "Favorites.tvrnlib"));
    ASSERT_TRUE(m_manager->RegisterAssetLibrary(created));
    EXPECT_EQ(m_manager->GetAssetLibrary(id), created);
    EXPECT_EQ(created->GetName(), L"Favorites");

    IWritableAssetLibrary* writable = m_manager->GetWritableAssetLibrary(created);
    ASSERT_NE(writable, nullptr);
    InstancePtr steel = AssetTest::makeSteel(*m_manager);
    ASSERT_TRUE(writable->CreateNewAssetPreset(steel.get(), "steel"));
    ASSERT_TRUE(m_manager->CommitAssetLibrary(writable));
    m_manager->ReleaseWritableAssetLibrary(writable);
    EXPECT_TRUE(m_manager->ReleaseAssetLibrary(created));

    auto manager = CreateAssetLibraryManager();
    IAssetLibrary* reopened = manager->OpenAssetLibrary((m_dir / "Favorites.tvrnlib").wstring());
    ASSERT_NE(reopened, nullptr);
    EXPECT_EQ(reopened->GetAssetCount(), 1u);
    EXPECT_TRUE(manager->ReleaseAssetLibrary(reopened));
}

TEST_F(AssetLibraryTest, LocalizationsFallBackAndOutliveTheirLibrary)
{
    ILocalizationManager* localization = m_manager->GetLocalizationManager();
    ILocalization* german = localization->GetILocalization("deu", AssetTest::s_sampleLibraryId);
    ILocalization* french = localization->GetILocalization("fra", AssetTest::s_sampleLibraryId);
    ASSERT_NE(german, nullptr);
    EXPECT_EQ(localization->GetILocalization("deu", AssetTest::s_sampleLibraryId), german);
    EXPECT_EQ(localization->GetILocalization("", AssetTest::s_sampleLibraryId), nullptr);

    EXPECT_EQ(german->GetAssetName("oak"), L"oak") << "closed library: the id itself";
    IAssetLibrary* library = open();
    EXPECT_EQ(german->GetAssetName("oak"), L"Eiche");
    EXPECT_EQ(french->GetAssetName("oak"), L"Oak");
    EXPECT_EQ(german->GetAssetName("iron"), L"iron");
    EXPECT_EQ(german->GetText(L"Metal"), L"Metall");
    EXPECT_EQ(french->GetText(L"Metal"), L"Metal");
    EXPECT_EQ(german->GetText(L"Wood"), L"Wood");
    EXPECT_EQ(library->GetLocalizedText(L"Metal", "fra"), L"");
    EXPECT_TRUE(m_manager->ReleaseAssetLibrary(library));

    Kx::BootstrapOptionGroup& bootstrap = Kx::BootstrapOptionGroup::get();
    const std::string previous = bootstrap.userLanguage();
    bootstrap.userLanguage("de-AT");
    EXPECT_EQ(localization->GetUserLanguage(), "deu");
    bootstrap.userLanguage("ja-JP");
    EXPECT_EQ(localization->GetUserLanguage(), "jpn");
    bootstrap.userLanguage(previous);
}

// Readers on several threads share one library (and its lazily read presets and names); each
// thread counts its own instances, so a lost reference or a torn cache shows as a wrong result.
TEST_F(AssetLibraryTest, ThreadsShareOneLibrary)
{
    IAssetLibrary* library = open();
    ASSERT_NE(library, nullptr);
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&, thread] {
            for (int round = 0; round < 50; ++round) {
                if (round % 10 == thread) {
                    library->Refresh();
                }
                InstancePtr steel(library->CreateAssetInstance("steel"));
                const bool ok = steel != nullptr && steel->GetReferenceCount() == 1 &&
                                library->SearchByCategory(L"Metal").GetCount() == 2 &&
                                library->GetAssetName("oak", "deu") == L"Eiche";
                failures += ok ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(failures.load(), 0);
    EXPECT_TRUE(m_manager->ReleaseAssetLibrary(library));
}

} // namespace
