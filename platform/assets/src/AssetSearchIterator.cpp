#include "assets/AssetSearchIterator.h"

#include "assets/IAssetLibrary.h"

namespace telvarin::platform::assets {

AssetSearchIterator::AssetSearchIterator(const IAssetLibrary* library, std::vector<IAssetDefinition*> results,
    std::shared_ptr<const void> snapshot)
    : m_library(library)
    , m_results(std::move(results))
    , m_snapshot(std::move(snapshot))
{
}

void AssetSearchIterator::Next()
{
    if (m_position < m_results.size()) {
        ++m_position;
    }
}

IAssetDefinition* AssetSearchIterator::GetAssetDefinition() const
{
    return IsDone() ? nullptr : m_results[m_position];
}

IAssetInstance* AssetSearchIterator::GetAssetInstance() const
{
    return IsDone() || m_library == nullptr ? nullptr : m_library->CreateAssetInstance(m_results[m_position]);
}

void AssetSearchIterator::Release()
{
    m_library = nullptr;
    m_results.clear();
    m_position = 0;
    m_snapshot.reset();
}

} // namespace telvarin::platform::assets
