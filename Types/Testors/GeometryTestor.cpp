#include "Types/Testors/GeometryTestor.h"

#include <Types/Geometry/ValueMetaTypes.h>

#include <datamodel/EntityMetaType.h>

namespace Kx {

GeometryTestor::GeometryTestor() : Entity(s_metaType()) {}

EntityMetaType& GeometryTestor::s_metaType()
{
    static TEntityMetaType<GeometryTestor> metaType("6F1C2B9E-3A4D-4E57-9B21-0C8D7E6F5A43", "GeometryTestor", 0);
    return metaType;
}

void GeometryTestor::declareMembers(unsigned, MemberSet* memberSet)
{
    addMember(memberSet, "point", point);
    addMember(memberSet, "size", size);
    addMember(memberSet, "rect", rect);
    addMember(memberSet, "border", border);
    addMember(memberSet, "color", color);
    addMember(memberSet, "label", label);
    addMember(memberSet, "count", count);
    addMember(memberSet, "name", name);
}

namespace {
// Registered with the library, so the console lists it and documents can name it.
const bool s_registered = ((void)GeometryTestor::s_metaType(), true);
} // namespace

} // namespace Kx
