#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Kx::Types {

// One file of an online library: where it lies below the library's base URL, how many bytes it
// has and their SHA-256 (lower-case hex). A download is installed only when both match.
struct OnlineFile {
    std::string path;
    std::uint64_t size = 0;
    std::string sha256;
    friend bool operator==(const OnlineFile&, const OnlineFile&) = default;
};

// A texture image of a material, also offered on its own. Its id is "<material UUID>/<file name>".
struct OnlineTexture {
    std::string id;
    OnlineFile file;
    friend bool operator==(const OnlineTexture&, const OnlineTexture&) = default;
};

struct OnlineMaterial {
    std::string uuid;        // what DownloadMaterial takes (the preset's "ExchangeGUID")
    std::string materialId;  // the preset's id in its library
    std::string libraryId;   // the library it was published from
    std::string name;        // English
    std::string category;    // a category id, empty for none
    std::string assetType;   // "physicalmaterial", "materialappearance", "environment"
    std::string description;
    std::string version;
    OnlineFile file;         // a library file holding the preset and what it connects
    std::optional<OnlineFile> thumbnail;
    std::vector<OnlineTexture> textures;
    friend bool operator==(const OnlineMaterial&, const OnlineMaterial&) = default;
};

struct OnlineCategory {
    std::string id;
    std::string name;
    std::string parent; // empty at the top
    std::uint32_t materialCount = 0;
    friend bool operator==(const OnlineCategory&, const OnlineCategory&) = default;
};

// The index.json of an online library (docs/formats.md, "Online material library").
struct OnlineLibraryIndex {
    static constexpr int s_version = 1;
    std::string libraryId;
    std::string name;
    std::vector<OnlineCategory> categories;
    std::vector<OnlineMaterial> materials;

    [[nodiscard]] const OnlineMaterial* findMaterial(std::string_view uuid) const;
    // The texture with this id and the material that lists it, or nulls.
    [[nodiscard]] std::pair<const OnlineMaterial*, const OnlineTexture*> findTexture(std::string_view id) const;
    friend bool operator==(const OnlineLibraryIndex&, const OnlineLibraryIndex&) = default;
};

// What an index may hold at most: a hostile server must not make a reader allocate without bound.
struct OnlineIndexLimits {
    std::size_t maxBytes = 64u << 20;
    std::size_t maxMaterials = 100000;
    std::size_t maxCategories = 10000;
    std::size_t maxTexturesPerMaterial = 256;
    std::size_t maxTextLength = 4096;
    std::uint64_t maxFileSize = std::uint64_t{4} << 30;
};

// Reads index.json. Throws Kx::Exception naming the first problem: not JSON, another format or
// version, a missing or mistyped member, a path that is absolute, climbs out with "..", or holds
// characters other than letters, digits and "._-/", a malformed hash, a repeated UUID, or more than
// `limits` allow.
[[nodiscard]] OnlineLibraryIndex readOnlineLibraryIndex(std::string_view text, const OnlineIndexLimits& limits = {});
// The text of an index: members in a fixed order, materials and categories in the order given, so
// equal indexes give equal bytes.
[[nodiscard]] std::string writeOnlineLibraryIndex(const OnlineLibraryIndex& index);
// A relative path of letters, digits and "._-" in segments separated by "/", none of them empty,
// "." or "..".
[[nodiscard]] bool isSafeOnlinePath(std::string_view path);

} // namespace Kx::Types
