#pragma once

#include <base/BubbledEvent.h>

#include <cstdint>
#include <string>
#include <vector>

namespace telvarin::platform::assets {
class IAssetInstance;
}

namespace Kx {

// News of the online material library: a download, a query or a cancellation finished, or a
// material was published. The download manager fills the fields its kind of news needs; the
// others keep their empty defaults.
class ExchangeMaterialEvent : public BubbledEvent {
public:
    // What finished. The values are the download manager's and stay as they are; 1 and 4 are
    // set by nothing and have no name.
    enum EDownloadType {
        eDownloadMaterial = 0,
        // Kept by the download manager for the texture downloads of a material; announced as
        // eTexturesResolved once all of them are in.
        eDownloadTexture = 2,
        eTexturesResolved = 3,
        eDownloadThumbnail = 5,
        eQueryCategoryList = 6,
        eQuerymaterialInfoList = 7,
        eCancelDownload = 8,
    };

    // One material of the online library as its content query describes it.
    struct MaterialInfo {
        std::wstring materialId; // the material's UUID, what DownloadMaterial takes
        std::wstring libraryId;
        std::wstring name;
        std::wstring category;
        std::wstring assetType; // "physicalmaterial", "materialappearance", "environment"
        std::wstring description;
        std::wstring thumbnailUrl;
        std::uint64_t sizeInBytes = 0; // of the download, textures included
        std::wstring version;
        bool downloaded = false; // a copy is already in the user's library
        friend bool operator==(const MaterialInfo&, const MaterialInfo&) = default;
    };

    // One category of the online library as its category query describes it.
    struct CategoryInfo {
        std::wstring categoryId;
        std::wstring name;
        std::wstring parentId; // empty for a top-level category
        std::uint32_t materialCount = 0;
        std::wstring thumbnailUrl;
        friend bool operator==(const CategoryInfo&, const CategoryInfo&) = default;
    };

    explicit ExchangeMaterialEvent(ETiming timing) noexcept : BubbledEvent(timing) {}
    ExchangeMaterialEvent(const ExchangeMaterialEvent&) = default;
    ExchangeMaterialEvent& operator=(const ExchangeMaterialEvent&) = default;
    ~ExchangeMaterialEvent() override;

    [[nodiscard]] EDownloadType GetDownloadType() const noexcept { return m_downloadType; }
    void SetDownloadType(EDownloadType type) noexcept { m_downloadType = type; }
    [[nodiscard]] bool GetIsDownloadSuccess() const noexcept { return m_downloadSuccess; }
    void SetIsDownloadSuccess(bool success) noexcept { m_downloadSuccess = success; }
    [[nodiscard]] const std::wstring& GetDownloadMessage() const noexcept { return m_downloadMessage; }
    void SetDownloadMessage(const std::wstring& message) { m_downloadMessage = message; }
    // The event holds no reference: the instance lives while the event is delivered, and a site
    // that keeps it takes a reference of its own.
    [[nodiscard]] telvarin::platform::assets::IAssetInstance* GetAssetInstance() const noexcept { return m_assetInstance; }
    void SetIAssetInstance(telvarin::platform::assets::IAssetInstance* instance) noexcept { m_assetInstance = instance; }
    [[nodiscard]] const std::wstring& GetLibraryID() const noexcept { return m_libraryId; }
    void SetLibraryID(const std::wstring& libraryId) { m_libraryId = libraryId; }
    [[nodiscard]] const std::wstring& GetMaterialID() const noexcept { return m_materialId; }
    void SetMaterialID(const std::wstring& materialId) { m_materialId = materialId; }
    [[nodiscard]] const std::wstring& GetAssetType() const noexcept { return m_assetType; }
    void SetAssetType(const std::wstring& assetType) { m_assetType = assetType; }
    [[nodiscard]] const std::wstring& GetCategory() const noexcept { return m_category; }
    void SetCategory(const std::wstring& category) { m_category = category; }
    [[nodiscard]] std::vector<MaterialInfo>& GetMaterialInfoList() noexcept { return m_materialInfoList; }
    [[nodiscard]] const std::vector<MaterialInfo>& GetMaterialInfoList() const noexcept { return m_materialInfoList; }
    void SetMaterialInfoList(const std::vector<MaterialInfo>& list) { m_materialInfoList = list; }
    [[nodiscard]] std::vector<CategoryInfo>& GetCategoryList() noexcept { return m_categoryList; }
    [[nodiscard]] const std::vector<CategoryInfo>& GetCategoryList() const noexcept { return m_categoryList; }
    void SetCategoryList(const std::vector<CategoryInfo>& list) { m_categoryList = list; }

private:
    EDownloadType m_downloadType = eDownloadMaterial;
    bool m_downloadSuccess = false;
    std::wstring m_downloadMessage;
    telvarin::platform::assets::IAssetInstance* m_assetInstance = nullptr;
    std::wstring m_libraryId;
    std::wstring m_materialId;
    std::wstring m_assetType;
    std::wstring m_category;
    std::vector<MaterialInfo> m_materialInfoList;
    std::vector<CategoryInfo> m_categoryList;
};

} // namespace Kx
