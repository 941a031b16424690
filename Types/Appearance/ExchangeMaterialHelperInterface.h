#pragma once

#include <string>

namespace Kx {

// Where a material of the online library stands on this machine.
enum ExMaterialStatus {
    eExMaterialUnknown = 0,       // the online library does not list it (or is not known yet)
    eExMaterialNotDownloaded = 1,
    eExMaterialDownloading = 2,
    eExMaterialDownloaded = 3,
    eExMaterialUpdateAvailable = 4, // downloaded, and the online library has another version
};

// What the download manager asks of the download helper that talks to the online material
// library. The order of the virtual operations is part of the interface: hosts built against it
// call them by slot. The defaults do nothing (answer false); the application's helper
// (Types::CMExchangeMaterialHelper) overrides them. Every operation is called on the UI thread,
// and the helper reports each end of work back to ExchangeMaterialManager on the UI thread.
class ExchangeMaterialHelperInterface {
public:
    virtual ~ExchangeMaterialHelperInterface() = default;

    virtual void DownloadMaterial(const std::wstring& libraryId, const std::wstring& uuid, bool environment) {}
    virtual void DownloadTexture(const std::wstring& libraryId, const std::wstring& uuid) {}
    virtual void DownloadThumbnail(const std::wstring& libraryId, const std::wstring& uuid) {}
    virtual void CancelDownloadMaterial(const std::wstring& libraryId, const std::wstring& uuid) {}
    [[nodiscard]] virtual bool IsMaterialDownloaded(const std::wstring& uuid) { return false; }
    [[nodiscard]] virtual ExMaterialStatus QueryMaterialStatus(const std::wstring& libraryId, const std::wstring& uuid)
    {
        return eExMaterialUnknown;
    }
    // The materials of `category` (every category when empty) of `assetType` (every type when
    // empty) whose names contain `searchText`; `refresh` asks the online library again instead of
    // answering from the index read last.
    virtual void QueryLibraryContent(const std::wstring& libraryId, const std::wstring& assetType,
        const std::wstring& category, const std::wstring& searchText, bool refresh) {}
    // The categories below `parentCategory` (the top level when empty).
    virtual void QueryLibraryCategory(const std::wstring& libraryId, const std::wstring& assetType,
        const std::wstring& parentCategory, bool refresh) {}
    virtual void userId(const std::wstring& id) { m_userId = id; }
    [[nodiscard]] virtual std::wstring& userId() { return m_userId; }
    [[nodiscard]] virtual std::wstring getUserSpecifiedAccessToken() { return {}; }
    virtual bool setAccessToken() { return false; }

private:
    std::wstring m_userId;
};

} // namespace Kx
