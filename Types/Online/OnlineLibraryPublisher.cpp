#include "Types/Online/OnlineLibraryPublisher.h"

#include "Types/Online/OnlineFiles.h"
#include "Types/Online/PresetCopy.h"
#include "Types/Online/Sha256.h"

#include <assets/AssetType.h>
#include <assets/IAssetDefinition.h>
#include <assets/IAssetInstance.h>
#include <assets/IAssetLibrary.h>
#include <assets/IAssetLibraryManager.h>
#include <base/Exception.h>
#include <core/Strings.h>

#include <boost/uuid/name_generator_sha1.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <algorithm>
#include <cctype>
#include <map>
#include <memory>

namespace Kx::Types {

namespace {

using telvarin::platform::core::toUTF8;
using telvarin::platform::core::toWide;

using LibraryPtr = Assets::LibraryPtr;

std::string upper(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

// A GUID made from a name: the same name gives the same GUID on every machine.
std::string derivedGuid(const std::string& name)
{
    static const boost::uuids::uuid s_namespace{{0x6b, 0x78, 0x2d, 0x6f, 0x6e, 0x6c, 0x69, 0x6e, 0x65, 0x2d, 0x6c, 0x69,
        0x62, 0x72, 0x61, 0x72}};
    boost::uuids::name_generator_sha1 generate(s_namespace);
    return upper(boost::uuids::to_string(generate(name)));
}

// A stable UUID for a preset that has no exchange GUID: the same library and material give the
// same UUID on every machine.
std::string uuidOf(const Assets::IAssetLibrary& library, const Assets::IAssetDefinition& definition,
    const Assets::IAssetInstance& instance)
{
    Assets::WideString exchange;
    if (instance.GetStringValue(L"ExchangeGUID", exchange)) {
        std::string text = upper(toUTF8(exchange));
        if (!text.empty() && isSafeOnlinePath(text) && text.find('/') == std::string::npos)
            return text;
    }
    return derivedGuid(toUTF8(library.GetLibraryId()) + "/" + definition.GetMaterialId() + "/" + toUTF8(definition.GetVariant()));
}

// A file name of letters, digits and "._-" from a resource name, which may be a path of its own
// (even a hostile one such as "../../x.png"): only its last part is kept.
std::string plainFileName(const Assets::WideString& resource)
{
    std::string name = toUTF8(resource);
    if (const std::size_t slash = name.find_last_of("/\\"); slash != std::string::npos)
        name = name.substr(slash + 1);
    for (char& c : name) {
        const bool plain = std::isalnum(static_cast<unsigned char>(c)) || c == '.' || c == '_' || c == '-';
        if (!plain)
            c = '_';
    }
    if (name.empty() || name == "." || name == "..")
        name = "texture";
    return name;
}

class Publisher {
public:
    explicit Publisher(std::filesystem::path out) : m_out(std::move(out)) {}

    OnlineFile writeFile(const std::string& relative, std::span<const std::uint8_t> bytes)
    {
        const std::filesystem::path target = m_out / relative;
        std::error_code ignored;
        std::filesystem::create_directories(target.parent_path(), ignored);
        if (!writeFileAtomically(target, bytes))
            throw Exception(L"The online library could not be written", target.string());
        m_bytes += bytes.size();
        return {relative, bytes.size(), Sha256::ofBytes(bytes)};
    }

    OnlineFile describeFile(const std::string& relative)
    {
        const std::filesystem::path target = m_out / relative;
        std::error_code error;
        const std::uint64_t size = std::filesystem::file_size(target, error);
        if (error)
            throw Exception(L"The online library could not be written", target.string());
        m_bytes += size;
        return {relative, size, Sha256::ofFile(target)};
    }

    // The preset in a library file of its own, named after its UUID.
    OnlineFile writeMaterialFile(const Assets::IAssetLibrary& from, const Assets::IAssetDefinition& definition,
        const std::string& uuid)
    {
        const std::string relative = "materials/" + uuid + ".tvrnlib";
        const std::filesystem::path target = m_out / relative;
        std::error_code ignored;
        std::filesystem::create_directories(target.parent_path(), ignored);
        std::filesystem::remove(target, ignored);
        const std::unique_ptr<Assets::IAssetLibraryManager> writer = Assets::CreateAssetLibraryManager();
        Assets::AssetError error;
        const LibraryPtr library(writer->CreateAssetLibrary(target.wstring(), Assets::eUserLibrary,
            toWide(derivedGuid("material-file/" + uuid)), &error),
            Assets::ReleaseLibrary{writer.get()});
        bool written = library && writer->SaveAssetLibrary(library.get(), &error);
        if (written) {
            Assets::IWritableAssetLibrary* writable = writer->GetWritableAssetLibrary(library.get(), &error);
            written = writable != nullptr && CopyPreset(from, definition, *writable, error)
                && writer->CommitAssetLibrary(writable, &error);
            if (writable != nullptr)
                writer->ReleaseWritableAssetLibrary(writable);
        }
        if (!written) {
            std::filesystem::remove(target, ignored);
            throw Exception(L"The online library could not be written", relative + ": " + error.message);
        }
        return describeFile(relative);
    }

    OnlineMaterial publish(const Assets::IAssetLibrary& library, const Assets::IAssetDefinition& definition)
    {
        const Assets::InstancePtr instance(library.CreateAssetInstance(&definition));
        if (instance == nullptr)
            throw Exception(L"A preset of the library cannot be read", definition.GetMaterialId() + ": " + library.GetLastError().message);
        OnlineMaterial material;
        material.uuid = uuidOf(library, definition, *instance);
        material.materialId = definition.GetMaterialId();
        material.libraryId = toUTF8(library.GetLibraryId());
        material.name = toUTF8(library.GetAssetName(definition.GetMaterialId(), "eng"));
        material.category = categoryOf(definition);
        material.assetType = toUTF8(Assets::WideString(Assets::AssetTypeOfSchema(definition.GetSchemaName())));
        material.version = std::to_string(definition.GetMajorVersion()) + "." + std::to_string(definition.GetMinorVersion());
        material.file = writeMaterialFile(library, definition, material.uuid);

        const Assets::WideString thumbnail = instance->GetThumbnailImageURI();
        std::map<std::string, int> taken;
        for (const Assets::WideString& resource : EmbeddedResourceNames(*instance)) {
            std::vector<std::uint8_t> bytes;
            if (!library.ReadEmbeddedResource(Assets::WideString(Assets::s_resourcePrefix) + resource, bytes))
                continue;
            std::string name = plainFileName(resource);
            if (const int seen = taken[name]++; seen != 0)
                name = std::to_string(seen) + "-" + name;
            if (Assets::WideString(Assets::s_resourcePrefix) + resource == thumbnail && !material.thumbnail) {
                const std::string extension = std::filesystem::path(name).extension().string();
                material.thumbnail = writeFile("thumbnails/" + material.uuid + (isSafeOnlinePath("x" + extension) ? extension : ""), bytes);
            } else {
                const std::string id = material.uuid + "/" + name;
                material.textures.push_back({id, writeFile("textures/" + id, bytes)});
            }
        }
        return material;
    }

    // Categories are the presets' own (English keys); a subcategory is listed below its category.
    std::string categoryOf(const Assets::IAssetDefinition& definition)
    {
        const std::string category = toUTF8(definition.GetCategory());
        const std::string subcategory = toUTF8(definition.GetSubcategory());
        if (category.empty())
            return {};
        ++m_categories[{category, ""}];
        if (subcategory.empty())
            return category;
        ++m_categories[{category + "/" + subcategory, category}];
        return category + "/" + subcategory;
    }

    std::vector<OnlineCategory> categories() const
    {
        std::vector<OnlineCategory> result;
        for (const auto& [key, count] : m_categories) {
            const std::string& id = key.first;
            const std::string name = key.second.empty() ? id : id.substr(key.second.size() + 1);
            result.push_back({id, name, key.second, count});
        }
        return result;
    }

    [[nodiscard]] std::uint64_t bytes() const { return m_bytes; }

private:
    std::filesystem::path m_out;
    std::uint64_t m_bytes = 0;
    std::map<std::pair<std::string, std::string>, std::uint32_t> m_categories;
};

} // namespace

PublishedOnlineLibrary PublishOnlineLibrary(const std::vector<std::filesystem::path>& libraryFiles,
    const std::filesystem::path& out, const std::function<void(std::size_t, std::size_t)>& progress)
{
    const std::unique_ptr<Assets::IAssetLibraryManager> reader = Assets::CreateAssetLibraryManager();
    std::vector<LibraryPtr> libraries;
    std::size_t total = 0;
    for (const std::filesystem::path& file : libraryFiles) {
        Assets::AssetError error;
        LibraryPtr library(reader->OpenAssetLibrary(std::filesystem::absolute(file).wstring(), &error), Assets::ReleaseLibrary{reader.get()});
        if (!library)
            throw Exception(L"The material library could not be opened", file.string() + ": " + error.message);
        total += library->GetAssetCount();
        libraries.push_back(std::move(library));
    }
    Publisher publisher(out);
    PublishedOnlineLibrary published;
    std::size_t done = 0;
    for (const LibraryPtr& library : libraries) {
        for (const Assets::IAssetDefinition* definition : library->GetAssetDefinitions()) {
            OnlineMaterial material = publisher.publish(*library, *definition);
            if (published.index.findMaterial(material.uuid) != nullptr)
                throw Exception(L"Two presets would be published under one UUID", material.uuid);
            published.index.materials.push_back(std::move(material));
            if (progress)
                progress(++done, total);
        }
    }
    std::sort(published.index.materials.begin(), published.index.materials.end(),
        [](const OnlineMaterial& left, const OnlineMaterial& right) { return left.uuid < right.uuid; });
    published.index.categories = publisher.categories();
    published.index.libraryId = libraries.size() == 1 ? toUTF8(libraries.front()->GetLibraryId()) : std::string();
    std::string names;
    for (const LibraryPtr& library : libraries)
        names += (names.empty() ? "" : ", ") + toUTF8(library->GetName());
    published.index.name = names;
    const std::string text = writeOnlineLibraryIndex(published.index);
    published.bytes = publisher.bytes() + text.size();
    if (!writeFileAtomically(out / "index.json", text))
        throw Exception(L"The online library could not be written", (out / "index.json").string());
    return published;
}

} // namespace Kx::Types
