#pragma once

#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Kx {

class MetaType;

// Every meta type alive in the process, keyed by identifier. Meta types register themselves on
// construction and leave on destruction. A second type under an identifier that is already taken
// is reported and refused: documents find types by identifier, so it must name exactly one.
class MetaTypeRegistry {
public:
    [[nodiscard]] static MetaTypeRegistry& get();

    bool registerType(MetaType* metaType);
    void unregisterType(MetaType* metaType);

    [[nodiscard]] MetaType* find(std::string_view metaTypeId) const;
    [[nodiscard]] MetaType* findByTypeName(std::string_view typeName) const;
    // In registration order.
    [[nodiscard]] std::vector<MetaType*> all() const;

private:
    mutable std::mutex m_mutex;
    std::unordered_map<std::string, MetaType*> m_byId;
    std::vector<MetaType*> m_inOrder;
};

} // namespace Kx
