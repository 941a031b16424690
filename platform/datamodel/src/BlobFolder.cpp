#include "datamodel/BlobFolder.h"

#include "datamodel/Blob.h"
#include "datamodel/BlobPart.h"

#include <base/Assert.h>

#include <algorithm>
#include <set>

namespace Kx {

namespace {

constexpr std::size_t kMaxLevelLength = 100;
constexpr std::size_t kMaxNameLength = 255;
constexpr std::size_t kMaxKindLength = 16;

bool isNameCharacter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' || c == '_' || c == '-';
}

bool isValidLevel(std::string_view level)
{
    return !level.empty() && level.size() <= kMaxLevelLength && level.front() != '.'
        && std::all_of(level.begin(), level.end(), isNameCharacter);
}

// "a/b/c" is inside "a" and "a/b"; everything is inside "".
bool isInside(std::string_view name, std::string_view folder)
{
    return folder.empty() || (name.size() > folder.size() && name.starts_with(folder) && name[folder.size()] == '/');
}

} // namespace

BlobFolder::BlobFolder(Document* asset, bool multiLevel)
    : m_asset(asset)
    , m_multiLevel(multiLevel)
{
}

BlobFolder::~BlobFolder() = default;

bool BlobFolder::isValidPartName(std::string_view name, bool multiLevel)
{
    if (name.empty() || name.size() > kMaxNameLength)
        return false;
    std::size_t start = 0;
    while (true) {
        const std::size_t slash = name.find('/', start);
        if (slash != std::string_view::npos && !multiLevel)
            return false;
        if (!isValidLevel(name.substr(start, slash == std::string_view::npos ? std::string_view::npos : slash - start)))
            return false;
        if (slash == std::string_view::npos)
            return true;
        start = slash + 1;
    }
}

bool BlobFolder::isValidKind(std::string_view kind)
{
    return !kind.empty() && kind.size() <= kMaxKindLength && std::all_of(kind.begin(), kind.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    });
}

std::map<std::string, BlobPart*> BlobFolder::blobParts() const
{
    return blobParts("");
}

std::map<std::string, BlobPart*> BlobFolder::blobParts(std::string_view folder) const
{
    std::map<std::string, BlobPart*> parts;
    for (const auto& [name, part] : m_parts) {
        if (isInside(name, folder))
            parts.emplace(name, part.get());
    }
    return parts;
}

std::vector<std::string> BlobFolder::subFolders(std::string_view folder) const
{
    std::set<std::string> names;
    const std::size_t skip = folder.empty() ? 0 : folder.size() + 1;
    for (const auto& [name, part] : m_parts) {
        if (!isInside(name, folder))
            continue;
        const std::size_t slash = name.find('/', skip);
        if (slash != std::string::npos)
            names.insert(name.substr(skip, slash - skip));
    }
    return {names.begin(), names.end()};
}

BlobPart* BlobFolder::findBlobPart(std::string_view name) const
{
    const auto found = m_parts.find(name);
    return found == m_parts.end() ? nullptr : found->second.get();
}

BlobPart* BlobFolder::makeBlobPart(std::string_view baseName, std::string_view kind)
{
    const std::string base(baseName);
    const bool valid = isValidKind(kind) && isValidPartName(base + "." + std::string(kind), m_multiLevel);
    KX_ASSERT(valid);
    if (!valid)
        return nullptr;
    std::string name = base + "." + std::string(kind);
    for (unsigned suffix = 2; m_parts.count(name) != 0; ++suffix)
        name = base + "-" + std::to_string(suffix) + "." + std::string(kind);
    if (!isValidPartName(name, m_multiLevel))
        return nullptr;
    return addBlobPart(std::move(name), std::string(kind));
}

bool BlobFolder::deleteBlobPart(std::string_view name)
{
    const auto found = m_parts.find(name);
    if (found == m_parts.end())
        return false;
    m_parts.erase(found);
    return true;
}

BlobPart* BlobFolder::addBlobPart(std::string name, std::string kind)
{
    if (!isValidPartName(name, m_multiLevel) || !isValidKind(kind) || m_parts.count(name) != 0)
        return nullptr;
    auto part = std::make_unique<BlobPart>(name, std::move(kind));
    BlobPart* made = part.get();
    m_parts.emplace(std::move(name), std::move(part));
    return made;
}

} // namespace Kx
