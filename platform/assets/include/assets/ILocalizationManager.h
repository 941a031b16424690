#pragma once

#include "assets/AssetTypes.h"

#include <string_view>
#include <vector>

namespace telvarin::platform::assets {

// The names and texts of one library in one language, with fallbacks, for showing them to a user.
// The library is found by its identifier at each call, so a localisation outlives the closing and
// reopening of its library (texts are empty while it is closed).
class ILocalization {
public:
    [[nodiscard]] virtual const UTF8String& GetLanguage() const = 0;
    [[nodiscard]] virtual const WideString& GetLibraryId() const = 0;
    // The preset's name in this language, else in English, else the material id itself.
    [[nodiscard]] virtual WideString GetAssetName(const UTF8String& materialId) const = 0;
    // A library text (category and subcategory names) in this language, else in English, else the key.
    [[nodiscard]] virtual WideString GetText(const WideString& key) const = 0;

protected:
    virtual ~ILocalization() = default;
};

// Owned by its IAssetLibraryManager.
class ILocalizationManager {
public:
    // One object per language and library identifier, kept until the manager goes; null only for an
    // empty language or identifier.
    [[nodiscard]] virtual ILocalization* GetILocalization(const UTF8String& language, const WideString& libraryId) = 0;
    // The three-letter code of the user's language (Kx::BootstrapOptionGroup::userLanguage(), a tag
    // such as "de-DE"), by LanguageForLocale.
    [[nodiscard]] virtual UTF8String GetUserLanguage() const = 0;
    // The languages the standard libraries carry names in.
    [[nodiscard]] virtual std::vector<UTF8String> GetShippedLanguages() const = 0;

protected:
    virtual ~ILocalizationManager() = default;
};

// The three-letter name language of a locale tag, by its primary language subtag without regard to
// case ("de", "de-DE", "de_AT" give "deu"; "zh-TW" and "zh-Hant" give "cht", other Chinese "chs");
// unknown and empty tags give "eng".
[[nodiscard]] UTF8String LanguageForLocale(std::string_view tag);

} // namespace telvarin::platform::assets
