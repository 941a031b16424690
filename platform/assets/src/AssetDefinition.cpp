#include "AssetDefinition.h"

#include <algorithm>

namespace telvarin::platform::assets {

namespace {

wchar_t foldAscii(wchar_t c)
{
    return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c;
}

} // namespace

bool SchemaEquals(std::wstring_view left, std::wstring_view right)
{
    return left.size() == right.size() &&
           std::equal(left.begin(), left.end(), right.begin(), [](wchar_t a, wchar_t b) { return foldAscii(a) == foldAscii(b); });
}

const WideString* Catalogue::intern(std::string_view utf8)
{
    auto [position, inserted] = m_pool.try_emplace(std::string(utf8));
    if (inserted) {
        position->second = core::toWide(utf8);
    }
    return &position->second;
}

const WideString* Catalogue::intern(const WideString& text)
{
    return intern(std::string_view(core::toUTF8(text)));
}

AssetDefinition& Catalogue::add()
{
    AssetDefinition& definition = definitions.emplace_back();
    definition.catalogue = this;
    return definition;
}

std::shared_ptr<const AssetDefinition> Catalogue::share(const AssetDefinition& definition) const
{
    return std::shared_ptr<const AssetDefinition>(shared_from_this(), &definition);
}

const std::vector<AssetDefinition*>& Catalogue::byMaterialId(const UTF8String& materialId) const
{
    std::call_once(m_indexOnce, [this] {
        for (const AssetDefinition& definition : definitions) {
            m_byMaterialId[definition.materialId].push_back(const_cast<AssetDefinition*>(&definition));
        }
    });
    static const std::vector<AssetDefinition*> s_none;
    const auto found = m_byMaterialId.find(materialId);
    return found != m_byMaterialId.end() ? found->second : s_none;
}

AssetDefinition* Catalogue::find(const UTF8String& materialId, const WideString& variant) const
{
    for (AssetDefinition* definition : byMaterialId(materialId)) {
        if (*definition->variant == variant) {
            return definition;
        }
    }
    return nullptr;
}

bool Catalogue::owns(const IAssetDefinition* definition) const
{
    const auto* own = dynamic_cast<const AssetDefinition*>(definition);
    return own != nullptr && own->catalogue == this;
}

} // namespace telvarin::platform::assets
