#include "Types/Appearance/internal/InstanceShortcuts.h"

#include <assets/IAssetInstance.h>
#include <assets/IAssetLibrary.h>
#include <base/Assert.h>

#include <algorithm>
#include <bit>
#include <functional>

namespace Kx {

namespace Assets = telvarin::platform::assets;

InstanceShortcuts::TweakBits InstanceShortcuts::bitsOf(const MaterialTweak& tweak) noexcept
{
    return {static_cast<std::uint32_t>(tweak.kind), std::bit_cast<std::uint32_t>(tweak.color.red()),
        std::bit_cast<std::uint32_t>(tweak.color.green()), std::bit_cast<std::uint32_t>(tweak.color.blue()),
        std::bit_cast<std::uint32_t>(tweak.color.alpha()), std::bit_cast<std::uint32_t>(tweak.scale),
        std::bit_cast<std::uint32_t>(tweak.rotation)};
}

std::size_t InstanceShortcuts::KeyHash::operator()(const KeyView& key) const noexcept
{
    std::size_t hash = std::hash<std::string_view>{}(key.materialId);
    for (std::uint32_t word : key.tweak) {
        hash = (hash ^ word) * 0x9E3779B97F4A7C15ULL;
    }
    return hash ^ (hash >> 29);
}

const InstanceShortcuts::LibraryShortcuts* InstanceShortcuts::libraryShortcuts(std::wstring_view libraryId) const noexcept
{
    for (const LibraryShortcuts& library : m_libraries) {
        if (library.libraryId == libraryId) {
            return &library;
        }
    }
    return nullptr;
}

Assets::IAssetInstance* InstanceShortcuts::find(std::wstring_view libraryId, std::string_view materialId,
    const MaterialTweak& tweak) const
{
    const ReadMostlyLock::Reader reader(m_lock);
    if (!reader) {
        return nullptr;
    }
    const LibraryShortcuts* library = libraryShortcuts(libraryId);
    if (library == nullptr) {
        return nullptr;
    }
    const auto found = library->shortcuts.find(KeyView{materialId, bitsOf(tweak)});
    if (found == library->shortcuts.end() || library->library->GetChangeCount() != found->second.changeCount) {
        return nullptr;
    }
    // The cache's reference keeps the instance alive while the reader is in.
    Assets::IAssetInstance* instance = found->second.instance;
    KX_ASSERT(instance->GetReferenceCount() > 0);
    instance->AddRef();
    return instance;
}

void InstanceShortcuts::remember(std::wstring_view libraryId, const Assets::IAssetLibrary& library,
    std::string_view materialId, const MaterialTweak& tweak, Assets::IAssetInstance* instance,
    std::uint64_t changeCount)
{
    const ReadMostlyLock::Writer writer(m_lock);
    auto shortcuts = std::find_if(m_libraries.begin(), m_libraries.end(),
        [&](const LibraryShortcuts& known) { return known.libraryId == libraryId; });
    if (shortcuts == m_libraries.end()) {
        shortcuts = m_libraries.insert(m_libraries.end(), LibraryShortcuts{std::wstring(libraryId), &library, {}});
    } else if (shortcuts->library != &library) {
        // Another library answers to the identifier now: what the old one gave is no guide.
        shortcuts->library = &library;
        shortcuts->shortcuts.clear();
    }
    shortcuts->shortcuts.insert_or_assign(Key{std::string(materialId), bitsOf(tweak)}, Shortcut{instance, changeCount});
}

void InstanceShortcuts::forgetAll()
{
    const ReadMostlyLock::Writer writer(m_lock);
    m_libraries.clear();
}

} // namespace Kx
