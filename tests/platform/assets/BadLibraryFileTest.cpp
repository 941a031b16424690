#include "SampleLibrary.h"

#include "support/TestSupport.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <functional>

namespace {

using namespace telvarin::platform::assets;
using AssetTest::InstancePtr;

class BadLibraryFileTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        AssetTest::writeSampleLibrary(*m_manager, m_good);
        m_bytes = KxTest::readBytes(m_good);
    }

    // Opening must fail with `expected` and leave the manager holding nothing.
    void expectRefused(const std::filesystem::path& file, EAssetError expected)
    {
        AssetError error;
        IAssetLibrary* library = m_manager->OpenAssetLibrary(file.wstring(), &error);
        EXPECT_EQ(library, nullptr);
        EXPECT_EQ(error.code, expected) << error.message;
        EXPECT_FALSE(error.message.empty());
        EXPECT_TRUE(m_manager->GetAssetLibraries().empty());
        if (library != nullptr) {
            m_manager->ReleaseAssetLibrary(library);
        }
    }

    // A copy of the good library changed by SQL run on it.
    std::filesystem::path edited(const char* sql)
    {
        const auto file = m_dir / "edited.tvrnlib";
        std::filesystem::copy_file(m_good, file, std::filesystem::copy_options::overwrite_existing);
        sqlite3* db = nullptr;
        EXPECT_EQ(sqlite3_open(file.c_str(), &db), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(db, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(db);
        sqlite3_close(db);
        return file;
    }

    KxTest::TempDir m_dir;
    std::filesystem::path m_good = m_dir / "good.tvrnlib";
    std::vector<std::uint8_t> m_bytes;
    std::unique_ptr<IAssetLibraryManager> m_manager = CreateAssetLibraryManager();
};

TEST_F(BadLibraryFileTest, FilesThatAreNotLibrariesAreRefused)
{
    struct Case {
        const char* name;
        std::vector<std::uint8_t> bytes;
        EAssetError expected;
    };
    std::vector<std::uint8_t> text(4096, 'x');
    std::vector<std::uint8_t> headerOnly(m_bytes.begin(), m_bytes.begin() + 16);
    const Case cases[] = {
        {"empty file", {}, EAssetError::eNotALibrary},
        {"text", text, EAssetError::eNotALibrary},
        {"SQLite magic only", headerOnly, EAssetError::eNotALibrary},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        KxTest::writeBytes(m_dir / "bad.tvrnlib", c.bytes);
        expectRefused(m_dir / "bad.tvrnlib", c.expected);
    }
    expectRefused(m_dir / "missing.tvrnlib", EAssetError::eNotFound);

    const auto plain = m_dir / "plain.sqlite";
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(plain.c_str(), &db), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(db, "CREATE TABLE t (x)", nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(db);
    expectRefused(plain, EAssetError::eNotALibrary);
}

TEST_F(BadLibraryFileTest, TruncatedFilesAreRefusedAtEveryLength)
{
    ASSERT_GT(m_bytes.size(), 8192u);
    const std::size_t page = 4096;
    const std::size_t lengths[] = {1, 99, 100, 101, page - 1, page, page + 1, m_bytes.size() / 2, m_bytes.size() - page,
        m_bytes.size() - 1};
    for (std::size_t length : lengths) {
        SCOPED_TRACE(length);
        KxTest::writeBytes(m_dir / "cut.tvrnlib", std::vector<std::uint8_t>(m_bytes.begin(), m_bytes.begin() + length));
        AssetError error;
        IAssetLibrary* library = m_manager->OpenAssetLibrary((m_dir / "cut.tvrnlib").wstring(), &error);
        EXPECT_EQ(library, nullptr);
        EXPECT_TRUE(error.code == EAssetError::eCorrupt || error.code == EAssetError::eNotALibrary) << error.message;
    }
}

TEST_F(BadLibraryFileTest, DamagedTablesAreRefused)
{
    struct Case {
        const char* name;
        const char* sql;
        EAssetError expected;
    };
    const Case cases[] = {
        {"newer format", "PRAGMA user_version = 2", EAssetError::eUnsupportedVersion},
        {"no format version", "PRAGMA user_version = 0", EAssetError::eUnsupportedVersion},
        {"other application", "PRAGMA application_id = 7", EAssetError::eNotALibrary},
        {"missing table", "DROP TABLE connection", EAssetError::eCorrupt},
        {"missing column", "ALTER TABLE property DROP COLUMN unit", EAssetError::eCorrupt},
        {"no header row", "DELETE FROM library", EAssetError::eCorrupt},
        {"no identifier", "UPDATE library SET id = ''", EAssetError::eCorrupt},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        expectRefused(edited(c.sql), c.expected);
    }
}

// Values are read when an instance is made, so damage there shows as a failed instance.
TEST_F(BadLibraryFileTest, DamagedValuesFailTheInstanceNotTheProcess)
{
    struct Case {
        const char* name;
        const char* sql;
    };
    const Case cases[] = {
        {"text in a double", "UPDATE property SET value = 'heavy' WHERE name = 'structural_Density'"},
        {"short colour", "UPDATE property SET value = x'0000' WHERE name = 'opaque_albedo'"},
        {"ragged array", "UPDATE property SET value = x'000000000000000000' WHERE name = 'structural_Curve'"},
        {"boolean 2", "UPDATE property SET value = 2 WHERE name = 'opaque_emission'"},
        {"integer beyond 32 bits", "UPDATE property SET value = 4294967296 WHERE name = 'revision_count'"},
        {"unknown type", "UPDATE property SET type = 3 WHERE name = 'revision_count'"},
        {"bad choice list", "UPDATE property SET choices = 'isotropic' WHERE name = 'structural_Behavior'"},
        {"dangling connection", "UPDATE connection SET target_key = 999 WHERE property = 'Structural'"},
        {"connection cycle",
            "UPDATE connection SET target_key = (SELECT asset_key FROM asset WHERE asset_id = 'steel' AND variant = '') "
            "WHERE property = 'opaque_albedo'"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto file = edited(c.sql);
        AssetError error;
        IAssetLibrary* library = m_manager->OpenAssetLibrary(file.wstring(), &error);
        ASSERT_NE(library, nullptr) << error.message;
        EXPECT_EQ(library->CreateAssetInstance("steel"), nullptr);
        EXPECT_NE(library->GetLastError().code, EAssetError::eNone);
        InstancePtr intact(library->CreateAssetInstance("glass"));
        EXPECT_NE(intact, nullptr) << "other presets stay readable";
        EXPECT_TRUE(m_manager->ReleaseAssetLibrary(library));
    }
}

} // namespace
