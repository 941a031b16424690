#pragma once

#include <cstdint>

namespace Kx {

class MetaType;
class MigrationHelper;

// The header every value class of the data model starts with: its virtual table (whose first
// operation is queryMTInterface), the migrating version and the migration helper, both zero until
// the data model migrates the value. The value's own public fields follow in the derived class.
class Value {
public:
    virtual const void* queryMTInterface(const MetaType* metaType) const = 0;
    virtual ~Value() = default;

    // A copy is a new value: it takes the fields of the original, never its migration state.
    Value() = default;
    Value(const Value&) noexcept {}
    Value& operator=(const Value&) noexcept { return *this; }

    [[nodiscard]] MigrationHelper* createMigrationHelper() const { return nullptr; }
    [[nodiscard]] bool deleteMigrationHelper() const { return false; }
    [[nodiscard]] MigrationHelper*& migrationHelper() { return m_migrationHelper; }
    [[nodiscard]] std::uint32_t migratingVersion() const { return m_migratingVersion; }
    void migratingVersion(std::uint32_t version) { m_migratingVersion = version; }

private:
    std::uint32_t m_migratingVersion = 0;
    MigrationHelper* m_migrationHelper = nullptr;
};

} // namespace Kx
