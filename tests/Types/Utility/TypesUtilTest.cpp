#include <Types/Utility/TypesUtil.h>

#include <base/Paths.h>

#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace Kx::Types {
namespace {

namespace fs = std::filesystem;

// An installed content root and a user directory of the test's own. The history file is the one
// this build ships, so the current set is the shipped one whichever test reads it first.
class SharedInstall : public ::testing::Test {
protected:
    SharedInstall()
    {
        fs::create_directories(installed());
        fs::copy_file(fs::path(KX_TEST_SHIPPED_HISTORY), m_content.path() / "MaterialLibraryHistory.xml");
    }

    [[nodiscard]] fs::path installed() const { return m_content.path() / "libraries"; }
    [[nodiscard]] static fs::path reduced() { return GetReducedLibraryPath(); }

    static void write(const fs::path& file, const std::string& text)
    {
        fs::create_directories(file.parent_path());
        KxTest::writeBytes(file, std::vector<std::uint8_t>(text.begin(), text.end()));
    }

    KxTest::TempDir m_content;
    KxTest::TempDir m_user;
    KxTest::ScopedEnvironment m_contentDirectory{"KX_CONTENT_DIR", m_content.path()};
    KxTest::ScopedEnvironment m_userDirectory{"KX_USER_DIR", m_user.path()};
};

TEST_F(SharedInstall, FoldersAreTheUsersAndNamedByTheInstalledSet)
{
    const std::wstring current = GetCurrentMaterialLibraryGUID();
    ASSERT_FALSE(current.empty());
    EXPECT_EQ(reduced(), m_user.path() / "libraries" / current);
    EXPECT_NE(GetReducedLibraryPath().back(), L'/');
    EXPECT_EQ(fs::path(GetTextureLibraryPath()), m_user.path() / "textures");
    EXPECT_EQ(fs::path(GetTempDirectory()), m_user.path() / "temp");
    EXPECT_EQ(GetLocalMaterialLibraryID(), L"LOCAL");
    EXPECT_FALSE(fs::exists(reduced())) << "asking for the path makes nothing";
}

TEST_F(SharedInstall, TheReducedFolderFollowsTheInstalledSetAndKeepsTheUsersFiles)
{
    const struct {
        const char* name;
        std::vector<std::pair<const char*, const char*>> installed; // file, text
        std::vector<std::pair<const char*, const char*>> before;    // in the reduced folder
        std::vector<std::pair<const char*, const char*>> after;     // expected there; null text: absent
    } cases[] = {
        {"a fresh folder gets every installed file",
            {{"assetlibrary_base.tvrnlib", "base"}, {"Additive.tvrnlib", "additive"}}, {},
            {{"assetlibrary_base.tvrnlib", "base"}, {"Additive.tvrnlib", "additive"}, {"PhysicalMaterial.tvrnlib", nullptr}}},
        {"a changed installed file replaces the copy, an equal one stays",
            {{"assetlibrary_base.tvrnlib", "new base"}, {"PhysicalMaterial.tvrnlib", "physical"}},
            {{"assetlibrary_base.tvrnlib", "old base"}, {"PhysicalMaterial.tvrnlib", "physical"}},
            {{"assetlibrary_base.tvrnlib", "new base"}, {"PhysicalMaterial.tvrnlib", "physical"}}},
        {"a standard file no longer installed goes",
            {{"assetlibrary_base.tvrnlib", "base"}}, {{"Nonlinear Material Library.tvrnlib", "stale"}},
            {{"Nonlinear Material Library.tvrnlib", nullptr}}},
        {"the user's files are never touched",
            {{"assetlibrary_base.tvrnlib", "base"}, {"netfs.mounts", "mounts"}},
            {{"Favorites.tvrnlib", "mine"}, {"notes.txt", "mine too"}},
            {{"Favorites.tvrnlib", "mine"}, {"notes.txt", "mine too"}, {"netfs.mounts", nullptr}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        fs::remove_all(installed());
        fs::remove_all(m_user.path() / "libraries");
        for (const auto& [file, text] : c.installed) {
            write(installed() / file, text);
        }
        for (const auto& [file, text] : c.before) {
            write(reduced() / file, text);
        }
        std::string problem;
        EXPECT_TRUE(SetUpSharedInstall(&problem)) << problem;
        for (const auto& [file, text] : c.after) {
            SCOPED_TRACE(file);
            if (text == nullptr) {
                EXPECT_FALSE(fs::exists(reduced() / file));
            } else {
                EXPECT_EQ(KxTest::readText(reduced() / file), text);
            }
        }
    }
}

// Loads after the first know an unchanged copy without reading it: what they go by must still
// notice a copy changed in place to the same size, and an installed file replaced by another.
TEST_F(SharedInstall, LaterLoadsNoticeEveryChangeOfEitherFile)
{
    write(installed() / "assetlibrary_base.tvrnlib", "base");
    ASSERT_TRUE(SetUpSharedInstall());
    ASSERT_EQ(KxTest::readText(reduced() / "assetlibrary_base.tvrnlib"), "base");

    write(reduced() / "assetlibrary_base.tvrnlib", "BASE");
    ASSERT_TRUE(SetUpSharedInstall());
    EXPECT_EQ(KxTest::readText(reduced() / "assetlibrary_base.tvrnlib"), "base");

    write(installed() / "assetlibrary_base.tvrnlib", "next");
    ASSERT_TRUE(SetUpSharedInstall());
    EXPECT_EQ(KxTest::readText(reduced() / "assetlibrary_base.tvrnlib"), "next");
    ASSERT_TRUE(SetUpSharedInstall());
    EXPECT_EQ(KxTest::readText(reduced() / "assetlibrary_base.tvrnlib"), "next");
}

TEST_F(SharedInstall, FavoritesComeAlongFromTheNewestEarlierSetThatHasThem)
{
    const std::vector<std::wstring> legacy = GetLegacyMaterialLibraryGUID();
    ASSERT_FALSE(legacy.empty());
    const fs::path sets = m_user.path() / "libraries";
    write(sets / legacy.front() / "Favorites.tvrnlib", "oldest");
    if (legacy.size() > 1) {
        write(sets / legacy.back() / "Favorites.tvrnlib", "newest");
    }
    const std::string expected = legacy.size() > 1 ? "newest" : "oldest";
    ASSERT_TRUE(SetUpSharedInstall());
    EXPECT_EQ(KxTest::readText(reduced() / "Favorites.tvrnlib"), expected);

    // Once the current set has favourites of its own, they are the user's: never replaced.
    write(reduced() / "Favorites.tvrnlib", "current");
    ASSERT_TRUE(SetUpSharedInstall());
    EXPECT_EQ(KxTest::readText(reduced() / "Favorites.tvrnlib"), "current");
}

TEST_F(SharedInstall, AFolderThatCannotBeMadeIsReported)
{
    write(m_user.path() / "libraries", "a file where the folder belongs");
    std::string problem;
    EXPECT_FALSE(SetUpSharedInstall(&problem));
    EXPECT_NE(problem.find("libraries"), std::string::npos) << problem;
}

} // namespace
} // namespace Kx::Types
