#include <Types/Appearance/AmbrelManager.h>
#include <Types/Appearance/DefaultMaterialOptions.h>

#include "AmbrelTestLibraries.h"

#include <assets/IAssetDefinition.h>
#include <base/Assert.h>
#include <base/Options.h>
#include <base/Paths.h>
#include <base/Strings.h>

#include <gtest/gtest.h>

#include <fstream>
#include <type_traits>

namespace AmbrelTest {
namespace {

using Kx::AmbrelManager;
using Kx::LibraryInfoMap;
using Kx::MaterialTweak;

// The lists a host reads are the manager's own, rebuilt on demand.
static_assert(std::is_same_v<decltype(std::declval<AmbrelManager&>().GetUserLibrariesInfo(true)), const LibraryInfoMap&>);
static_assert(std::is_same_v<decltype(std::declval<AmbrelManager&>().GetLibrariesInfo(true)), const LibraryInfoMap&>);

class AmbrelFavorites : public AmbrelFixture {
protected:
    void SetUp() override
    {
        writeVisualLibrary(librariesFolder() / "assetlibrary_base.tvrnlib");
        writePhysicalLibrary(librariesFolder() / "PhysicalMaterial.tvrnlib");
        m_manager = makeManager();
        ASSERT_TRUE(m_manager->LoadLibs(false));
    }

    InstancePtr library(const char* id, const WideString& libraryId = s_visualId)
    {
        return InstancePtr(m_manager->GetAssetUncacheInstance(id, libraryId));
    }

    [[nodiscard]] bool isFavorite(AmbrelManager& manager, const char* id) const
    {
        const IAssetLibrary* favorites = manager.GetFavoritesLibrary();
        return favorites != nullptr && favorites->FindAssetDefinition(id) != nullptr;
    }

    std::unique_ptr<AmbrelManager> m_manager;
};

TEST_F(AmbrelFavorites, TheFirstFavoriteCreatesTheLibraryAndSurvivesARestart)
{
    const auto file = reducedFolder() / "Favorites.tvrnlib";
    EXPECT_EQ(m_manager->GetFavoritesLibrary(), nullptr);
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_EQ(m_manager->GetFavoritesLibPath(), file.wstring());

    InstancePtr red = library("red");
    InstancePtr favorite(m_manager->AddMaterialToFavorites(red.get()));
    ASSERT_NE(favorite, nullptr);
    EXPECT_TRUE(std::filesystem::exists(file));
    EXPECT_EQ(favorite->GetAssetId(), "red");
    ASSERT_NE(favorite->GetAssetDefinition(), nullptr);
    EXPECT_EQ(favorite->GetAssetDefinition()->GetLibraryId(), m_manager->GetFavoritesLibraryID());
    EXPECT_TRUE(favorite->IsEqual(red.get()));
    EXPECT_FALSE(m_manager->CreateFavoritesLibrary()) << "one is open already";
    EXPECT_EQ(m_manager->GetLibrariesInfo(false).count(
                  AmbrelManager::GetStandardLibraryDisplayNames()[AmbrelManager::eFavoritesName]),
        1u);

    // A physical material takes its aspects along.
    InstancePtr steel = library("steel", s_physicalId);
    InstancePtr favoriteSteel(m_manager->AddMaterialToFavorites(steel.get()));
    ASSERT_NE(favoriteSteel, nullptr);
    double density = 0.0;
    EXPECT_TRUE(m_manager->GetAssetInstanceDensity(favoriteSteel.get(), density));
    EXPECT_EQ(density, 7850.0);

    favorite.reset();
    favoriteSteel.reset();
    m_manager.reset();
    auto restarted = makeManager();
    ASSERT_TRUE(restarted->LoadLibs(false));
    EXPECT_TRUE(isFavorite(*restarted, "red"));
    EXPECT_TRUE(isFavorite(*restarted, "steel"));
}

TEST_F(AmbrelFavorites, AddingTwiceOrRemovingWhatIsNotThereChangesNothing)
{
    InstancePtr red = library("red");
    InstancePtr first(m_manager->AddMaterialToFavorites(red.get()));
    ASSERT_NE(first, nullptr);
    const std::size_t count = m_manager->GetFavoritesLibrary()->GetAssetCount();
    {
        Kx::ScopedAssertionCapture capture;
        EXPECT_EQ(InstancePtr(m_manager->AddMaterialToFavorites(red.get())), nullptr);
        ASSERT_EQ(capture.count(), 1u);
        EXPECT_EQ(capture.reports()[0].condition, "bSucceeded");
    }
    EXPECT_EQ(m_manager->GetFavoritesLibrary()->GetAssetCount(), count);
    {
        Kx::ScopedAssertionCapture capture;
        InstancePtr glass = library("glass");
        EXPECT_FALSE(m_manager->RemoveMaterialFromFavorites(glass.get()));
        ASSERT_EQ(capture.count(), 2u);
        EXPECT_EQ(capture.reports()[0].condition, "!iter2.IsEmpty()");
        EXPECT_EQ(capture.reports()[1].condition, "pAssetDef != NULL");
    }
    EXPECT_EQ(m_manager->GetFavoritesLibrary()->GetAssetCount(), count);
    EXPECT_EQ(m_manager->AddMaterialToFavorites(nullptr), nullptr);
    EXPECT_FALSE(m_manager->RemoveMaterialFromFavorites(nullptr));

    EXPECT_TRUE(m_manager->RemoveMaterialFromFavorites(first.get()));
    EXPECT_FALSE(isFavorite(*m_manager, "red"));
    first.reset();
    m_manager.reset();
    auto restarted = makeManager();
    ASSERT_TRUE(restarted->LoadLibs(false));
    EXPECT_FALSE(isFavorite(*restarted, "red")) << "the removal was committed";
}

TEST_F(AmbrelFavorites, RemovingTheDefaultAppearanceResetsThePreferences)
{
    InstancePtr red = library("red");
    InstancePtr favorite(m_manager->AddMaterialToFavorites(red.get()));
    ASSERT_NE(favorite, nullptr);
    const std::string favorites =
        Kx::ToUTF8(AmbrelManager::GetStandardLibraryDisplayNames()[AmbrelManager::eFavoritesName]);
    const auto file = Kx::Paths::optionsDirectory() / "DefaultMaterialOptionGroup.xml";
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << R"(<OptionGroup Name="DefaultMaterialOptionGroup" Version="1">)"
                                          << R"(<VisualMaterialLibraryID Value=")" << favorites << R"("/>)"
                                          << R"(<VisualMaterialCategoryID Value="Paint"/><VisualMaterialIDID Value="red"/>)"
                                          << "</OptionGroup>";
    Kx::DefaultMaterialOptionGroup preferences(m_manager.get());
    ASSERT_EQ(m_manager->defaultMaterialOptions(), &preferences) << "a group over a manager follows its favourites";
    ASSERT_TRUE(preferences.loadPersisted());
    ASSERT_EQ(preferences.VisualMaterialID(), L"red") << "the favourite is a valid default";

    EXPECT_TRUE(m_manager->RemoveMaterialFromFavorites(favorite.get()));
    EXPECT_EQ(preferences.VisualMaterialLibrary(), L"Orvane Appearance Library");
    EXPECT_EQ(preferences.VisualMaterialID(), L"Corvex-256");
}

TEST_F(AmbrelFavorites, ANewLibrarySetKeepsTheFavoritesOfTheLastOne)
{
    const std::vector<std::wstring> legacy = Kx::Types::GetLegacyMaterialLibraryGUID();
    ASSERT_FALSE(legacy.empty());
    m_manager.reset();
    const auto earlier = Kx::Paths::userDirectory() / "libraries" / legacy.back() / "Favorites.tvrnlib";
    writeVisualLibrary(earlier, L"33333333-0000-4000-8000-000000000001");
    std::filesystem::remove(reducedFolder() / "Favorites.tvrnlib");

    auto manager = makeManager();
    ASSERT_TRUE(manager->LoadLibs(false));
    EXPECT_TRUE(isFavorite(*manager, "oak"));
    EXPECT_TRUE(std::filesystem::exists(earlier)) << "copied, not moved: the older set may still run";
}

TEST_F(AmbrelFavorites, TheStandardLibrariesAreReadFromTheUsersCopyOfTheInstalledSet)
{
    EXPECT_EQ(reducedFolder(), Kx::Paths::userDirectory() / "libraries" / Kx::Types::GetCurrentMaterialLibraryGUID());
    EXPECT_EQ(m_manager->GetVisualLibraryPath(), (reducedFolder() / "assetlibrary_base.tvrnlib").wstring());
    EXPECT_EQ(KxTest::readBytes(reducedFolder() / "assetlibrary_base.tvrnlib"),
        KxTest::readBytes(librariesFolder() / "assetlibrary_base.tvrnlib"));
}

TEST_F(AmbrelFavorites, ThePrivateLibraryIsTheUsersAndMadeOnFirstUse)
{
    EXPECT_TRUE(m_manager->GetPrivateVisualLibID().empty()) << "not made by a load";
    const IAssetLibrary* privateLibrary = m_manager->GetPrivateVisualAssetLibrary();
    ASSERT_NE(privateLibrary, nullptr);
    EXPECT_FALSE(privateLibrary->IsReadOnly());
    const WideString id = m_manager->GetPrivateVisualLibID();
    EXPECT_FALSE(id.empty());
    EXPECT_EQ(m_manager->GetLibraryByIdentifier(id), privateLibrary);
    const std::filesystem::path file(privateLibrary->GetFilePath());
    EXPECT_EQ(file.string().rfind(Kx::Paths::userDirectory().string(), 0), 0u) << file;
    EXPECT_EQ(m_manager->GetPrivateVisualAssetLibrary(), privateLibrary) << "made once";

    m_manager.reset();
    auto restarted = makeManager();
    ASSERT_TRUE(restarted->LoadLibs(false));
    EXPECT_EQ(restarted->GetPrivateVisualLibID(), id) << "an existing one opens with the others";
}

class AmbrelUserLibraries : public AmbrelFavorites {};

TEST_F(AmbrelUserLibraries, OpenedOnceNamedByFileAndReopenedAtTheNextStart)
{
    const auto mine = m_root.path() / "a" / "Mine.tvrnlib";
    const auto other = m_root.path() / "b" / "Mine.tvrnlib";
    writeVisualLibrary(mine, L"22222222-0000-4000-8000-000000000001");
    writeVisualLibrary(other, L"22222222-0000-4000-8000-000000000002");
    const std::size_t open = m_assets->GetAssetLibraries().size();

    WideString first;
    WideString again;
    WideString second;
    ASSERT_TRUE(m_manager->LoadUserLib(mine.wstring(), first));
    ASSERT_TRUE(m_manager->LoadUserLib(mine.wstring(), again));
    ASSERT_TRUE(m_manager->LoadUserLib(other.wstring(), second));
    EXPECT_EQ(first, L"Mine");
    EXPECT_EQ(again, L"Mine");
    EXPECT_EQ(second, L"Mine1");
    EXPECT_EQ(m_assets->GetAssetLibraries().size(), open + 2) << "the same path opens once";
    const LibraryInfoMap& users = m_manager->GetUserLibrariesInfo(true);
    ASSERT_EQ(users.size(), 2u);
    EXPECT_EQ(users.at(L"Mine1"), std::make_pair(other.wstring(), std::wstring(L"22222222-0000-4000-8000-000000000002")));
    EXPECT_EQ(Kx::AmbrelMaterialOptionGroup::get().libraryNames(), (std::vector<std::wstring>{L"Mine", L"Mine1"}));
    EXPECT_TRUE(std::filesystem::exists(Kx::AmbrelMaterialOptionGroup::get().persistFile())) << "saved for the next start";
    EXPECT_FALSE(m_manager->LoadUserLib(L"", first));
    EXPECT_FALSE(m_manager->LoadUserLib((m_root.path() / "missing.tvrnlib").wstring(), first));

    // Next start: one file moved away, one damaged; the one left opens and the others are named.
    m_manager.reset();
    std::filesystem::rename(mine, m_root.path() / "a" / "Moved.tvrnlib");
    KxTest::writeBytes(other, std::vector<std::uint8_t>(4096, 0x33));
    writeVisualLibrary(m_root.path() / "c" / "Kept.tvrnlib", L"22222222-0000-4000-8000-000000000004");
    Kx::AmbrelMaterialOptionGroup::get().addLibraryPath(L"Kept", (m_root.path() / "c" / "Kept.tvrnlib").wstring());
    auto restarted = makeManager();
    ASSERT_TRUE(restarted->LoadLibs(false));
    EXPECT_EQ(restarted->GetUserLibrariesInfo(false).size(), 1u);
    EXPECT_EQ(restarted->GetUserLibrariesInfo(false).count(L"Kept"), 1u);
    std::vector<WideString> failed;
    for (const AmbrelManager::LibraryFailure& failure : restarted->GetLibraryFailures()) {
        if (failure.name.starts_with(L"Mine") || failure.name == L"Kept") {
            failed.push_back(failure.name);
        }
    }
    EXPECT_EQ(failed, (std::vector<WideString>{L"Mine", L"Mine1"}));
}

TEST_F(AmbrelUserLibraries, ClosingTakesTheLibraryOffTheOptionsAndOutOfTheCache)
{
    const auto mine = m_root.path() / "Mine.tvrnlib";
    writeVisualLibrary(mine, L"22222222-0000-4000-8000-000000000001");
    WideString name;
    ASSERT_TRUE(m_manager->LoadUserLib(mine.wstring(), name));
    const std::size_t cached = m_manager->GetCachedInstanceCount();
    InstancePtr red(m_manager->GetAssetInstance("red", L"22222222-0000-4000-8000-000000000001", {}));
    ASSERT_NE(red, nullptr);
    EXPECT_EQ(m_manager->GetCachedInstanceCount(), cached + 1);

    EXPECT_FALSE(m_manager->UnloadUserLib(L"Not open"));
    EXPECT_TRUE(m_manager->UnloadUserLib(name));
    EXPECT_FALSE(m_manager->UnloadUserLib(name));
    EXPECT_EQ(m_manager->GetCachedInstanceCount(), cached);
    EXPECT_TRUE(m_manager->GetUserLibrariesInfo(false).empty());
    EXPECT_EQ(m_manager->GetLibrariesInfo(false).count(name), 0u);
    EXPECT_TRUE(Kx::AmbrelMaterialOptionGroup::get().libraryPaths().empty());
    EXPECT_EQ(m_manager->GetLibraryByIdentifier(L"22222222-0000-4000-8000-000000000001"), nullptr);
}

// --- what the landed manager did not yet do ---

class AmbrelCompleted : public AmbrelFavorites {};

TEST_F(AmbrelCompleted, TextureScaleAndRotationReachATextureAndGoBackToNeutral)
{
    InstancePtr brick(m_manager->CloneAndCacheAsset(library("brick").get(), false));
    ASSERT_NE(brick, nullptr);
    InstancePtr texture(brick->GetConnectedAsset(L"opaque_albedo"));
    ASSERT_NE(texture, nullptr);
    const auto scaleOf = [](const IAssetInstance& instance) {
        double u = 0.0;
        double v = 0.0;
        instance.GetDoubleValue(L"texture_UScale", u);
        instance.GetDoubleValue(L"texture_VScale", v);
        return std::make_pair(u, v);
    };
    const auto angleOf = [](const IAssetInstance& instance) {
        double angle = -1.0;
        instance.GetDoubleValue(L"texture_WAngle", angle);
        return angle;
    };
    MaterialTweak tweak;
    tweak.scale = 3.0f;
    tweak.rotation = 45.0f;
    m_manager->SetAssetInstanceTextureScale(brick.get(), tweak);
    m_manager->SetAssetInstanceTextureRotate(brick.get(), tweak);
    EXPECT_EQ(scaleOf(*texture), std::make_pair(3.0, 3.0));
    EXPECT_EQ(angleOf(*texture), 45.0);
    // Neutral again: the library's own values (scale 2, angle 0), as an untweaked instance has them.
    m_manager->SetAssetInstanceTextureScale(brick.get(), MaterialTweak{});
    m_manager->SetAssetInstanceTextureRotate(brick.get(), MaterialTweak{});
    EXPECT_EQ(scaleOf(*texture), std::make_pair(2.0, 2.0));
    EXPECT_EQ(angleOf(*texture), 0.0);

    // A texture given directly carries the values itself.
    InstancePtr loose(m_assets->CreateAssetInstance(L"texture"));
    m_manager->SetAssetInstanceTextureScale(loose.get(), tweak);
    m_manager->SetAssetInstanceTextureRotate(loose.get(), tweak);
    EXPECT_EQ(scaleOf(*loose), std::make_pair(3.0, 3.0));
    EXPECT_EQ(angleOf(*loose), 45.0);
    float read = 0.0f;
    EXPECT_TRUE(m_manager->GetAssetInstanceTextureScale(loose.get(), read));
    EXPECT_EQ(read, 3.0f);
    m_manager->SetAssetInstanceTextureScale(loose.get(), MaterialTweak{});
    m_manager->SetAssetInstanceTextureRotate(loose.get(), MaterialTweak{});
    EXPECT_EQ(scaleOf(*loose), std::make_pair(1.0, 1.0)) << "no preset to go back to: the neutral value";
    EXPECT_EQ(angleOf(*loose), 0.0);
}

TEST_F(AmbrelCompleted, AnInstanceIsNeverCachedAsTheCallerHadIt)
{
    // A copy of "red" from a library this manager cannot reach, edited by its owner.
    auto elsewhere = CreateAssetLibraryManager();
    IAssetLibrary* other = elsewhere->OpenAssetLibrary((librariesFolder() / "assetlibrary_base.tvrnlib").wstring());
    ASSERT_NE(other, nullptr);
    InstancePtr edited(other->CreateAssetInstance("red"));
    ASSERT_TRUE(edited->SetDoubleValue(L"surface_roughness", 0.99));
    const std::size_t cached = m_manager->GetCachedInstanceCount();
    MaterialTweak scaled;
    scaled.scale = 4.0f;
    // Its library is open here under the same identifier: the answer is made from the definition.
    InstancePtr fresh(m_manager->GetAssetInstance(edited.get(), scaled));
    ASSERT_NE(fresh, nullptr);
    double roughness = 0.0;
    ASSERT_TRUE(fresh->GetDoubleValue(L"surface_roughness", roughness));
    EXPECT_EQ(roughness, 0.3);
    EXPECT_NE(fresh.get(), edited.get());

    // Without its library there is nothing to make it from.
    m_manager->ReleaseLib();
    ASSERT_FALSE(m_manager->LibsLoaded());
    EXPECT_EQ(InstancePtr(m_manager->GetAssetInstance(edited.get(), scaled)), nullptr);
    EXPECT_EQ(m_manager->GetCachedInstanceCount(), 0u);
    (void)cached;
    edited.reset();
    EXPECT_TRUE(elsewhere->ReleaseAssetLibrary(other));
}

TEST_F(AmbrelCompleted, RefreshingALibraryDropsItsCachedInstances)
{
    InstancePtr red(m_manager->GetAssetInstance("red", s_visualId, {}));
    InstancePtr steel(m_manager->GetAssetInstance("steel", s_physicalId, {}));
    ASSERT_TRUE(red && steel);
    EXPECT_EQ(m_manager->GetCachedInstanceCount(), 2u);
    m_manager->RefreshLibraryByIdentifier(s_visualId);
    EXPECT_EQ(m_manager->GetCachedInstanceCount(), 1u) << "the other library's instance stays";
    InstancePtr again(m_manager->GetAssetInstance("red", s_visualId, {}));
    ASSERT_NE(again, nullptr);
    EXPECT_NE(again.get(), red.get()) << "read again from the refreshed library";
    EXPECT_EQ(red->GetReferenceCount(), 1) << "only the caller holds the dropped one";
}

} // namespace
} // namespace AmbrelTest
