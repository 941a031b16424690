// The one table of this library's text commands: subject area, name, description shown in help,
// and the script function each is also reachable as. Registered when the library is loaded.
#include <Types/TextCommands/GeometryTextCommands.h>
#include <Types/TextCommands/MaterialTextCommands.h>

#include <base/TextCommandRegistry.h>
#include <base/V8JavaScriptFunctionWrapper.h>

#include <memory>
#include <string_view>

namespace Kx {

namespace {

struct TextCommandDefinition {
    const wchar_t* subjectArea;
    const wchar_t* name;
    const wchar_t* description;
    const char* scriptNamespace;
    const char* scriptName;
    // What the script function takes: %j a JSON value, %f a number.
    const char* argumentFormat;
    std::unique_ptr<TextCommand> (*make)(const TextCommandDefinition&);
};

template <class Command>
std::unique_ptr<TextCommand> make(const TextCommandDefinition& d)
{
    return std::make_unique<Command>(d.subjectArea, d.name, d.description);
}

constexpr const char* s_geometry = "trvGeometry";
constexpr const char* s_modeling = "trvModeling";
constexpr const wchar_t* s_materials = TextCommandSubjectAreaMaterials::name;

// clang-format off
const TextCommandDefinition s_commands[] = {
    {L"Geometry", L"AddVector3dToPoint3d", L"<point JSON> <vector JSON> result=(point + vector)", s_geometry, "addVector3dToPoint3d", "%j%j", &make<TextCmdGeometryAddVector3dToPoint3d>},
    {L"Geometry", L"AddVector3ds", L"<vector1 JSON> <vector2 JSON> vector add result=(vector1 + vector2)", s_geometry, "addVector3ds", "%j%j", &make<TextCmdGeometryAddVector3ds>},
    {L"Geometry", L"AreLine3dsEqual", L"<line1 as JSON> <line2 as JSON> result=(line1 is co-linear to line2)", s_geometry, "areLine3dsEqual", "%j%j", &make<TextCmdGeometryAreLine3dsEqual>},
    {L"Geometry", L"ArePlanesEqual", L"<plane1 as JSON> <plane2 as JSON> result=(plane1 is co-planar to plane2)", s_geometry, "arePlanesEqual", "%j%j", &make<TextCmdGeometryArePlanesEqual>},
    {L"Geometry", L"ArePoint3dEqual", L"<point1 JSON> <point2 JSON> result=(point1 == point2)", s_geometry, "arePoint3dsEqual", "%j%j", &make<TextCmdGeometryArePoint3dEqual>},
    {L"Geometry", L"AreVector3dEqual", L"<vector1 JSON> <vector2 JSON> result=(vector1 == vector2)", s_geometry, "areVector3dsEqual", "%j%j", &make<TextCmdGeometryAreVector3dEqual>},
    {L"Geometry", L"CrossProduct", L"<vector1 JSON> <vector2 JSON> cross product result=(vector1 x vector2)", s_geometry, "crossProduct", "%j%j", &make<TextCmdGeometryCrossProduct>},
    {L"Geometry", L"DotProduct", L"<vector1 JSON> <vector2 JSON> dot product result=(vector1 . vector2)", s_geometry, "dotProduct", "%j%j", &make<TextCmdGeometryDotProduct>},
    {L"Geometry", L"Line3dCreate", L"<Properties> Create a line3d from properties startPoint+endPoint or startPoint+vector or x0,y0,z0,x1,y1,z1", s_geometry, "createLine3d", "%j", &make<TextCmdGeometryLine3dCreate>},
    {L"Geometry", L"Line3dProperties", L"<Line3d> Returns the properties of a line3d", s_geometry, "getLine3dProperties", "%j", &make<TextCmdGeometryLine3dProperties>},
    {L"Geometry", L"PlaneCreate", L"<Properties> Create a plane from properties {pointOnPlane, normal}, {x0,y0,z0,x1,y1,z1} or {a,b,c,d}", s_geometry, "createPlane", "%j", &make<TextCmdGeometryPlaneCreate>},
    {L"Geometry", L"PlaneProperties", L"<Plane> Returns the properties of a plane", s_geometry, "getPlaneProperties", "%j", &make<TextCmdGeometryPlaneProperties>},
    {L"Geometry", L"SubtractPoint3dFromPoint3d", L"<point1 JSON> <point2 JSON> result=(point1 - point2)", s_geometry, "subtractPoint3dFromPoint3d", "%j%j", &make<TextCmdGeometrySubtractPoint3dFromPoint3d>},
    {L"Geometry", L"SubtractVector3ds", L"<vector1 JSON> <vector2 JSON> vector subtract result=(vector1 - vector2)", s_geometry, "subtractVector3dFromVector3d", "%j%j", &make<TextCmdGeometrySubtractVector3ds>},
    {L"Geometry", L"Vector3dMultiply", L"<Vector> <double> Multiply a vector by a scalar", s_geometry, "multiplyVector3d", "%j%f", &make<TextCmdGeometryVector3dMultiply>},
    {L"LocalToWorld", L"Line3d", L"<Local to World Matrix JSON> <Local Line JSON> Converts line geometry from local to world space", s_geometry, "localToWorldLine3d", "%j%j", &make<TextCmdLocalToWorldLine3d>},
    {L"LocalToWorld", L"Plane", L"<Local to World Matrix JSON> <Local Plane JSON> Converts plane geometry from local to world space", s_geometry, "localToWorldPlane", "%j%j", &make<TextCmdLocalToWorldPlane>},
    {L"LocalToWorld", L"Point3d", L"<Local to World Matrix JSON> <Local Point JSON> Converts point geometry from local to world space", s_geometry, "localToWorldPoint3d", "%j%j", &make<TextCmdLocalToWorldPoint3d>},
    {L"LocalToWorld", L"Vector3d", L"<Local to World Matrix JSON> <Local Vector JSON> Converts vector geometry from local to world space", s_geometry, "localToWorldVector3d", "%j%j", &make<TextCmdLocalToWorldVector3d>},
    {L"WorldToLocal", L"Line3d", L"<Local to World Matrix JSON> <World Line JSON> Converts line geometry from world to local space", s_geometry, "worldToLocalLine3d", "%j%j", &make<TextCmdWorldToLocalLine3d>},
    {L"WorldToLocal", L"Plane", L"<Local to World Matrix JSON> <World Plane JSON> Converts Plane geometry from world to local space", s_geometry, "worldToLocalPlane3d", "%j%j", &make<TextCmdWorldToLocalPlane>},
    {L"WorldToLocal", L"Point3d", L"<Local to World Matrix JSON> <World Point JSON> Converts Point geometry from world to local space", s_geometry, "worldToLocalPoint3d", "%j%j", &make<TextCmdWorldToLocalPoint3d>},
    {L"WorldToLocal", L"Vector3d", L"<Local to World Matrix JSON> <World Vector JSON> Converts Vector geometry from world to local space", s_geometry, "worldToLocalVector3d", "%j%j", &make<TextCmdWorldToLocalVector3d>},
    {L"Matrix", L"AreMatricesEqual", L"<matrix1 as JSON> <matrix2 as JSON> result=(matrix1 == matrix2)", s_geometry, "areMatricesEqual", "%j%j", &make<TextCmdMatrixAreMatricesEqual>},
    {L"Matrix", L"Identity", L"Returns the identity matrix", s_geometry, "getIdentityMatrix", "", &make<TextCmdMatrixIdentity>},
    {L"Matrix", L"Multiply", L"<Left Matrix as JSON> <Right Matrix as JSON> Multiplies the 2 matrices", s_geometry, "multiplyMatrices", "%j%j", &make<TextCmdMatrixMultiply>},
    {L"Matrix", L"PopBack", L"<Local to World Matrix JSON> <Leaf Matrix to Remove> Removes a transform from the leaf (i.e. part or local) end", s_geometry, "popBackMatrix", "%j%j", &make<TextCmdMatrixPopBack>},
    {L"Matrix", L"PopFront", L"<Local to World Matrix JSON> <Root Matrix to Remove> Removes a transform from the root (i.e. assembly or world) end", s_geometry, "popFrontMatrix", "%j%j", &make<TextCmdMatrixPopFront>},
    {L"Matrix", L"PushBack", L"<Local to World Matrix JSON> <Leaf Matrix to Add> Adds an extra transform at the leaf (i.e. part or local) end", s_geometry, "pushBackMatrix", "%j%j", &make<TextCmdMatrixPushBack>},
    {L"Matrix", L"PushFront", L"<Local to World Matrix JSON> <Root Matrix to Add> Adds an extra transform at the root (i.e. assembly or world) end", s_geometry, "pushFrontMatrix", "%j%j", &make<TextCmdMatrixPushFront>},
    {L"Matrix", L"SetToRotation", L"<RotationAngle> <RotationAxis> [<RotationPoint>] Sets a matrix to perform the specifed rotation", s_geometry, "getRotationMatrix", "%f%j%j", &make<TextCmdMatrixSetToRotation>},
    {L"Matrix", L"SetToTranslation", L"<TranslationVector> Sets a matrix to be a translation by the specified vector", s_geometry, "getTranslationMatrix", "%j", &make<TextCmdMatrixSetToTranslation>},
    {s_materials, L"FindPhysical", L"[/ById] [Name or Id] Finds and lists the Physical material with the specified name or id", nullptr, nullptr, "", &make<TextCmdMaterialsFindPhysical>},
    {s_materials, L"FindVisual", L"[/ById] [Name or Id] Finds and lists the visual material with the specified name or id", nullptr, nullptr, "", &make<TextCmdMaterialsFindVisual>},
    {s_materials, L"GetMaterialProperties", L"<Material Dictionary> Returns the ambrel properties of a physical or visual material - expensive for a visual material", s_modeling, "getMaterialProperties", "%j", &make<TextCmdMaterialsGetMaterialProperties>},
    {s_materials, L"GetUserNameW", L"<Material Dictionary> Returns the end user name for a physical or visual material", s_modeling, "getMaterialUserName", "%j", &make<TextCmdMaterialsGetUserNameW>},
    {s_materials, L"List", L"Lists all the materials used within the current document", nullptr, nullptr, "", &make<TextCmdMaterialsList>},
    {s_materials, L"ListPhysical", L"[/Raw] Lists all the Physical materials using ambrel as the source, or within the current document", nullptr, nullptr, "", &make<TextCmdMaterialsListPhysical>},
    {s_materials, L"ListReducedLibrary", L"Lists all materials Internal ID and UUID in reduced library", nullptr, nullptr, "", &make<TextCmdMaterialsListReducedLibrary>},
    {s_materials, L"ListVisual", L"[/Raw] Lists all the visual materials using ambrel as the source", nullptr, nullptr, "", &make<TextCmdMaterialsListVisual>},
    {s_materials, L"MaterialLibraryPath", L"List the reduced material library path.", nullptr, nullptr, "", &make<TextCmdMaterialsMaterialLibraryPath>},
    {s_materials, L"WhereUsed", L"[/Visual] <Name or Id> Lists the entities and members of the active document that use the material", nullptr, nullptr, "", &make<TextCmdMaterialsWhereUsed>},
    {s_materials, L"ReplaceAll", L"[/Visual] <Name or Id> <Replacement Name or Id> Replaces the material everywhere in the active document, as one undoable step", nullptr, nullptr, "", &make<TextCmdMaterialsReplaceAll>},
    {s_materials, L"DownloadAssetList", L"Tolm test", nullptr, nullptr, "", &make<TextCmdMaterialsDownloadAssetList>},
    {s_materials, L"DownloadMaterial", L"Tolm test", nullptr, nullptr, "", &make<TextCmdMaterialsDownloadMaterial>},
    {s_materials, L"DownloadMaterialThumbnail", L"Tolm test", nullptr, nullptr, "", &make<TextCmdMaterialsDownloadMaterialThumbnail>},
    {s_materials, L"QueryLibraryCategory", L"Tolm test", nullptr, nullptr, "", &make<TextCmdMaterialsQueryLibraryCategory>},
    {s_materials, L"QueryLibraryContent", L"Tolm test", nullptr, nullptr, "", &make<TextCmdMaterialsQueryLibraryContent>},
    {s_materials, L"PurgeUnused", L"[/DryRun] Removes the materials nothing uses from the active document", nullptr, nullptr, "", &make<TextCmdMaterialsPurgeUnused>},
};
// clang-format on

bool registerAll()
{
    for (const TextCommandDefinition& d : s_commands) {
        std::unique_ptr<TextCommand> command = d.make(d);
        const std::wstring fullName = command->fullName();
        if (TextCommandRegistry::instance().add(std::move(command)) && d.scriptName)
            V8JavaScriptFunctionWrapper::registerFunction(d.scriptNamespace, d.scriptName, fullName, d.argumentFormat);
    }
    return true;
}

// Runs when the library is loaded.
const bool s_registered = registerAll();

} // namespace

} // namespace Kx
