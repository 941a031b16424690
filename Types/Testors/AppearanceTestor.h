#pragma once

#include <Types/Appearance/PhysicalMaterial.h>
#include <Types/Appearance/VisualMaterial.h>

#include <datamodel/Entity.h>

#include <string>

namespace Kx {

class EntityMetaType;
class MemberSet;

// A test entity standing for a body: a name, what it is made of and how it looks, so that whole
// documents with materials are saved, opened and pasted by tests, the console and benchmarks.
class AppearanceTestor final : public Entity {
public:
    AppearanceTestor();

    [[nodiscard]] static EntityMetaType& s_metaType();
    void declareMembers(unsigned version, MemberSet* memberSet);

    std::wstring name;
    PhysicalMaterial physical;
    VisualMaterial visual;
};

} // namespace Kx
