#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace telvarin::platform::assets {

class IAssetDefinition;
class IAssetInstance;
class IAssetLibrary;

// The presets a library search found, in the order the search states, walked with a cursor
//   for (auto it = library->SearchBySchema(L"physicalmaterial"); !it.IsDone(); it.Next()) ...
// or a range-for over the definitions. The results stay valid after the library changes (they are
// a snapshot); instances can be made from them while the library is open.
class AssetSearchIterator {
public:
    AssetSearchIterator() = default;
    AssetSearchIterator(const IAssetLibrary* library, std::vector<IAssetDefinition*> results,
        std::shared_ptr<const void> snapshot);

    [[nodiscard]] bool IsEmpty() const { return m_results.empty(); }
    [[nodiscard]] std::size_t GetCount() const { return m_results.size(); }
    [[nodiscard]] bool IsDone() const { return m_position >= m_results.size(); }
    void Next();
    void Reset() { m_position = 0; }
    // The preset at the cursor; null once done.
    [[nodiscard]] IAssetDefinition* GetAssetDefinition() const;
    // A new instance of the preset at the cursor, with a reference for the caller; null once done.
    [[nodiscard]] IAssetInstance* GetAssetInstance() const;
    // Drops the results: the iterator is empty afterwards.
    void Release();

    [[nodiscard]] std::vector<IAssetDefinition*>::const_iterator begin() const { return m_results.begin(); }
    [[nodiscard]] std::vector<IAssetDefinition*>::const_iterator end() const { return m_results.end(); }

private:
    const IAssetLibrary* m_library = nullptr;
    std::vector<IAssetDefinition*> m_results;
    std::size_t m_position = 0;
    std::shared_ptr<const void> m_snapshot;
};

} // namespace telvarin::platform::assets
