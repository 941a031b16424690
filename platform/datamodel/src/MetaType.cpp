#include "datamodel/MetaType.h"

#include "datamodel/MetaTypeRegistry.h"

namespace Kx {

MetaType::MetaType(std::string metaTypeId, std::string metaTypeName, unsigned version, std::string typeName)
    : m_metaTypeId(std::move(metaTypeId))
    , m_metaTypeName(std::move(metaTypeName))
    , m_typeName(std::move(typeName))
    , m_version(version)
{
    MetaTypeRegistry::get().registerType(this);
}

MetaType::~MetaType()
{
    MetaTypeRegistry::get().unregisterType(this);
}

} // namespace Kx
