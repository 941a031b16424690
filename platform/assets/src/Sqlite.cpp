#include "Sqlite.h"

#include <sqlite3.h>

#include <cstring>
#include <limits>
#include <utility>

namespace telvarin::platform::assets::sqlite {

Failure::Failure(AssetError error)
    : m_error(std::move(error))
{
}

void fail(EAssetError code, std::string message)
{
    throw Failure(AssetError{code, std::move(message)});
}

AssetError translate(int resultCode, sqlite3* db, std::string_view context)
{
    EAssetError code = EAssetError::eIOError;
    switch (resultCode & 0xff) {
    case SQLITE_NOTADB:
        code = EAssetError::eNotALibrary;
        break;
    case SQLITE_CORRUPT:
    case SQLITE_FORMAT:
    case SQLITE_SCHEMA:
    // The statements of this library are fixed: one that does not compile names a table or column
    // the file does not have.
    case SQLITE_ERROR:
        code = EAssetError::eCorrupt;
        break;
    case SQLITE_CANTOPEN:
        code = EAssetError::eNotFound;
        break;
    case SQLITE_READONLY:
    case SQLITE_PERM:
        code = EAssetError::eReadOnly;
        break;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        code = EAssetError::eBusy;
        break;
    case SQLITE_CONSTRAINT:
        code = EAssetError::eDuplicate;
        break;
    case SQLITE_TOOBIG:
    case SQLITE_RANGE:
    case SQLITE_MISMATCH:
    case SQLITE_MISUSE:
        code = EAssetError::eInvalidArgument;
        break;
    default:
        code = EAssetError::eIOError;
        break;
    }
    std::string message(context);
    message += ": ";
    const char* detail = db != nullptr && sqlite3_errcode(db) == resultCode ? sqlite3_errmsg(db) : sqlite3_errstr(resultCode);
    message += detail != nullptr ? detail : "unknown SQLite error";
    return AssetError{code, std::move(message)};
}

namespace {

[[noreturn]] void raise(int resultCode, sqlite3* db, std::string_view context)
{
    throw Failure(translate(resultCode, db, context));
}

} // namespace

// ---- Statement ----

Statement::Statement(sqlite3* db, sqlite3_stmt* statement)
    : m_db(db)
    , m_statement(statement)
{
}

Statement::~Statement()
{
    sqlite3_finalize(m_statement);
}

Statement::Statement(Statement&& other) noexcept
    : m_db(std::exchange(other.m_db, nullptr))
    , m_statement(std::exchange(other.m_statement, nullptr))
{
}

Statement& Statement::operator=(Statement&& other) noexcept
{
    if (this != &other) {
        sqlite3_finalize(m_statement);
        m_db = std::exchange(other.m_db, nullptr);
        m_statement = std::exchange(other.m_statement, nullptr);
    }
    return *this;
}

void Statement::check(int resultCode, const char* context) const
{
    if (resultCode != SQLITE_OK) {
        raise(resultCode, m_db, context);
    }
}

Statement& Statement::bind(int index, std::int64_t value)
{
    check(sqlite3_bind_int64(m_statement, index, value), "bind");
    return *this;
}

Statement& Statement::bind(int index, double value)
{
    check(sqlite3_bind_double(m_statement, index, value), "bind");
    return *this;
}

Statement& Statement::bind(int index, std::string_view utf8)
{
    // A null pointer would bind NULL; an empty text must stay an empty text.
    check(sqlite3_bind_text64(m_statement, index, utf8.empty() ? "" : utf8.data(), utf8.size(), SQLITE_TRANSIENT,
              SQLITE_UTF8),
        "bind");
    return *this;
}

Statement& Statement::bind(int index, const WideString& text)
{
    return bind(index, std::string_view(core::toUTF8(text)));
}

Statement& Statement::bindBlob(int index, std::span<const std::uint8_t> bytes)
{
    // Same reason: a zero-length blob is bound as such, not as NULL.
    const int result = bytes.empty() ? sqlite3_bind_zeroblob(m_statement, index, 0)
                                     : sqlite3_bind_blob64(m_statement, index, bytes.data(), bytes.size(), SQLITE_TRANSIENT);
    check(result, "bind");
    return *this;
}

Statement& Statement::bindNull(int index)
{
    check(sqlite3_bind_null(m_statement, index), "bind");
    return *this;
}

bool Statement::step()
{
    const int result = sqlite3_step(m_statement);
    if (result == SQLITE_ROW) {
        return true;
    }
    if (result == SQLITE_DONE) {
        return false;
    }
    const AssetError error = translate(result, m_db, "query");
    sqlite3_reset(m_statement);
    throw Failure(error);
}

void Statement::run()
{
    while (step()) {
    }
    reset();
}

void Statement::reset()
{
    sqlite3_reset(m_statement);
    sqlite3_clear_bindings(m_statement);
}

int Statement::columnType(int column) const
{
    return sqlite3_column_type(m_statement, column);
}

bool Statement::isNull(int column) const
{
    return columnType(column) == SQLITE_NULL;
}

std::int64_t Statement::columnInt64(int column) const
{
    return sqlite3_column_int64(m_statement, column);
}

double Statement::columnDouble(int column) const
{
    return sqlite3_column_double(m_statement, column);
}

std::string_view Statement::columnText(int column) const
{
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(m_statement, column));
    const int size = sqlite3_column_bytes(m_statement, column);
    return text != nullptr ? std::string_view(text, static_cast<std::size_t>(size)) : std::string_view();
}

WideString Statement::columnWide(int column) const
{
    return core::toWide(columnText(column));
}

std::span<const std::uint8_t> Statement::columnBlob(int column) const
{
    const auto* bytes = static_cast<const std::uint8_t*>(sqlite3_column_blob(m_statement, column));
    const int size = sqlite3_column_bytes(m_statement, column);
    return bytes != nullptr ? std::span<const std::uint8_t>(bytes, static_cast<std::size_t>(size))
                            : std::span<const std::uint8_t>();
}

// ---- Database ----

Database::Database(sqlite3* db)
    : m_db(db)
{
}

Database::~Database()
{
    sqlite3_close_v2(m_db);
}

Database::Database(Database&& other) noexcept
    : m_db(std::exchange(other.m_db, nullptr))
{
}

Database& Database::operator=(Database&& other) noexcept
{
    if (this != &other) {
        sqlite3_close_v2(m_db);
        m_db = std::exchange(other.m_db, nullptr);
    }
    return *this;
}

void Database::configure()
{
    // Library files come from anywhere: refuse what could run code or write through the schema,
    // and check cell sizes so that a damaged page is reported rather than read past.
    sqlite3_db_config(m_db, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(m_db, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_busy_timeout(m_db, 2000);
    execute("PRAGMA cell_size_check = ON");
}

Database Database::openFile(const std::filesystem::path& file)
{
    sqlite3* db = nullptr;
    const int result = sqlite3_open_v2(file.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    Database database(db);
    if (result != SQLITE_OK) {
        raise(result, db, "open " + file.string());
    }
    database.configure();
    return database;
}

Database Database::openMemory()
{
    sqlite3* db = nullptr;
    const int result = sqlite3_open_v2(":memory:", &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX,
        nullptr);
    Database database(db);
    if (result != SQLITE_OK) {
        raise(result, db, "open memory database");
    }
    database.configure();
    return database;
}

Database Database::fromBytes(std::span<const std::uint8_t> bytes)
{
    Database database = openMemory();
    // SQLite takes ownership of a buffer from its own allocator and may grow it.
    const auto size = static_cast<sqlite3_int64>(bytes.size());
    auto* buffer = static_cast<unsigned char*>(sqlite3_malloc64(bytes.empty() ? 1 : bytes.size()));
    if (buffer == nullptr) {
        fail(EAssetError::eIOError, "out of memory for " + std::to_string(bytes.size()) + " bytes");
    }
    if (!bytes.empty()) {
        std::memcpy(buffer, bytes.data(), bytes.size());
    }
    const int result = sqlite3_deserialize(database.m_db, "main", buffer, size, size,
        SQLITE_DESERIALIZE_FREEONCLOSE | SQLITE_DESERIALIZE_RESIZEABLE);
    if (result != SQLITE_OK) {
        raise(result, database.m_db, "read serialized assets");
    }
    return database;
}

bool Database::isReadOnly() const
{
    return sqlite3_db_readonly(m_db, "main") == 1;
}

bool Database::inTransaction() const
{
    return sqlite3_get_autocommit(m_db) == 0;
}

void Database::execute(const char* sql)
{
    const int result = sqlite3_exec(m_db, sql, nullptr, nullptr, nullptr);
    if (result != SQLITE_OK) {
        raise(result, m_db, sql);
    }
}

Statement Database::prepare(std::string_view sql) const
{
    sqlite3_stmt* statement = nullptr;
    const int result = sqlite3_prepare_v3(m_db, sql.data(), static_cast<int>(sql.size()), SQLITE_PREPARE_PERSISTENT,
        &statement, nullptr);
    if (result != SQLITE_OK) {
        raise(result, m_db, "prepare");
    }
    return Statement(m_db, statement);
}

bool Database::hasTable(const char* table) const
{
    return sqlite3_table_column_metadata(m_db, "main", table, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr)
        == SQLITE_OK;
}

bool Database::hasColumn(const char* table, const char* column) const
{
    return sqlite3_table_column_metadata(m_db, "main", table, column, nullptr, nullptr, nullptr, nullptr, nullptr)
        == SQLITE_OK;
}

std::int64_t Database::pragmaInteger(const char* pragma) const
{
    Statement statement = prepare(std::string("PRAGMA ") + pragma);
    return statement.step() ? statement.columnInt64(0) : 0;
}

std::int64_t Database::lastInsertRowId() const
{
    return sqlite3_last_insert_rowid(m_db);
}

std::vector<std::uint8_t> Database::serialize() const
{
    sqlite3_int64 size = 0;
    unsigned char* bytes = sqlite3_serialize(m_db, "main", &size, 0);
    if (bytes == nullptr) {
        // An empty database serializes to nothing; anything else is a lack of memory.
        if (pragmaInteger("page_count") == 0) {
            return {};
        }
        fail(EAssetError::eIOError, "serialize: out of memory");
    }
    std::vector<std::uint8_t> result(bytes, bytes + size);
    sqlite3_free(bytes);
    return result;
}

void Database::vacuumInto(const std::filesystem::path& file)
{
    Statement statement = prepare("VACUUM INTO ?1");
    statement.bind(1, std::string_view(file.string()));
    statement.run();
}

} // namespace telvarin::platform::assets::sqlite
