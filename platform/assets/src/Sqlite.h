#pragma once

#include "assets/AssetTypes.h"

#include <cstdint>
#include <exception>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace telvarin::platform::assets {

// Hands `what` to a caller that asked for errors (`error` not null).
inline void report(AssetError* error, const AssetError& what)
{
    if (error != nullptr) {
        *error = what;
    }
}

} // namespace telvarin::platform::assets

// A thin RAII layer over the SQLite C API. Inside the asset library every SQLite failure becomes a
// sqlite::Failure carrying an AssetError; the public operations catch it at their boundary and
// answer the error to the caller. SQLite result codes are translated in translate() and nowhere else.
namespace telvarin::platform::assets::sqlite {

class Failure : public std::exception {
public:
    explicit Failure(AssetError error);
    [[nodiscard]] const AssetError& error() const noexcept { return m_error; }
    [[nodiscard]] const char* what() const noexcept override { return m_error.message.c_str(); }

private:
    AssetError m_error;
};

[[noreturn]] void fail(EAssetError code, std::string message);

// The one translation of a SQLite result code (with the connection's message when there is one).
[[nodiscard]] AssetError translate(int resultCode, sqlite3* db, std::string_view context);

class Statement {
public:
    Statement() = default;
    Statement(sqlite3* db, sqlite3_stmt* statement);
    ~Statement();
    Statement(Statement&& other) noexcept;
    Statement& operator=(Statement&& other) noexcept;
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    // Parameters are numbered from 1, as SQLite numbers them.
    Statement& bind(int index, std::int64_t value);
    Statement& bind(int index, double value);
    Statement& bind(int index, std::string_view utf8);
    Statement& bind(int index, const WideString& text);
    Statement& bindBlob(int index, std::span<const std::uint8_t> bytes);
    Statement& bindNull(int index);

    // True when a row is ready, false when the statement is done.
    bool step();
    // Steps to completion, expecting no row.
    void run();
    // Ready for new bindings.
    void reset();

    // Columns are numbered from 0. A text or blob stays valid until the next step or reset.
    [[nodiscard]] int columnType(int column) const;
    [[nodiscard]] bool isNull(int column) const;
    [[nodiscard]] std::int64_t columnInt64(int column) const;
    [[nodiscard]] double columnDouble(int column) const;
    [[nodiscard]] std::string_view columnText(int column) const;
    [[nodiscard]] WideString columnWide(int column) const;
    [[nodiscard]] std::span<const std::uint8_t> columnBlob(int column) const;

private:
    void check(int resultCode, const char* context) const;

    sqlite3* m_db = nullptr;
    sqlite3_stmt* m_statement = nullptr;
};

class Database {
public:
    Database() = default;
    ~Database();
    Database(Database&& other) noexcept;
    Database& operator=(Database&& other) noexcept;
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    // An existing file; never created. Opened for writing when the file allows it.
    [[nodiscard]] static Database openFile(const std::filesystem::path& file);
    [[nodiscard]] static Database openMemory();
    // A private in-memory copy of serialized bytes.
    [[nodiscard]] static Database fromBytes(std::span<const std::uint8_t> bytes);

    [[nodiscard]] bool isOpen() const { return m_db != nullptr; }
    [[nodiscard]] sqlite3* handle() const { return m_db; }
    [[nodiscard]] bool isReadOnly() const;
    [[nodiscard]] bool inTransaction() const;

    void execute(const char* sql);
    // Runs `change` inside the savepoint `name`: what it wrote is rolled back when it throws, and
    // the enclosing transaction keeps everything before it.
    template <class Change>
    void inSavepoint(const std::string& name, Change&& change)
    {
        execute(("SAVEPOINT " + name).c_str());
        try {
            change();
        } catch (...) {
            execute(("ROLLBACK TO " + name).c_str());
            execute(("RELEASE " + name).c_str());
            throw;
        }
        execute(("RELEASE " + name).c_str());
    }
    [[nodiscard]] Statement prepare(std::string_view sql) const;
    // From the schema SQLite holds: whether the table exists, and with a column, whether it has it.
    [[nodiscard]] bool hasTable(const char* table) const;
    [[nodiscard]] bool hasColumn(const char* table, const char* column) const;
    [[nodiscard]] std::int64_t pragmaInteger(const char* pragma) const;
    [[nodiscard]] std::int64_t lastInsertRowId() const;
    [[nodiscard]] std::vector<std::uint8_t> serialize() const;
    // A compact copy of the database in `file`, which must not exist.
    void vacuumInto(const std::filesystem::path& file);

private:
    explicit Database(sqlite3* db);
    void configure();

    sqlite3* m_db = nullptr;
};

} // namespace telvarin::platform::assets::sqlite
