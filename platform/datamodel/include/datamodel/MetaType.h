#pragma once

#include <string>

namespace Kx {

// Identity of a type known to the data model. The identifier is the key under which saved
// documents find the type again, so it is compared exactly as written (case included).
class MetaType {
public:
    MetaType(std::string metaTypeId, std::string metaTypeName, unsigned version, std::string typeName);
    virtual ~MetaType();

    MetaType(const MetaType&) = delete;
    MetaType& operator=(const MetaType&) = delete;

    [[nodiscard]] const std::string& metaTypeId() const noexcept { return m_metaTypeId; }
    [[nodiscard]] const std::string& metaTypeName() const noexcept { return m_metaTypeName; }
    [[nodiscard]] const std::string& typeName() const noexcept { return m_typeName; }
    // The persistence version of the type as this build writes it.
    [[nodiscard]] unsigned version() const noexcept { return m_version; }

private:
    std::string m_metaTypeId;
    std::string m_metaTypeName;
    std::string m_typeName;
    unsigned m_version;
};

} // namespace Kx
