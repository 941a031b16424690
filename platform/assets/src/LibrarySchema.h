#pragma once

#include "Sqlite.h"

#include <cstdint>
#include <filesystem>

// The layout of a .tvrnlib database (docs/formats.md, "Material library files"), shared by
// library files and the serialized assets of documents.
namespace telvarin::platform::assets::schema {

// "TVNL": tells a library from any other SQLite database.
inline constexpr std::int64_t s_applicationId = 0x54564E4C;
inline constexpr std::int64_t s_formatVersion = 1;

struct LibraryHeader {
    WideString id;
    WideString name;
    int kind = 0;
    bool readOnly = false;
};

// Creates the tables of an empty library in `db` with its one header row.
void create(sqlite::Database& db, const LibraryHeader& header);

// Checks that `db` is a library this version reads, and answers its header. `fileSize` is the size
// of the file the database was opened from (or of its bytes), so that a truncated file is refused
// before any of its pages is read. Throws sqlite::Failure (eNotALibrary, eUnsupportedVersion,
// eCorrupt).
[[nodiscard]] LibraryHeader validate(sqlite::Database& db, std::uint64_t fileSize);

// A new random GUID, upper case without braces.
[[nodiscard]] WideString newGuid();

} // namespace telvarin::platform::assets::schema
