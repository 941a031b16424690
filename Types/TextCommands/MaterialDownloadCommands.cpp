// The online library's downloads from the console and scripts: each command starts its request on
// the download manager and answers at once; the end arrives later as a download event (the console
// reports it, see DownloadReport).

#include "Types/TextCommands/MaterialTextCommands.h"

#include <Types/Appearance/ExchangeMaterialManager.h>
#include <Types/Online/OnlineDownloads.h>

#include <string>

namespace Kx {

namespace {

// What every request of these commands asks for: appearances and the materials that carry them.
constexpr const wchar_t* s_materialAppearance = L"materialappearance";

ExchangeMaterialManager& downloads()
{
    // The application's helper reads the online library's address from the environment; made once.
    (void)Types::InstallExchangeMaterialHelper();
    return ExchangeMaterialManager::GetInstance();
}

} // namespace

std::wstring TextCmdMaterialsDownloadAssetList::execute(const TextCommandParameters& parameters) const
{
    const std::wstring label = L"Download Asset List: ";
    if (parameters.parameters() != 2)
        return failure(label + L"no category or asset type specified!");
    downloads().QueryLibraryContent(L"", parameters[0], parameters[1]);
    return label + L"start query content with type " + parameters[0] + L" and category " + parameters[1];
}

std::wstring TextCmdMaterialsDownloadMaterial::execute(const TextCommandParameters& parameters) const
{
    const std::wstring label = L"Material Download: ";
    if (parameters.parameters() != 1)
        return failure(label + L"no material ID specified!");
    downloads().DownloadMaterial(L"", s_materialAppearance, parameters[0].c_str());
    return label + L"start downloading " + parameters[0];
}

std::wstring TextCmdMaterialsDownloadMaterialThumbnail::execute(const TextCommandParameters& parameters) const
{
    const std::wstring label = L"Download Material Thumbnail: ";
    if (parameters.parameters() != 2)
        return failure(label + L"no resource ID specified!");
    downloads().DownloadMaterialThumbnail(L"", s_materialAppearance, parameters[0].c_str());
    return L"start download thumbnail of " + parameters[0];
}

std::wstring TextCmdMaterialsQueryLibraryCategory::execute(const TextCommandParameters&) const
{
    downloads().QueryLibraryCategory(L"", s_materialAppearance, L"");
    return L"Query Library Category: start ...";
}

std::wstring TextCmdMaterialsQueryLibraryContent::execute(const TextCommandParameters& parameters) const
{
    if (parameters.parameters() != 1)
        return failure(L"Quer yLibrary Content: no category specified!");
    downloads().QueryLibraryContent(L"", s_materialAppearance, parameters[0]);
    return L"start query content of " + parameters[0];
}

} // namespace Kx
