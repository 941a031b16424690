#pragma once

// What raw SQLite does to open a material library, as the baselines of the benchmarks that open
// libraries through the asset API: the least (open the file and read the header row), and what a
// cold load of the library manager must read, done by hand.

#include <sqlite3.h>

#include <array>
#include <string>
#include <utility>

namespace KxBench {

// True when the header row was read.
inline bool openAndReadHeader(const std::string& file)
{
    sqlite3* db = nullptr;
    sqlite3_open_v2(file.c_str(), &db, SQLITE_OPEN_READWRITE, nullptr);
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(db, "SELECT id, name, kind, read_only FROM library", -1, &statement, nullptr);
    const bool read = sqlite3_step(statement) == SQLITE_ROW && sqlite3_column_text(statement, 0) != nullptr;
    sqlite3_finalize(statement);
    sqlite3_close(db);
    return read;
}

// Steps a statement through all its rows, reading every column as text; false when it does not compile.
inline bool readAllRows(sqlite3* db, const char* sql, int& rows)
{
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(db, sql, -1, &statement, nullptr) != SQLITE_OK) {
        return false;
    }
    while (sqlite3_step(statement) == SQLITE_ROW) {
        for (int column = 0; column < sqlite3_column_count(statement); ++column) {
            (void)sqlite3_column_text(statement, column);
        }
        ++rows;
    }
    sqlite3_finalize(statement);
    return true;
}

// The columns of the library layout (docs/formats.md, "Material library files").
inline constexpr std::array<std::pair<const char*, const char*>, 41> s_layoutColumns{{
    {"library", "singleton"}, {"library", "id"}, {"library", "name"}, {"library", "kind"}, {"library", "read_only"},
    {"asset", "asset_key"}, {"asset", "asset_id"}, {"asset", "schema"}, {"asset", "preset"}, {"asset", "owner_key"},
    {"asset", "instance_key"}, {"asset", "origin_library"}, {"asset", "variant"}, {"asset", "version_major"},
    {"asset", "version_minor"}, {"asset", "revision"}, {"asset", "version_guid"}, {"asset", "category"},
    {"asset", "subcategory"}, {"asset_name", "asset_key"}, {"asset_name", "language"}, {"asset_name", "name"},
    {"property", "asset_key"}, {"property", "name"}, {"property", "type"}, {"property", "value"},
    {"property", "minimum"}, {"property", "maximum"}, {"property", "increment"}, {"property", "logarithmic"},
    {"property", "unit"}, {"property", "choices"}, {"connection", "asset_key"}, {"connection", "property"},
    {"connection", "position"}, {"connection", "target_key"}, {"localized_text", "key"},
    {"localized_text", "language"}, {"localized_text", "text"}, {"resource", "name"}, {"resource", "data"},
}};

// What a cold load must read of a library file before it may use it, by hand: the connection set
// up as the asset API sets up connections to files from anywhere, the four numbers of the file
// header, every column of the layout, the header row; with `readPresets`, the listing row of every
// preset as well (a first load reads the base appearance library's catalogue). True when all of it
// was there.
inline bool openAndReadLikeALoad(const std::string& file, bool readPresets)
{
    sqlite3* db = nullptr;
    sqlite3_open_v2(file.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    sqlite3_db_config(db, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(db, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_exec(db, "PRAGMA cell_size_check = ON", nullptr, nullptr, nullptr);
    int rows = 0;
    bool read = true;
    for (const char* pragma : {"PRAGMA application_id", "PRAGMA user_version", "PRAGMA page_size", "PRAGMA page_count"}) {
        read = read && readAllRows(db, pragma, rows);
    }
    for (const auto& [table, column] : s_layoutColumns) {
        read = read && sqlite3_table_column_metadata(db, "main", table, column, nullptr, nullptr, nullptr, nullptr,
                           nullptr) == SQLITE_OK;
    }
    read = read && readAllRows(db, "SELECT id, name, kind, read_only FROM library", rows) && rows == 5;
    if (readPresets) {
        read = read && readAllRows(db,
            "SELECT asset_key, asset_id, schema, origin_library, variant, version_major, version_minor, revision, "
            "version_guid, category, subcategory FROM asset WHERE preset = 1 "
            "ORDER BY category, subcategory, asset_id, variant", rows) && rows > 5;
    }
    sqlite3_close(db);
    return read;
}

} // namespace KxBench
