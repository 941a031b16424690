#include "LocalizationManager.h"

#include "assets/IAssetLibrary.h"
#include "assets/IAssetLibraryManager.h"

#include <base/BootstrapOptionGroup.h>

#include <algorithm>
#include <array>
#include <cctype>

namespace telvarin::platform::assets {

UTF8String LanguageForLocale(std::string_view tag)
{
    std::string primary(tag.substr(0, std::min(tag.find_first_of("-_"), tag.size())));
    std::transform(primary.begin(), primary.end(), primary.begin(), [](unsigned char c) { return std::tolower(c); });
    std::string rest(tag.substr(std::min(primary.size() + 1, tag.size())));
    std::transform(rest.begin(), rest.end(), rest.begin(), [](unsigned char c) { return std::tolower(c); });
    if (primary == "zh") {
        const bool traditional = rest == "tw" || rest == "hk" || rest == "mo" || rest.starts_with("hant");
        return traditional ? "cht" : "chs";
    }
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 12> s_languages{{
        {"cs", "csy"}, {"de", "deu"}, {"en", "eng"}, {"es", "esp"}, {"fr", "fra"}, {"hu", "hun"},
        {"it", "ita"}, {"ja", "jpn"}, {"ko", "kor"}, {"pl", "plk"}, {"pt", "ptb"}, {"ru", "rus"},
    }};
    for (const auto& [subtag, code] : s_languages) {
        if (primary == subtag) {
            return UTF8String(code);
        }
    }
    return s_englishLanguage;
}

Localization::Localization(const IAssetLibraryManager& manager, UTF8String language, WideString libraryId)
    : m_manager(manager)
    , m_language(std::move(language))
    , m_libraryId(std::move(libraryId))
{
}

WideString Localization::GetAssetName(const UTF8String& materialId) const
{
    if (const IAssetLibrary* library = m_manager.GetAssetLibrary(m_libraryId)) {
        WideString name = library->GetAssetName(materialId, m_language);
        if (!name.empty()) {
            return name;
        }
    }
    return core::toWide(materialId);
}

WideString Localization::GetText(const WideString& key) const
{
    if (const IAssetLibrary* library = m_manager.GetAssetLibrary(m_libraryId)) {
        for (const UTF8String& language : {m_language, UTF8String(s_englishLanguage)}) {
            WideString text = library->GetLocalizedText(key, language);
            if (!text.empty()) {
                return text;
            }
        }
    }
    return key;
}

LocalizationManager::LocalizationManager(const IAssetLibraryManager& manager)
    : m_manager(manager)
{
}

ILocalization* LocalizationManager::GetILocalization(const UTF8String& language, const WideString& libraryId)
{
    if (language.empty() || libraryId.empty()) {
        return nullptr;
    }
    std::lock_guard lock(m_mutex);
    auto& localization = m_localizations[std::pair(language, libraryId)];
    if (!localization) {
        localization = std::make_unique<Localization>(m_manager, language, libraryId);
    }
    return localization.get();
}

UTF8String LocalizationManager::GetUserLanguage() const
{
    return LanguageForLocale(Kx::BootstrapOptionGroup::get().userLanguage());
}

std::vector<UTF8String> LocalizationManager::GetShippedLanguages() const
{
    return {s_englishLanguage, s_germanLanguage};
}

} // namespace telvarin::platform::assets
