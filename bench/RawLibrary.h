#pragma once

// What raw SQLite does to open a material library: open the file and read the header row. The
// baseline of the benchmarks that open libraries through the asset API.

#include <sqlite3.h>

#include <string>

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

} // namespace KxBench
