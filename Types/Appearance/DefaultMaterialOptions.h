#pragma once

#include <base/OptionGroup.h>

#include <array>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace Kx {

class AmbrelManager;
class BoolOption;
class ChoiceOption;

// The preferences group "Material": which physical material and which appearance a new document
// starts with. Libraries are stored by their English name, so the stored preference does not
// depend on the user interface language; categories by their English key; materials by their
// material id. The choices come from the library manager's open libraries and are filled the first
// time the options are shown (createOptionsIfNeeded). Changed and persisted on the UI thread.
class DefaultMaterialOptionGroup : public OptionGroup {
public:
    // The application's group over AmbrelManager::GetAmbrelManager, made (and read from its option
    // file) on first use.
    [[nodiscard]] static DefaultMaterialOptionGroup* get();
    // An independent group over `manager` (tools, tests); no options when `manager` is null.
    explicit DefaultMaterialOptionGroup(AmbrelManager* manager);
    ~DefaultMaterialOptionGroup() override;

    [[nodiscard]] const std::wstring& PhysicalMaterialLibrary() const;
    void PhysicalMaterialLibrary(const std::wstring& value);
    [[nodiscard]] const std::wstring& PhysicalMaterialCategory() const;
    void PhysicalMaterialCategory(const std::wstring& value);
    [[nodiscard]] const std::wstring& PhysicalMaterialID() const;
    void PhysicalMaterialID(const std::wstring& value);
    [[nodiscard]] bool VisualNotAsMaterial() const;
    void VisualNotAsMaterial(bool value);
    [[nodiscard]] const std::wstring& VisualMaterialLibrary() const;
    void VisualMaterialLibrary(const std::wstring& value);
    [[nodiscard]] const std::wstring& VisualMaterialCategory() const;
    void VisualMaterialCategory(const std::wstring& value);
    [[nodiscard]] const std::wstring& VisualMaterialID() const;
    void VisualMaterialID(const std::wstring& value);

    // The identifier of the open library whose English name the option holds; empty when none.
    [[nodiscard]] std::wstring PhysicalMaterialLibraryId();
    [[nodiscard]] std::wstring VisualMaterialLibraryId();

    void resetPhysicalMaterialOptionsToDefault();
    void resetVisualMaterialOptionsToDefault();

    [[nodiscard]] bool isDownloadingDefaultMaterial() const { return m_downloadingDefaultMaterial; }
    void onDownloadingDefaultMaterial() { m_downloadingDefaultMaterial = true; }
    void onDefaultMaterialDownloaded() { m_downloadingDefaultMaterial = false; }
    [[nodiscard]] bool choicesLoaded() const { return m_choicesLoaded; }

    // Fills the choices from the open libraries (each time: libraries open and close) and drops the
    // "Dummy" placeholders.
    const std::vector<std::unique_ptr<Option>>& createOptionsIfNeeded() override;
    const std::vector<std::unique_ptr<Option>>& onChoiceChanged(Option& option, const std::string& value) override;
    // Appends the older files the group was kept in (read when the current one does not exist yet),
    // and answers the current one.
    [[nodiscard]] std::filesystem::path onPersistFile(std::vector<std::wstring>& olderFiles) const;
    [[nodiscard]] std::filesystem::path persistFile() const override;

    // Reads the group's option file, or the first older one that exists when there is none yet (see
    // OptionGroup::load). Stored choices that name a library, category or material that is no longer
    // there set that side back to its defaults, which is logged.
    bool loadPersisted(std::string* problem = nullptr);
    // Why the last loadPersisted could not read the file; empty when it could.
    [[nodiscard]] const std::string& loadProblem() const { return m_loadProblem; }

    // The English name of a library shown under `displayName`: the fixed names of the material,
    // appearance, additive and nonlinear libraries in the user's language map to their English
    // names; any other name is its own.
    [[nodiscard]] static std::wstring englishNameOf(const std::wstring& displayName);

protected:
    void onOptionChanged(Option& option) override;

private:
    enum ESide { ePhysical, eVisual };
    struct Side {
        ChoiceOption* library = nullptr;
        ChoiceOption* category = nullptr;
        ChoiceOption* name = nullptr;
        std::wstring defaultMaterial;
        // The listing of the library the categories were last filled from: category -> material id.
        std::multimap<std::wstring, std::string> listing;
        std::wstring listedLibrary;
    };

    void createOptions();
    void createDelayLoadedOptions();
    [[nodiscard]] std::wstring getMaterialLibraryIDByEngName(const std::wstring& englishName);
    [[nodiscard]] bool isPhysicalMaterialLibraryEmpty(const std::wstring& name);
    [[nodiscard]] bool isVisualMaterialLibraryEmpty(const std::wstring& name);
    void populatePhysicalCategory(std::wstring libraryId);
    void populatePhysicalNames(const std::wstring& category);
    void populateVisualCategory(std::wstring libraryId);
    void populateVisualNames(const std::wstring& category);

    void populateCategory(ESide side, const std::wstring& libraryId);
    void populateNames(ESide side, const std::wstring& category);
    void libraryChanged(ESide side, const std::string& library);
    void categoryChanged(ESide side, const std::string& category);
    [[nodiscard]] std::wstring libraryIdOfSide(ESide side);
    [[nodiscard]] const std::wstring& text(const ChoiceOption* option, std::size_t slot) const;
    void set(ChoiceOption* option, const std::wstring& value);
    void dropVanishedChoices(ESide side);

    AmbrelManager* m_manager = nullptr;
    std::array<Side, 2> m_sides;
    BoolOption* m_visualNotAsMaterial = nullptr;
    bool m_downloadingDefaultMaterial = false;
    bool m_choicesLoaded = false;
    std::string m_loadProblem;
    // While the file is read the lists may not be filled yet: stored values are taken as they are
    // and checked against the libraries afterwards.
    bool m_acceptStored = false;
    // The getters answer references; their texts live here.
    mutable std::array<std::wstring, 6> m_texts;

    friend class DefaultMaterialChoice;
};

} // namespace Kx
