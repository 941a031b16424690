#pragma once

#include "assets/ILocalizationManager.h"

#include <map>
#include <memory>
#include <mutex>
#include <utility>

namespace telvarin::platform::assets {

class IAssetLibraryManager;

class Localization final : public ILocalization {
public:
    Localization(const IAssetLibraryManager& manager, UTF8String language, WideString libraryId);
    ~Localization() override = default;

    [[nodiscard]] const UTF8String& GetLanguage() const override { return m_language; }
    [[nodiscard]] const WideString& GetLibraryId() const override { return m_libraryId; }
    [[nodiscard]] WideString GetAssetName(const UTF8String& materialId) const override;
    [[nodiscard]] WideString GetText(const WideString& key) const override;

private:
    const IAssetLibraryManager& m_manager;
    UTF8String m_language;
    WideString m_libraryId;
};

class LocalizationManager final : public ILocalizationManager {
public:
    explicit LocalizationManager(const IAssetLibraryManager& manager);
    ~LocalizationManager() override = default;

    [[nodiscard]] ILocalization* GetILocalization(const UTF8String& language, const WideString& libraryId) override;
    [[nodiscard]] UTF8String GetUserLanguage() const override;
    [[nodiscard]] std::vector<UTF8String> GetShippedLanguages() const override;

private:
    const IAssetLibraryManager& m_manager;
    std::mutex m_mutex;
    std::map<std::pair<UTF8String, WideString>, std::unique_ptr<Localization>> m_localizations;
};

} // namespace telvarin::platform::assets
