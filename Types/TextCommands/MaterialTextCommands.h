#pragma once
// The material text commands: finding and listing the materials of the libraries and of the open
// documents, the properties and names of a material given as its value's JSON (a material
// dictionary), the online library's downloads, and the housekeeping of the active document's
// materials (where used, replace everywhere, purge the unused). Their names, descriptions and
// script names are in the one table of TextCommandTable.cpp.
#include <base/TextCommand.h>

namespace Kx {

// The subject area of the material commands.
struct TextCommandSubjectAreaMaterials {
    static constexpr const wchar_t* name = L"Materials";
};

KX_TEXT_COMMAND_CLASS(TextCmdMaterialsFindPhysical);
KX_TEXT_COMMAND_CLASS(TextCmdMaterialsFindVisual);
KX_TEXT_COMMAND_CLASS(TextCmdMaterialsGetMaterialProperties);
KX_TEXT_COMMAND_CLASS(TextCmdMaterialsGetUserNameW);
KX_TEXT_COMMAND_CLASS(TextCmdMaterialsList);
KX_TEXT_COMMAND_CLASS(TextCmdMaterialsListPhysical);
KX_TEXT_COMMAND_CLASS(TextCmdMaterialsListReducedLibrary);
KX_TEXT_COMMAND_CLASS(TextCmdMaterialsListVisual);
KX_TEXT_COMMAND_CLASS(TextCmdMaterialsMaterialLibraryPath);
KX_TEXT_COMMAND_CLASS(TextCmdMaterialsWhereUsed);
KX_TEXT_COMMAND_CLASS(TextCmdMaterialsReplaceAll);
KX_TEXT_COMMAND_CLASS(TextCmdMaterialsPurgeUnused);
KX_TEXT_COMMAND_CLASS(TextCmdMaterialsDownloadAssetList);
KX_TEXT_COMMAND_CLASS(TextCmdMaterialsDownloadMaterial);
KX_TEXT_COMMAND_CLASS(TextCmdMaterialsDownloadMaterialThumbnail);
KX_TEXT_COMMAND_CLASS(TextCmdMaterialsQueryLibraryCategory);
KX_TEXT_COMMAND_CLASS(TextCmdMaterialsQueryLibraryContent);

} // namespace Kx
