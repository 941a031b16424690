#include "LibrarySchema.h"

#include <core/Guid.h>
#include <core/Strings.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace telvarin::platform::assets::schema {

namespace {

// Version 1 of the layout. A change of any table is a new version: readers refuse versions they
// do not know (docs/formats.md).
constexpr const char* s_tables = R"sql(
CREATE TABLE library (
    singleton INTEGER PRIMARY KEY CHECK (singleton = 1),
    id TEXT NOT NULL,
    name TEXT NOT NULL,
    kind INTEGER NOT NULL,
    read_only INTEGER NOT NULL
);
CREATE TABLE asset (
    asset_key INTEGER PRIMARY KEY,
    asset_id TEXT NOT NULL,
    schema TEXT NOT NULL,
    preset INTEGER NOT NULL,
    owner_key INTEGER,
    instance_key TEXT,
    origin_library TEXT,
    variant TEXT NOT NULL,
    version_major INTEGER NOT NULL,
    version_minor INTEGER NOT NULL,
    revision TEXT NOT NULL,
    version_guid TEXT NOT NULL,
    category TEXT NOT NULL,
    subcategory TEXT NOT NULL
);
CREATE UNIQUE INDEX asset_preset_identity ON asset (asset_id, variant) WHERE preset = 1 AND instance_key IS NULL;
CREATE INDEX asset_listing ON asset (preset, category, subcategory, asset_id, variant);
CREATE INDEX asset_owner ON asset (owner_key) WHERE owner_key IS NOT NULL;
CREATE TABLE asset_name (
    asset_key INTEGER NOT NULL,
    language TEXT NOT NULL,
    name TEXT NOT NULL,
    PRIMARY KEY (asset_key, language)
) WITHOUT ROWID;
CREATE TABLE property (
    asset_key INTEGER NOT NULL,
    name TEXT NOT NULL,
    type INTEGER NOT NULL,
    value,
    minimum REAL,
    maximum REAL,
    increment REAL NOT NULL,
    logarithmic INTEGER NOT NULL,
    unit TEXT NOT NULL,
    choices TEXT NOT NULL,
    PRIMARY KEY (asset_key, name)
) WITHOUT ROWID;
CREATE TABLE connection (
    asset_key INTEGER NOT NULL,
    property TEXT NOT NULL,
    position INTEGER NOT NULL,
    target_key INTEGER NOT NULL,
    PRIMARY KEY (asset_key, property, position)
) WITHOUT ROWID;
CREATE TABLE localized_text (
    key TEXT NOT NULL,
    language TEXT NOT NULL,
    text TEXT NOT NULL,
    PRIMARY KEY (key, language)
) WITHOUT ROWID;
CREATE TABLE resource (
    name TEXT PRIMARY KEY,
    data BLOB NOT NULL
);
)sql";

// (table, column) of every column of the layout, taken once from the layout itself, so that the
// check of an opened library cannot drift from what create() makes.
const std::vector<std::pair<std::string, std::string>>& layoutColumns()
{
    static const std::vector<std::pair<std::string, std::string>> s_columns = [] {
        sqlite::Database db = sqlite::Database::openMemory();
        db.execute(s_tables);
        auto columns = db.prepare("SELECT m.name, c.name FROM sqlite_schema AS m, pragma_table_info(m.name) AS c "
                                  "WHERE m.type = 'table'");
        std::vector<std::pair<std::string, std::string>> found;
        while (columns.step()) {
            found.emplace_back(columns.columnText(0), columns.columnText(1));
        }
        return found;
    }();
    return s_columns;
}

} // namespace

void create(sqlite::Database& db, const LibraryHeader& header)
{
    db.execute("BEGIN");
    try {
        db.execute(("PRAGMA application_id = " + std::to_string(s_applicationId)).c_str());
        db.execute(("PRAGMA user_version = " + std::to_string(s_formatVersion)).c_str());
        db.execute(s_tables);
        auto insert = db.prepare("INSERT INTO library (singleton, id, name, kind, read_only) VALUES (1, ?1, ?2, ?3, ?4)");
        insert.bind(1, header.id).bind(2, header.name).bind(3, std::int64_t{header.kind}).bind(4, std::int64_t{header.readOnly});
        insert.run();
        db.execute("COMMIT");
    } catch (...) {
        db.execute("ROLLBACK");
        throw;
    }
}

LibraryHeader validate(sqlite::Database& db, std::uint64_t fileSize)
{
    if (fileSize == 0) {
        sqlite::fail(EAssetError::eNotALibrary, "the file is empty");
    }
    // Reading the first pragma makes SQLite read the file header: "not a database" and a header
    // that promises more pages than the file has both show here.
    if (db.pragmaInteger("application_id") != s_applicationId) {
        sqlite::fail(EAssetError::eNotALibrary, "a SQLite database, but not a material library");
    }
    const std::int64_t version = db.pragmaInteger("user_version");
    if (version != s_formatVersion) {
        sqlite::fail(EAssetError::eUnsupportedVersion,
            "library format version " + std::to_string(version) + "; this program reads version " +
                std::to_string(s_formatVersion));
    }
    const auto pageSize = static_cast<std::uint64_t>(db.pragmaInteger("page_size"));
    const auto pageCount = static_cast<std::uint64_t>(db.pragmaInteger("page_count"));
    if (pageSize * pageCount != fileSize) {
        sqlite::fail(EAssetError::eCorrupt,
            "the file has " + std::to_string(fileSize) + " bytes where its header promises " +
                std::to_string(pageSize * pageCount) + " (truncated or damaged)");
    }
    // Every column of the layout is there, so a library with a damaged table is refused now rather
    // than at its first search. Looked up in the schema SQLite has read already: compiling a
    // statement per table instead would cost more than the rest of the opening.
    for (const auto& [table, column] : layoutColumns()) {
        if (db.hasColumn(table.c_str(), column.c_str())) {
            continue;
        }
        sqlite::fail(EAssetError::eCorrupt, db.hasTable(table.c_str())
                ? "the library's table \"" + table + "\" has no column \"" + column + "\""
                : "the library has no table \"" + table + "\"");
    }
    auto read = db.prepare("SELECT id, name, kind, read_only FROM library");
    if (!read.step()) {
        sqlite::fail(EAssetError::eCorrupt, "the library has no header row");
    }
    LibraryHeader header;
    header.id = read.columnWide(0);
    header.name = read.columnWide(1);
    header.kind = static_cast<int>(read.columnInt64(2));
    header.readOnly = read.columnInt64(3) != 0;
    if (header.id.empty()) {
        sqlite::fail(EAssetError::eCorrupt, "the library has no identifier");
    }
    return header;
}

WideString newGuid()
{
    return core::toWide(core::newGuid());
}

} // namespace telvarin::platform::assets::schema
