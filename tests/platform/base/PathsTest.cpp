#include <base/Exception.h>
#include <base/Paths.h>

#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <vector>

namespace {

using KxTest::ScopedEnvironment;

TEST(Paths, EnvironmentIsReadOnEveryCall)
{
    KxTest::TempDir first;
    KxTest::TempDir second;
    {
        ScopedEnvironment user("KX_USER_DIR", first.path());
        ScopedEnvironment content("KX_CONTENT_DIR", "/srv/kx-content");
        ScopedEnvironment edition("KX_EDITION", "server");
        EXPECT_EQ(Kx::Paths::userDirectory(), first.path());
        EXPECT_EQ(Kx::Paths::optionsDirectory(), first.path() / "options");
        EXPECT_EQ(Kx::Paths::contentRoot(), "/srv/kx-content");
        EXPECT_EQ(Kx::Paths::edition(), "server");

        ScopedEnvironment other("KX_USER_DIR", second.path());
        EXPECT_EQ(Kx::Paths::tempDirectory(), second.path() / "temp");
        EXPECT_TRUE(std::filesystem::is_directory(second.path() / "temp"));
    }
    ScopedEnvironment user("KX_USER_DIR", nullptr);
    ScopedEnvironment home("HOME", "/home/someone");
    ScopedEnvironment content("KX_CONTENT_DIR", "");
    ScopedEnvironment edition("KX_EDITION", nullptr);
    EXPECT_EQ(Kx::Paths::userDirectory(), "/home/someone/.kx");
    EXPECT_EQ(Kx::Paths::edition(), "desktop");
    // Not installed: the build tree's content folder.
    EXPECT_EQ(Kx::Paths::contentRoot().filename(), "content");
    EXPECT_NE(Kx::Paths::contentRoot(), "");
}

TEST(TempFile, UniquePathsRemovedWithTheirOwner)
{
    std::set<std::filesystem::path> seen;
    std::filesystem::path kept;
    {
        Kx::TempFile plain;
        Kx::TempFile xml("xml");
        Kx::TempFile dotted(".kxd");
        EXPECT_EQ(plain.path().extension(), "");
        EXPECT_EQ(xml.path().extension(), ".xml");
        EXPECT_EQ(dotted.path().extension(), ".kxd");
        EXPECT_EQ(xml.path().parent_path(), Kx::Paths::tempDirectory());
        for (const auto* file : {&plain, &xml, &dotted}) {
            // Created at once, empty, so no other process can be handed the same name.
            EXPECT_TRUE(std::filesystem::is_regular_file(file->path()));
            EXPECT_EQ(std::filesystem::file_size(file->path()), 0U);
            EXPECT_TRUE(seen.insert(file->path()).second);
            std::ofstream(file->path()) << "data";
        }
        Kx::TempFile released("bin");
        std::ofstream(released.path()) << "kept";
        kept = released.release();

        const auto dottedPath = dotted.path();
        {
            Kx::TempFile moved(std::move(dotted));
            EXPECT_EQ(moved.path(), dottedPath);
        }
        EXPECT_FALSE(std::filesystem::exists(dottedPath)) << "the new owner removes the file";
        EXPECT_TRUE(std::filesystem::exists(xml.path()));
    }
    for (const auto& path : seen) {
        EXPECT_FALSE(std::filesystem::exists(path)) << path;
    }
    EXPECT_EQ(KxTest::readText(kept), "kept");
    std::filesystem::remove(kept);
}

TEST(TempFile, BesideATargetKeepsItsPermissionsAndNeverReusesAName)
{
    KxTest::TempDir folder;
    const auto target = folder / "drawing.kxd";
    std::ofstream(target) << "old";
    std::filesystem::permissions(target, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write
            | std::filesystem::perms::group_read);
    std::set<std::filesystem::path> names;
    std::vector<Kx::TempFile> held;
    for (int index = 0; index < 200; ++index) {
        held.push_back(Kx::TempFile::beside(target));
        EXPECT_EQ(held.back().path().parent_path(), folder.path());
        EXPECT_TRUE(names.insert(held.back().path()).second) << held.back().path();
    }
    EXPECT_EQ(std::filesystem::status(held.front().path()).permissions(), std::filesystem::status(target).permissions());
    EXPECT_EQ(KxTest::readText(target), "old");
}

TEST(TempFile, AFolderThatCannotHoldOneIsAClearError)
{
    KxTest::TempDir folder;
    try {
        (void)Kx::TempFile::beside(folder / "missing" / "drawing.kxd");
        ADD_FAILURE() << "no file can be made in a missing folder";
    } catch (const Kx::Exception& error) {
        // The folder the user can act on, not the random name that was tried.
        EXPECT_EQ(error.detail(), "cannot create a file in " + (folder / "missing").string() + ": No such file or directory");
    }
}

} // namespace
