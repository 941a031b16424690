#pragma once

#include "AssetDefinition.h"
#include "AssetStore.h"
#include "LibrarySchema.h"
#include "Sqlite.h"

#include "assets/IAssetLibrary.h"

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string_view>
#include <unordered_map>

namespace telvarin::platform::assets {


// A library over one SQLite connection, which it uses only under its own lock. The same object is
// the writer: the manager hands it out as IWritableAssetLibrary while a writer session is open,
// and every change checks that one is.
class AssetLibrary final : public IWritableAssetLibrary {
public:
    // Throws sqlite::Failure when the file is missing, damaged or not a library this version reads.
    [[nodiscard]] static std::unique_ptr<AssetLibrary> openFile(const std::filesystem::path& file, WideString location);
    // A new library in memory, to be saved at `target`.
    [[nodiscard]] static std::unique_ptr<AssetLibrary> createInMemory(std::filesystem::path target,
        const schema::LibraryHeader& header);
    ~AssetLibrary() override;

    [[nodiscard]] const WideString& GetLibraryId() const override { return m_header.id; }
    [[nodiscard]] WideString GetName() const override;
    [[nodiscard]] WideString GetFilePath() const override;
    [[nodiscard]] const WideString& GetLocation() const override { return m_location; }
    [[nodiscard]] int GetLibraryKind() const override { return m_header.kind; }
    [[nodiscard]] bool IsReadOnly() const override;
    [[nodiscard]] std::size_t GetAssetCount() const override;
    [[nodiscard]] AssetSearchIterator GetAssetDefinitions() const override;
    [[nodiscard]] std::vector<std::pair<WideString, WideString>> GetCategories() const override;
    [[nodiscard]] IAssetDefinition* FindAssetDefinition(const UTF8String& materialId, const WideString& variant) const override;
    [[nodiscard]] AssetSearchIterator SearchBySchema(const WideString& schema) const override;
    [[nodiscard]] AssetSearchIterator SearchByCategory(const WideString& category, const WideString& subcategory) const override;
    [[nodiscard]] AssetSearchIterator SearchByMaterialId(const UTF8String& materialId) const override;
    [[nodiscard]] AssetSearchIterator SearchByName(const WideString& text, const UTF8String& language) const override;
    [[nodiscard]] IAssetInstance* CreateAssetInstance(const IAssetDefinition* definition) const override;
    [[nodiscard]] IAssetInstance* CreateAssetInstance(const UTF8String& materialId, const WideString& variant) const override;
    [[nodiscard]] WideString GetAssetName(const UTF8String& materialId, const UTF8String& language) const override;
    [[nodiscard]] WideString GetLocalizedText(const WideString& key, const UTF8String& language) const override;
    bool ReadEmbeddedResource(const WideString& uri, std::vector<std::uint8_t>& bytes) const override;
    void Refresh() override;
    [[nodiscard]] std::uint64_t GetChangeCount() const override { return m_changeCount.load(std::memory_order_acquire); }
    [[nodiscard]] AssetError GetLastError() const override;

    bool CreateNewAssetPreset(IAssetInstance* instance, const UTF8String& materialId, AssetError* error) override;
    bool CreateNewAssetPreset(IAssetInstance* instance, const AssetPresetInfo& info, AssetError* error) override;
    bool DeleteAssetDefinition(IAssetDefinition* definition, AssetError* error) override;
    bool SetLibraryName(const WideString& name, AssetError* error) override;
    bool SetReadOnly(bool readOnly, AssetError* error) override;
    bool SetLocalizedText(const WideString& key, const UTF8String& language, const WideString& text,
        AssetError* error) override;
    WideString AddEmbeddedResource(const WideString& name, std::span<const std::uint8_t> bytes, AssetError* error) override;

    // ---- for the manager and the deserializer ----
    // Empty while the library lives in memory.
    [[nodiscard]] std::filesystem::path file() const;
    // Writes a library that lives in memory to its target and reopens it there; throws sqlite::Failure.
    void save();
    bool beginWriting(AssetError* error);
    bool commit(AssetError* error);
    // Rolls back what was not committed.
    void endWriting();
    [[nodiscard]] bool isWriting() const;
    // The current definition of a preset, kept alive with its catalogue; null when there is none.
    [[nodiscard]] std::shared_ptr<const AssetDefinition> shareDefinition(const UTF8String& materialId,
        const WideString& variant) const;

private:
    AssetLibrary(sqlite::Database db, std::filesystem::path file, std::filesystem::path target, WideString location,
        schema::LibraryHeader header);

    // The catalogue of the presets, read on first use; valid until the next change or refresh.
    [[nodiscard]] const std::shared_ptr<const Catalogue>& catalogue() const;
    [[nodiscard]] const std::unordered_map<UTF8String, std::map<UTF8String, WideString>>& names() const;
    [[nodiscard]] AssetSearchIterator select(const std::shared_ptr<const Catalogue>& catalogue,
        const std::function<bool(const AssetDefinition&)>& keep) const;
    // Makes sure a writer session is open and a transaction runs; throws otherwise.
    AssetWriter& beginChange();
    void changed();
    void rereadHeader();
    // Under m_mutex: the statements that read presets and their rows, compiled at first use.
    [[nodiscard]] AssetReader& reader() const;
    [[nodiscard]] sqlite::Statement& listing() const;
    // Runs `operation`, turning a failure into m_lastError (and `error`) and `fallback`.
    template <typename Result, typename Operation>
    Result guarded(AssetError* error, Result fallback, Operation&& operation) const;

    mutable std::recursive_mutex m_mutex;
    sqlite::Database m_db;
    std::filesystem::path m_file;
    std::filesystem::path m_target;
    WideString m_location;
    schema::LibraryHeader m_header;
    bool m_writing = false;

    mutable std::shared_ptr<const Catalogue> m_catalogue;
    mutable std::optional<std::unordered_map<UTF8String, std::map<UTF8String, WideString>>> m_names;
    mutable std::optional<std::map<std::pair<WideString, UTF8String>, WideString>> m_texts;
    mutable std::unique_ptr<AssetReader> m_reader;
    mutable std::unique_ptr<sqlite::Statement> m_listing;
    std::unique_ptr<AssetWriter> m_writer;
    mutable AssetError m_lastError;
    std::atomic<std::uint64_t> m_changeCount{0};
};

template <typename Result, typename Operation>
Result AssetLibrary::guarded(AssetError* error, Result fallback, Operation&& operation) const
{
    std::lock_guard lock(m_mutex);
    try {
        return operation();
    } catch (const sqlite::Failure& failure) {
        m_lastError = failure.error();
    } catch (const std::bad_alloc&) {
        m_lastError = AssetError{EAssetError::eIOError, "out of memory"};
    }
    if (error != nullptr) {
        *error = m_lastError;
    }
    return fallback;
}

} // namespace telvarin::platform::assets
