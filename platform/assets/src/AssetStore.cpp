#include "AssetStore.h"

#include <sqlite3.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <limits>

namespace telvarin::platform::assets {

namespace {

// ---- value encodings (docs/formats.md, "property") ----

template <typename T>
void appendLittleEndian(std::vector<std::uint8_t>& bytes, T value)
{
    for (std::size_t index = 0; index < sizeof(T); ++index) {
        bytes.push_back(static_cast<std::uint8_t>(value >> (8 * index)));
    }
}

template <typename T>
T readLittleEndian(std::span<const std::uint8_t> bytes, std::size_t offset)
{
    T value = 0;
    for (std::size_t index = 0; index < sizeof(T); ++index) {
        value |= static_cast<T>(bytes[offset + index]) << (8 * index);
    }
    return value;
}

std::vector<std::uint8_t> encode(const AssetColor& color)
{
    std::vector<std::uint8_t> bytes;
    for (float component : {color.r, color.g, color.b, color.a}) {
        appendLittleEndian(bytes, std::bit_cast<std::uint32_t>(component));
    }
    return bytes;
}

std::vector<std::uint8_t> encode(const std::vector<int>& values)
{
    std::vector<std::uint8_t> bytes;
    for (int value : values) {
        appendLittleEndian(bytes, static_cast<std::uint32_t>(value));
    }
    return bytes;
}

std::vector<std::uint8_t> encode(const std::vector<double>& values)
{
    std::vector<std::uint8_t> bytes;
    for (double value : values) {
        appendLittleEndian(bytes, std::bit_cast<std::uint64_t>(value));
    }
    return bytes;
}

std::string encodeChoices(const std::vector<ChoiceItem>& choices)
{
    std::string text;
    for (const ChoiceItem& item : choices) {
        if (!text.empty()) {
            text += '\n';
        }
        text += std::to_string(item.value) + '=' + core::toUTF8(item.label);
    }
    return text;
}

[[noreturn]] void corrupt(const WideString& property, const char* what)
{
    sqlite::fail(EAssetError::eCorrupt, "property \"" + core::toUTF8(property) + "\": " + what);
}

std::vector<ChoiceItem> decodeChoices(const WideString& property, std::string_view text)
{
    std::vector<ChoiceItem> choices;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        const std::size_t equals = line.find('=');
        ChoiceItem item;
        const auto parsed = std::from_chars(line.data(), line.data() + std::min(equals, line.size()), item.value);
        if (equals == std::string_view::npos || parsed.ec != std::errc() || parsed.ptr != line.data() + equals) {
            corrupt(property, "malformed choice list");
        }
        item.label = core::toWide(line.substr(equals + 1));
        choices.push_back(std::move(item));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return choices;
}

void bindValue(sqlite::Statement& statement, int index, const Property& property)
{
    std::visit(
        [&](const auto& value) {
            using T = std::decay_t<decltype(value)>;
            if constexpr (std::is_same_v<T, std::monostate>) {
                statement.bindNull(index);
            } else if constexpr (std::is_same_v<T, WideString>) {
                statement.bind(index, value);
            } else if constexpr (std::is_same_v<T, bool> || std::is_same_v<T, int>) {
                statement.bind(index, static_cast<std::int64_t>(value));
            } else if constexpr (std::is_same_v<T, double>) {
                statement.bind(index, value);
            } else {
                statement.bindBlob(index, encode(value));
            }
        },
        property.value);
}

PropertyValue decodeValue(const WideString& name, EPropertyType type, const sqlite::Statement& row, int column)
{
    const int storage = row.columnType(column);
    const auto integer = [&]() {
        const std::int64_t value = row.columnInt64(column);
        if (storage != SQLITE_INTEGER || value < std::numeric_limits<int>::min() || value > std::numeric_limits<int>::max()) {
            corrupt(name, "expected a 32-bit integer");
        }
        return static_cast<int>(value);
    };
    const auto blob = [&](std::size_t elementSize) {
        const auto bytes = row.columnBlob(column);
        if (storage != SQLITE_BLOB || bytes.size() % elementSize != 0) {
            corrupt(name, "expected a blob of whole elements");
        }
        return bytes;
    };
    switch (type) {
    case EPropertyType::eString:
        if (storage != SQLITE_TEXT) {
            corrupt(name, "expected text");
        }
        return row.columnWide(column);
    case EPropertyType::eBoolean: {
        const int value = integer();
        if (value != 0 && value != 1) {
            corrupt(name, "expected 0 or 1");
        }
        return value == 1;
    }
    case EPropertyType::eInteger:
    case EPropertyType::eChoice:
        return integer();
    case EPropertyType::eDouble:
        if (storage != SQLITE_FLOAT && storage != SQLITE_INTEGER) {
            corrupt(name, "expected a number");
        }
        return row.columnDouble(column);
    case EPropertyType::eColor: {
        const auto bytes = blob(16);
        if (bytes.size() != 16) {
            corrupt(name, "expected four 32-bit floats");
        }
        AssetColor color;
        float* components[] = {&color.r, &color.g, &color.b, &color.a};
        for (std::size_t index = 0; index < 4; ++index) {
            *components[index] = std::bit_cast<float>(readLittleEndian<std::uint32_t>(bytes, 4 * index));
        }
        return color;
    }
    case EPropertyType::eIntegerArray: {
        const auto bytes = blob(4);
        std::vector<int> values;
        for (std::size_t offset = 0; offset < bytes.size(); offset += 4) {
            values.push_back(static_cast<int>(readLittleEndian<std::uint32_t>(bytes, offset)));
        }
        return values;
    }
    case EPropertyType::eDoubleArray: {
        const auto bytes = blob(8);
        std::vector<double> values;
        for (std::size_t offset = 0; offset < bytes.size(); offset += 8) {
            values.push_back(std::bit_cast<double>(readLittleEndian<std::uint64_t>(bytes, offset)));
        }
        return values;
    }
    case EPropertyType::eReference:
        if (storage != SQLITE_NULL) {
            corrupt(name, "a reference has no value");
        }
        return std::monostate();
    case EPropertyType::eUndefined:
        break;
    }
    corrupt(name, "unknown property type");
}

bool knownType(std::int64_t code)
{
    switch (static_cast<EPropertyType>(code)) {
    case EPropertyType::eString:
    case EPropertyType::eBoolean:
    case EPropertyType::eInteger:
    case EPropertyType::eDouble:
    case EPropertyType::eColor:
    case EPropertyType::eChoice:
    case EPropertyType::eIntegerArray:
    case EPropertyType::eDoubleArray:
    case EPropertyType::eReference:
        return true;
    case EPropertyType::eUndefined:
        break;
    }
    return false;
}

struct Connection {
    WideString property;
    std::int64_t target = 0;
};

} // namespace

// ---- AssetReader ----

AssetReader::AssetReader(const sqlite::Database& db)
    : m_asset(db.prepare("SELECT asset_id, schema FROM asset WHERE asset_key = ?1"))
    , m_properties(db.prepare("SELECT name, type, value, minimum, maximum, increment, logarithmic, unit, choices "
                              "FROM property WHERE asset_key = ?1"))
    , m_names(db.prepare("SELECT language, name FROM asset_name WHERE asset_key = ?1"))
    , m_connections(db.prepare("SELECT property, target_key FROM connection WHERE asset_key = ?1 ORDER BY property, position"))
{
}

InstanceRef AssetReader::read(std::int64_t key, std::shared_ptr<const AssetDefinition> definition)
{
    std::map<std::int64_t, AssetInstance*> done;
    std::set<std::int64_t> open;
    try {
        return readAsset(key, std::move(definition), done, open);
    } catch (...) {
        m_asset.reset();
        m_properties.reset();
        m_names.reset();
        m_connections.reset();
        throw;
    }
}

InstanceRef AssetReader::readAsset(std::int64_t key, std::shared_ptr<const AssetDefinition> definition,
    std::map<std::int64_t, AssetInstance*>& done, std::set<std::int64_t>& open)
{
    // A row still being read that is reached again closes a cycle, which counted references could
    // never free; a row finished already is simply shared.
    if (open.contains(key)) {
        sqlite::fail(EAssetError::eCorrupt, "asset row " + std::to_string(key) + " connects to itself");
    }
    if (const auto found = done.find(key); found != done.end()) {
        return InstanceRef::share(found->second);
    }
    open.insert(key);
    m_asset.bind(1, key);
    if (!m_asset.step()) {
        m_asset.reset();
        sqlite::fail(EAssetError::eNotFound, "no asset row " + std::to_string(key));
    }
    InstanceRef instance = InstanceRef::adopt(
        new AssetInstance(UTF8String(m_asset.columnText(0)), m_asset.columnWide(1), std::move(definition)));
    m_asset.reset();

    auto& properties = instance->properties();
    m_properties.bind(1, key);
    while (m_properties.step()) {
        const WideString name = m_properties.columnWide(0);
        const std::int64_t type = m_properties.columnInt64(1);
        if (!knownType(type)) {
            corrupt(name, "unknown property type");
        }
        Property property;
        property.type = static_cast<EPropertyType>(type);
        property.value = decodeValue(name, property.type, m_properties, 2);
        if (!m_properties.isNull(3) || !m_properties.isNull(4) || m_properties.columnDouble(5) != 0.0 ||
            m_properties.columnInt64(6) != 0) {
            NumericConstraint constraint;
            constraint.hasMinimum = !m_properties.isNull(3);
            constraint.minimum = m_properties.columnDouble(3);
            constraint.hasMaximum = !m_properties.isNull(4);
            constraint.maximum = m_properties.columnDouble(4);
            constraint.increment = m_properties.columnDouble(5);
            constraint.logarithmic = m_properties.columnInt64(6) != 0;
            property.constraint = constraint;
        }
        property.unit = m_properties.columnWide(7);
        if (property.type == EPropertyType::eChoice) {
            property.choices = decodeChoices(name, m_properties.columnText(8));
        }
        properties.emplace(name, std::move(property));
    }
    m_properties.reset();

    m_names.bind(1, key);
    while (m_names.step()) {
        instance->names()[UTF8String(m_names.columnText(0))] = m_names.columnWide(1);
    }
    m_names.reset();

    // Collected first: reading a connected asset runs these statements again.
    std::vector<Connection> connections;
    m_connections.bind(1, key);
    while (m_connections.step()) {
        connections.push_back({m_connections.columnWide(0), m_connections.columnInt64(1)});
    }
    m_connections.reset();

    done.emplace(key, instance.get());
    for (Connection& connection : connections) {
        InstanceRef target = readAsset(connection.target, nullptr, done, open);
        auto [property, added] = properties.try_emplace(connection.property);
        if (added) {
            property->second.type = EPropertyType::eReference;
        }
        property->second.connected.push_back(std::move(target));
    }
    open.erase(key);
    return instance;
}

// ---- AssetWriter ----

AssetWriter::AssetWriter(const sqlite::Database& db)
    : m_db(db)
    , m_insertAsset(db.prepare(
          "INSERT INTO asset (asset_id, schema, preset, owner_key, instance_key, origin_library, variant, version_major, "
          "version_minor, revision, version_guid, category, subcategory) "
          "VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13)"))
    , m_insertProperty(db.prepare("INSERT INTO property (asset_key, name, type, value, minimum, maximum, increment, "
                                  "logarithmic, unit, choices) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10)"))
    , m_insertName(db.prepare("INSERT INTO asset_name (asset_key, language, name) VALUES (?1, ?2, ?3)"))
    , m_insertConnection(
          db.prepare("INSERT INTO connection (asset_key, property, position, target_key) VALUES (?1, ?2, ?3, ?4)"))
{
}

std::int64_t AssetWriter::write(const AssetInstance& instance, const AssetRow& row)
{
    std::map<const AssetInstance*, std::int64_t> written;
    return writeAsset(instance, row, std::nullopt, written);
}

std::int64_t AssetWriter::writeAsset(const AssetInstance& instance, const AssetRow& row,
    std::optional<std::int64_t> owner, std::map<const AssetInstance*, std::int64_t>& written)
{
    m_insertAsset.bind(1, std::string_view(row.assetId)).bind(2, row.schema).bind(3, std::int64_t{row.preset});
    owner ? m_insertAsset.bind(4, *owner) : m_insertAsset.bindNull(4);
    row.instanceKey ? m_insertAsset.bind(5, *row.instanceKey) : m_insertAsset.bindNull(5);
    row.originLibrary ? m_insertAsset.bind(6, *row.originLibrary) : m_insertAsset.bindNull(6);
    m_insertAsset.bind(7, row.variant)
        .bind(8, std::int64_t{row.majorVersion})
        .bind(9, std::int64_t{row.minorVersion})
        .bind(10, row.revision)
        .bind(11, row.versionGuid)
        .bind(12, row.category)
        .bind(13, row.subcategory);
    m_insertAsset.run();
    const std::int64_t key = m_db.lastInsertRowId();
    written.emplace(&instance, key);
    const std::int64_t top = owner.value_or(key);

    for (const auto& [language, name] : instance.names()) {
        m_insertName.bind(1, key).bind(2, std::string_view(language)).bind(3, name);
        m_insertName.run();
    }
    for (const auto& [name, property] : instance.properties()) {
        m_insertProperty.bind(1, key).bind(2, name).bind(3, static_cast<std::int64_t>(property.type));
        bindValue(m_insertProperty, 4, property);
        const NumericConstraint constraint = property.constraint.value_or(NumericConstraint());
        constraint.hasMinimum ? m_insertProperty.bind(5, constraint.minimum) : m_insertProperty.bindNull(5);
        constraint.hasMaximum ? m_insertProperty.bind(6, constraint.maximum) : m_insertProperty.bindNull(6);
        m_insertProperty.bind(7, constraint.increment)
            .bind(8, std::int64_t{constraint.logarithmic})
            .bind(9, property.unit)
            .bind(10, std::string_view(encodeChoices(property.choices)));
        m_insertProperty.run();

        for (std::size_t position = 0; position < property.connected.size(); ++position) {
            const AssetInstance& target = *property.connected[position].get();
            std::int64_t targetKey = 0;
            if (const auto found = written.find(&target); found != written.end()) {
                targetKey = found->second;
            } else {
                AssetRow part;
                part.assetId = row.assetId + '/' + core::toUTF8(name);
                if (position > 0) {
                    part.assetId += '#' + std::to_string(position);
                }
                part.schema = target.GetSchemaName();
                part.preset = false;
                targetKey = writeAsset(target, part, top, written);
            }
            m_insertConnection.bind(1, key).bind(2, name).bind(3, static_cast<std::int64_t>(position)).bind(4, targetKey);
            m_insertConnection.run();
        }
    }
    return key;
}

void AssetWriter::erase(std::int64_t key)
{
    static constexpr const char* s_statements[] = {
        "DELETE FROM property WHERE asset_key IN (SELECT asset_key FROM asset WHERE asset_key = ?1 OR owner_key = ?1)",
        "DELETE FROM asset_name WHERE asset_key IN (SELECT asset_key FROM asset WHERE asset_key = ?1 OR owner_key = ?1)",
        "DELETE FROM connection WHERE asset_key IN (SELECT asset_key FROM asset WHERE asset_key = ?1 OR owner_key = ?1)",
        "DELETE FROM asset WHERE asset_key = ?1 OR owner_key = ?1",
    };
    for (const char* sql : s_statements) {
        auto statement = m_db.prepare(sql);
        statement.bind(1, key);
        statement.run();
    }
}

} // namespace telvarin::platform::assets
