#pragma once

#include <oneapi/tbb/spin_rw_mutex.h>

#include <atomic>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Kx {

class MemberMetaType;

// A member's name is its key in every encoding: a letter, then letters, digits and '_', so that it
// is a valid XML name and JSON key as it stands.
struct Member {
    std::string name;
    std::size_t offset;
    std::string runtimeTypeName;
    const MemberMetaType* metaType;

    [[nodiscard]] void* in(void* owner) const noexcept { return static_cast<char*>(owner) + offset; }
    [[nodiscard]] const void* in(const void* owner) const noexcept { return static_cast<const char*>(owner) + offset; }
};

// The members of one version of a type, in declaration order. Built once, lazily, by the first
// construction of a value of the type, under the set's reader-writer lock.
class MemberSet {
public:
    using Mutex = oneapi::tbb::spin_rw_mutex;

    explicit MemberSet(unsigned version) : m_version(version) {}

    // Starts (or restarts, when migrating) the set for the type `typeName`; `owner` is the object
    // whose field addresses addNewMember receives.
    static void initialize(MemberSet* memberSet, const void* owner, const std::string& typeName);
    void addNewMember(const std::string& name, const void* field, const char* runtimeTypeName,
        const MemberMetaType* metaType);
    // Publishes the members to readers that check isComplete() without the lock.
    void markComplete() noexcept { m_complete.store(true, std::memory_order_release); }

    [[nodiscard]] bool isInitialized() const noexcept { return m_initialized; }
    // How often the set was (re)initialised: once for a current set, more only through migration.
    [[nodiscard]] unsigned initializationCount() const noexcept { return m_initializationCount; }
    [[nodiscard]] bool isComplete() const noexcept { return m_complete.load(std::memory_order_acquire); }
    [[nodiscard]] Mutex& mutex() const noexcept { return m_mutex; }
    [[nodiscard]] unsigned version() const noexcept { return m_version; }
    [[nodiscard]] const std::string& typeName() const noexcept { return m_typeName; }
    [[nodiscard]] const std::vector<Member>& members() const noexcept { return m_members; }
    [[nodiscard]] const Member* find(std::string_view name) const noexcept;
    // The object whose field addresses the members were declared with (during initialisation).
    [[nodiscard]] const void* owner() const noexcept { return m_owner; }

private:
    mutable Mutex m_mutex;
    std::vector<Member> m_members;
    std::string m_typeName;
    const void* m_owner = nullptr;
    unsigned m_version;
    unsigned m_initializationCount = 0;
    bool m_initialized = false;
    std::atomic<bool> m_complete{false};
};

} // namespace Kx
