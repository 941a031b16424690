#pragma once

#include "AssetInstance.h"
#include "Sqlite.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>

// Reading and writing instances in the tables of a library database; used by libraries, writers,
// the serializer and the deserializer alike.
namespace telvarin::platform::assets {

// What an asset row says besides its properties.
struct AssetRow {
    UTF8String assetId;
    WideString schema;
    bool preset = true;
    std::optional<WideString> instanceKey;
    std::optional<WideString> originLibrary;
    WideString variant;
    int majorVersion = 1;
    int minorVersion = 0;
    WideString revision;
    WideString versionGuid;
    WideString category;
    WideString subcategory;
};

class AssetReader {
public:
    // Throws sqlite::Failure (eCorrupt) when the tables lack a column it reads.
    explicit AssetReader(const sqlite::Database& db);

    // The asset in row `key` with everything it connects (an asset connected twice is read once and
    // shared). Only the top instance gets `definition`. Throws eNotFound for a missing row and
    // eCorrupt for values of the wrong kind, unknown types and connection cycles.
    [[nodiscard]] InstanceRef read(std::int64_t key, std::shared_ptr<const AssetDefinition> definition);

private:
    InstanceRef readAsset(std::int64_t key, std::shared_ptr<const AssetDefinition> definition,
        std::map<std::int64_t, AssetInstance*>& done, std::set<std::int64_t>& open);

    sqlite::Statement m_asset;
    sqlite::Statement m_properties;
    sqlite::Statement m_names;
    sqlite::Statement m_connections;
};

class AssetWriter {
public:
    explicit AssetWriter(const sqlite::Database& db);

    // Writes the instance as described by `row`, then every asset it connects as rows owned by it
    // (ids "<owner id>/<property>", "#<position>" added after the first); answers the new row.
    std::int64_t write(const AssetInstance& instance, const AssetRow& row);
    // Deletes a row and the rows it owns, with their properties, names and connections.
    void erase(std::int64_t key);

private:
    std::int64_t writeAsset(const AssetInstance& instance, const AssetRow& row, std::optional<std::int64_t> owner,
        std::map<const AssetInstance*, std::int64_t>& written);

    const sqlite::Database& m_db;
    sqlite::Statement m_insertAsset;
    sqlite::Statement m_insertProperty;
    sqlite::Statement m_insertName;
    sqlite::Statement m_insertConnection;
};

} // namespace telvarin::platform::assets
