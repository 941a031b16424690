#include "Types/Online/OnlineLibraryIndex.h"

#include <base/Exception.h>

#include <boost/json.hpp>

#include <algorithm>
#include <set>

namespace Kx::Types {

namespace {

namespace json = boost::json;

constexpr std::string_view s_format = "kx-online-material-library";

[[noreturn]] void refuse(const std::string& detail)
{
    throw Exception(L"The online library index cannot be read", detail);
}

// Reads the members of one JSON object, naming where a problem is.
class Reader {
public:
    Reader(const json::value& value, std::string where, const OnlineIndexLimits& limits)
        : m_where(std::move(where)), m_limits(limits)
    {
        if (!value.is_object())
            refuse(m_where + " is not an object");
        m_object = &value.as_object();
    }

    [[nodiscard]] const json::value* find(std::string_view key) const { return m_object->if_contains(key); }

    [[nodiscard]] std::string text(std::string_view key, bool required = true) const
    {
        const json::value* value = find(key);
        if (value == nullptr) {
            if (required)
                refuse(m_where + " has no \"" + std::string(key) + "\"");
            return {};
        }
        if (!value->is_string())
            refuse(m_where + "." + std::string(key) + " is not a string");
        if (value->as_string().size() > m_limits.maxTextLength)
            refuse(m_where + "." + std::string(key) + " is too long");
        return std::string(value->as_string());
    }

    [[nodiscard]] std::uint64_t number(std::string_view key, std::uint64_t max) const
    {
        const json::value* value = find(key);
        if (value == nullptr)
            refuse(m_where + " has no \"" + std::string(key) + "\"");
        std::uint64_t result = 0;
        if (value->is_uint64())
            result = value->as_uint64();
        else if (value->is_int64() && value->as_int64() >= 0)
            result = static_cast<std::uint64_t>(value->as_int64());
        else
            refuse(m_where + "." + std::string(key) + " is not a whole number");
        if (result > max)
            refuse(m_where + "." + std::string(key) + " is too large");
        return result;
    }

    [[nodiscard]] const json::array& array(std::string_view key, std::size_t maxItems, bool required = true) const
    {
        static const json::array s_none;
        const json::value* value = find(key);
        if (value == nullptr) {
            if (required)
                refuse(m_where + " has no \"" + std::string(key) + "\"");
            return s_none;
        }
        if (!value->is_array())
            refuse(m_where + "." + std::string(key) + " is not an array");
        if (value->as_array().size() > maxItems)
            refuse(m_where + "." + std::string(key) + " has more than " + std::to_string(maxItems) + " items");
        return value->as_array();
    }

    [[nodiscard]] OnlineFile file(std::string_view key) const
    {
        if (find(key) == nullptr)
            refuse(m_where + " has no \"" + std::string(key) + "\"");
        const Reader member(*find(key), m_where + "." + std::string(key), m_limits);
        OnlineFile result{member.text("path"), member.number("size", m_limits.maxFileSize), member.text("sha256")};
        if (!isSafeOnlinePath(result.path))
            refuse(m_where + "." + std::string(key) + ".path is not a safe relative path: " + result.path);
        const bool hex = result.sha256.size() == 64
            && std::all_of(result.sha256.begin(), result.sha256.end(),
                [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); });
        if (!hex)
            refuse(m_where + "." + std::string(key) + ".sha256 is not 64 lower-case hex digits");
        return result;
    }

    [[nodiscard]] const std::string& where() const { return m_where; }

private:
    const json::object* m_object = nullptr;
    std::string m_where;
    const OnlineIndexLimits& m_limits;
};

OnlineMaterial readMaterial(const Reader& item, const OnlineIndexLimits& limits)
{
    OnlineMaterial material{item.text("uuid"), item.text("materialId"), item.text("libraryId"), item.text("name"),
        item.text("category", false), item.text("assetType"), item.text("description", false),
        item.text("version", false), item.file("file"), std::nullopt, {}};
    if (material.uuid.empty() || !isSafeOnlinePath(material.uuid) || material.uuid.find('/') != std::string::npos)
        refuse(item.where() + ".uuid is not a plain name: " + material.uuid);
    if (const json::value* thumbnail = item.find("thumbnail"); thumbnail != nullptr && !thumbnail->is_null())
        material.thumbnail = item.file("thumbnail");
    const json::array& textures = item.array("textures", limits.maxTexturesPerMaterial, false);
    for (std::size_t index = 0; index < textures.size(); ++index) {
        const Reader texture(textures[index], item.where() + ".textures[" + std::to_string(index) + "]", limits);
        OnlineTexture read{texture.text("id"), texture.file("file")};
        if (!read.id.starts_with(material.uuid + "/") || !isSafeOnlinePath(read.id))
            refuse(texture.where() + ".id does not name a texture of its material: " + read.id);
        material.textures.push_back(std::move(read));
    }
    return material;
}

json::object fileObject(const OnlineFile& file)
{
    return json::object{{"path", file.path}, {"size", file.size}, {"sha256", file.sha256}};
}

} // namespace

bool isSafeOnlinePath(std::string_view path)
{
    if (path.empty() || path.size() > 1024)
        return false;
    std::size_t start = 0;
    while (start <= path.size()) {
        const std::size_t end = std::min(path.find('/', start), path.size());
        const std::string_view segment = path.substr(start, end - start);
        if (segment.empty() || segment == "." || segment == "..")
            return false;
        for (const char c : segment) {
            const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.'
                || c == '_' || c == '-';
            if (!plain)
                return false;
        }
        start = end + 1;
    }
    return true;
}

const OnlineMaterial* OnlineLibraryIndex::findMaterial(std::string_view uuid) const
{
    const auto found = std::find_if(materials.begin(), materials.end(), [&](const OnlineMaterial& m) { return m.uuid == uuid; });
    return found == materials.end() ? nullptr : &*found;
}

std::pair<const OnlineMaterial*, const OnlineTexture*> OnlineLibraryIndex::findTexture(std::string_view id) const
{
    const OnlineMaterial* material = findMaterial(id.substr(0, id.find('/')));
    if (material != nullptr) {
        for (const OnlineTexture& texture : material->textures) {
            if (texture.id == id)
                return {material, &texture};
        }
    }
    return {nullptr, nullptr};
}

OnlineLibraryIndex readOnlineLibraryIndex(std::string_view text, const OnlineIndexLimits& limits)
{
    if (text.size() > limits.maxBytes)
        refuse("index.json is larger than " + std::to_string(limits.maxBytes) + " bytes");
    json::parse_options options;
    options.max_depth = 16; // the index is four levels deep; a deeper one is hostile
    boost::system::error_code error;
    const json::value root = json::parse(text, error, {}, options);
    if (error)
        refuse("index.json is not JSON: " + error.message());
    const Reader top(root, "index", limits);
    if (top.text("format") != s_format)
        refuse("index.json is not an online material library index");
    if (const std::uint64_t version = top.number("version", 1u << 30); version != OnlineLibraryIndex::s_version)
        refuse("index.json has version " + std::to_string(version) + "; this program reads version "
            + std::to_string(OnlineLibraryIndex::s_version));

    OnlineLibraryIndex index;
    index.libraryId = top.text("libraryId");
    index.name = top.text("name");
    const json::array& categories = top.array("categories", limits.maxCategories);
    for (std::size_t item = 0; item < categories.size(); ++item) {
        const Reader category(categories[item], "index.categories[" + std::to_string(item) + "]", limits);
        index.categories.push_back({category.text("id"), category.text("name"), category.text("parent", false),
            static_cast<std::uint32_t>(category.number("materialCount", limits.maxMaterials))});
    }
    const json::array& materials = top.array("materials", limits.maxMaterials);
    std::set<std::string> uuids;
    index.materials.reserve(materials.size());
    for (std::size_t item = 0; item < materials.size(); ++item) {
        OnlineMaterial material = readMaterial(Reader(materials[item], "index.materials[" + std::to_string(item) + "]", limits), limits);
        if (!uuids.insert(material.uuid).second)
            refuse("index.json lists the material " + material.uuid + " twice");
        index.materials.push_back(std::move(material));
    }
    return index;
}

std::string writeOnlineLibraryIndex(const OnlineLibraryIndex& index)
{
    json::array categories;
    for (const OnlineCategory& category : index.categories) {
        categories.push_back(json::object{{"id", category.id}, {"name", category.name}, {"parent", category.parent},
            {"materialCount", category.materialCount}});
    }
    json::array materials;
    for (const OnlineMaterial& material : index.materials) {
        json::array textures;
        for (const OnlineTexture& texture : material.textures)
            textures.push_back(json::object{{"id", texture.id}, {"file", fileObject(texture.file)}});
        json::object object{{"uuid", material.uuid}, {"materialId", material.materialId}, {"libraryId", material.libraryId},
            {"name", material.name}, {"category", material.category}, {"assetType", material.assetType},
            {"description", material.description}, {"version", material.version}, {"file", fileObject(material.file)}};
        object["thumbnail"] = material.thumbnail ? json::value(fileObject(*material.thumbnail)) : json::value(nullptr);
        object["textures"] = std::move(textures);
        materials.push_back(std::move(object));
    }
    const json::object root{{"format", s_format}, {"version", OnlineLibraryIndex::s_version}, {"libraryId", index.libraryId},
        {"name", index.name}, {"categories", std::move(categories)}, {"materials", std::move(materials)}};
    return json::serialize(root) + "\n";
}

} // namespace Kx::Types
