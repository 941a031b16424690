#pragma once

#include <Types/Appearance/MaterialTweak.h>
#include <Types/Appearance/internal/ReadMostlyLock.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace telvarin::platform::assets {
class IAssetInstance;
class IAssetLibrary;
} // namespace telvarin::platform::assets

namespace Kx {

// The cached instances last answered by material identifier, found again without the library
// manager's lock: a hit only reads this table, the library's change count and the instance's
// reference count, all safe from any thread, so readers on several threads do not wait for each
// other. Whatever needs the asset API itself (finding the preset, making and tweaking an instance,
// changing libraries) stays under the manager's lock.
//
// A shortcut is only as good as the cache entry it points to: the manager forgets all shortcuts
// before the cache gives back a reference or a library is released, and forgetting waits for the
// readers that are looking.
class InstanceShortcuts {
public:
    InstanceShortcuts() = default;
    InstanceShortcuts(const InstanceShortcuts&) = delete;
    InstanceShortcuts& operator=(const InstanceShortcuts&) = delete;

    // Any thread. The instance remembered for the material, with a reference for the caller; null
    // when there is none, when its library has changed since, or while the shortcuts are changing.
    [[nodiscard]] telvarin::platform::assets::IAssetInstance* find(std::wstring_view libraryId,
        std::string_view materialId, const MaterialTweak& tweak) const;

    // Under the manager's lock. `instance` is the cache's entry for the material as `library` was
    // when its change count was `changeCount`.
    void remember(std::wstring_view libraryId, const telvarin::platform::assets::IAssetLibrary& library,
        std::string_view materialId, const MaterialTweak& tweak,
        telvarin::platform::assets::IAssetInstance* instance, std::uint64_t changeCount);

    // Under the manager's lock; returns once no reader holds a shortcut any more.
    void forgetAll();

private:
    // The tweak's exact bits: stricter than the cache key (which rounds the colour), so two tweaks
    // that share a cache entry may take two shortcuts to it, never one shortcut to two entries.
    using TweakBits = std::array<std::uint32_t, 7>;
    [[nodiscard]] static TweakBits bitsOf(const MaterialTweak& tweak) noexcept;

    struct KeyView {
        std::string_view materialId;
        TweakBits tweak;
    };
    struct Key {
        std::string materialId;
        TweakBits tweak;
    };
    struct KeyHash {
        using is_transparent = void;
        [[nodiscard]] std::size_t operator()(const KeyView& key) const noexcept;
        [[nodiscard]] std::size_t operator()(const Key& key) const noexcept
        {
            return (*this)(KeyView{key.materialId, key.tweak});
        }
    };
    struct KeyEqual {
        using is_transparent = void;
        template <typename Left, typename Right>
        [[nodiscard]] bool operator()(const Left& left, const Right& right) const noexcept
        {
            return left.tweak == right.tweak && std::string_view(left.materialId) == std::string_view(right.materialId);
        }
    };
    struct Shortcut {
        telvarin::platform::assets::IAssetInstance* instance;
        std::uint64_t changeCount;
    };
    struct LibraryShortcuts {
        std::wstring libraryId;
        const telvarin::platform::assets::IAssetLibrary* library;
        std::unordered_map<Key, Shortcut, KeyHash, KeyEqual> shortcuts;
    };

    [[nodiscard]] const LibraryShortcuts* libraryShortcuts(std::wstring_view libraryId) const noexcept;

    // A handful of libraries: a scan over them is faster than hashing their long identifiers.
    std::vector<LibraryShortcuts> m_libraries;
    mutable ReadMostlyLock m_lock;
};

} // namespace Kx
