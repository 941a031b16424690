#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Kx {

class Document;
class Entity;
class MigrationLog;
class ValueMetaType;

// A step a subsystem runs over a whole document after it was opened, once every value and entity
// is in memory and the post-asset-load hooks have run: when something in the document was stored
// with an older member set, or when the document was opened as a copy of another. Steps are made
// afresh for each document (so they may keep state) and run in the order of their rank.
class MigrationStep {
public:
    virtual ~MigrationStep() = default;

    virtual void onMigrate() = 0;

    // Used by the data model: runs onMigrate for `document`.
    void run(Document& document, const MigrationLog& log, bool copiedAsset);

protected:
    [[nodiscard]] Document* asset() const noexcept { return m_document; }
    [[nodiscard]] bool isCopiedAsset() const noexcept { return m_copiedAsset; }
    // Whether values or entities of the type were stored with an older version.
    [[nodiscard]] bool wasMigrated(const std::string& metaTypeId) const;
    // Calls `visit` for every value of `metaType` held by the entities of the document's saved
    // (not transient) segments, also inside values saved member by member.
    void forEachValue(const ValueMetaType& metaType, const std::function<void(void* value, Entity& owner)>& visit) const;

private:
    Document* m_document = nullptr;
    const MigrationLog* m_log = nullptr;
    bool m_copiedAsset = false;
};

// The registered steps.
class MigrationSteps {
public:
    using Factory = std::function<std::unique_ptr<MigrationStep>()>;

    // A name already registered is reported and refused.
    static bool add(std::string name, int rank, Factory factory);
    static void remove(const std::string& name);
    // In the order they run: by rank, then by name.
    [[nodiscard]] static std::vector<std::string> names();
    // Runs every step on a document just opened.
    static void runAll(Document& document, const MigrationLog& log, bool copiedAsset);
};

// Registers step class T for the lifetime of the object (a static of the subsystem's library).
template <class T>
class MigrationStepRegistration {
public:
    MigrationStepRegistration(std::string name, int rank) : m_name(std::move(name))
    {
        MigrationSteps::add(m_name, rank, [] { return std::make_unique<T>(); });
    }
    ~MigrationStepRegistration() { MigrationSteps::remove(m_name); }
    MigrationStepRegistration(const MigrationStepRegistration&) = delete;
    MigrationStepRegistration& operator=(const MigrationStepRegistration&) = delete;

private:
    std::string m_name;
};

} // namespace Kx
