#include "Types/Testors/AppearanceTestor.h"

#include <Types/Appearance/Meta/MaterialMetaTypes.h>

#include <datamodel/EntityMetaType.h>
#include <datamodel/IntrinsicMetaType.h>
#include <datamodel/MemberSet.h>
#include <datamodel/ValueMetaType.h>

#include <typeinfo>

namespace Kx {

AppearanceTestor::AppearanceTestor() : Entity(s_metaType()) {}

EntityMetaType& AppearanceTestor::s_metaType()
{
    static TEntityMetaType<AppearanceTestor> metaType("4B7D2E91-C3A5-4F08-8E6B-9D1A0F2C5E74", "AppearanceTestor", 0);
    return metaType;
}

void AppearanceTestor::declareMembers(unsigned, MemberSet* memberSet)
{
    memberSet->addNewMember("name", &name, typeid(std::wstring).name(), IntrinsicMetaType<std::wstring>::get());
    memberSet->addNewMember("physical", &physical, typeid(PhysicalMaterial).name(), &physicalMaterialValueMetaType());
    memberSet->addNewMember("visual", &visual, typeid(VisualMaterial).name(), &visualMaterialValueMetaType());
}

namespace {
// Registered with the library, so the console lists it and documents can name it.
const bool s_registered = ((void)AppearanceTestor::s_metaType(), true);
} // namespace

} // namespace Kx
