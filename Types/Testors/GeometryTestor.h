#pragma once

#include <Types/Geometry/Border4.h>
#include <Types/Geometry/Color.h>
#include <Types/Geometry/GlobalizedString.h>
#include <Types/Geometry/Point2.h>
#include <Types/Geometry/Rect2.h>
#include <Types/Geometry/Size2.h>

#include <datamodel/Entity.h>

#include <cstdint>
#include <string>

namespace Kx {

class EntityMetaType;
class MemberSet;

// A test entity with a member of each value type and two scalars, so that whole entities can be
// saved, loaded and converted to and from JSON by tests, the console and demonstrations.
class GeometryTestor final : public Entity {
public:
    GeometryTestor();

    [[nodiscard]] static EntityMetaType& s_metaType();
    void declareMembers(unsigned version, MemberSet* memberSet);

    Point2 point;
    Size2 size;
    Rect2 rect;
    Border4 border;
    Color color;
    GlobalizedString label;
    std::int32_t count = 0;
    std::wstring name;
};

} // namespace Kx
