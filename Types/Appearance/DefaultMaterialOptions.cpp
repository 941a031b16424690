#include "Types/Appearance/DefaultMaterialOptions.h"

#include "Types/Appearance/AmbrelManager.h"

#include <assets/IAssetLibrary.h>
#include <base/AppLogMgr.h>
#include <base/Assert.h>
#include <base/BoolOption.h>
#include <base/ChoiceOption.h>
#include <base/OptionGroupInitializer.h>
#include <base/Paths.h>
#include <base/StringTable.h>
#include <base/Strings.h>

#include <chrono>
#include <set>

namespace Kx {

// A choice list that takes a stored value while the group reads its file: the lists are filled
// from the libraries only later, and a value they do not offer is dealt with then.
class DefaultMaterialChoice : public ChoiceOption {
public:
    DefaultMaterialChoice(const DefaultMaterialOptionGroup& group, std::string id, std::string defaultValue)
        : ChoiceOption(std::move(id), std::move(defaultValue), {{"Dummy", L"Dummy"}})
        , m_group(group)
    {
    }

protected:
    [[nodiscard]] bool accepts(const std::string& candidate) const override
    {
        return m_group.m_acceptStored || ChoiceOption::accepts(candidate);
    }

private:
    const DefaultMaterialOptionGroup& m_group;
};

namespace {

constexpr const char* s_module = "KxTypes";
constexpr const char* s_placeholder = "Dummy";

const std::wstring s_materialLibraryName = L"Orvane Material Library";
const std::wstring s_appearanceLibraryName = L"Orvane Appearance Library";
const std::wstring s_additiveLibraryName = L"Orvane Additive Material Library";
const std::wstring s_nonlinearLibraryName = L"Orvane Nonlinear Material Library";
const std::wstring s_defaultPhysicalMaterial = L"CorvexMaterial-018";
const std::wstring s_defaultVisualMaterial = L"Corvex-256";

std::wstring localized(const char* key, const char* english)
{
    return StringTable::getLocalizedString(s_module, key, english);
}

// The four libraries with fixed names, as the library manager shows them (its display names, in
// the user's language), with the English name a preference stores.
struct FixedLibrary {
    std::wstring shown;
    std::wstring english;
};

std::array<FixedLibrary, 4> fixedLibraries()
{
    const std::vector<WideString>& shown = AmbrelManager::GetStandardLibraryDisplayNames();
    return {{{shown[AmbrelManager::eSystemPhysicalName], s_materialLibraryName},
        {shown[AmbrelManager::eSystemVisualName], s_appearanceLibraryName},
        {shown[AmbrelManager::eAdditiveName], s_additiveLibraryName},
        {shown[AmbrelManager::eNonlinearName], s_nonlinearLibraryName}}};
}

std::string utf8(const std::wstring& text)
{
    return ToUTF8(text);
}

void describe(Option& option, const char* nameKey, const char* name, const char* tipKey, const char* tip)
{
    option.setUserName(localized(nameKey, name));
    option.setToolTip(localized(tipKey, tip));
}

} // namespace

namespace {

// The preferences dialog and the console find the group through this; it is made when first shown.
const OptionGroupInitializer s_initializer("DefaultMaterialOptionGroupInitializer",
    [] { return DefaultMaterialOptionGroup::get(); });

} // namespace

DefaultMaterialOptionGroup* DefaultMaterialOptionGroup::get()
{
    // Never destroyed, like the manager it reads: other singletons may ask it while the process ends.
    static DefaultMaterialOptionGroup* s_group = [] {
        auto* group = new DefaultMaterialOptionGroup(AmbrelManager::GetAmbrelManager(false));
        std::string problem;
        if (!group->loadPersisted(&problem)) {
            AppLogMgr::appLogEx(ELogLevel::eWarning, ToIString(problem));
        }
        return group;
    }();
    return s_group;
}

DefaultMaterialOptionGroup::DefaultMaterialOptionGroup(AmbrelManager* manager)
    : OptionGroup("DefaultMaterialOptionGroup")
    , m_manager(manager)
{
    setUserName(localized("DefaultMaterialOptionsUserName", "Material"));
    setToolTip(localized("DefaultMaterialOptionsToolTip", "Preferences that control default material and appearance"));
    createOptions();
    if (m_manager != nullptr) {
        m_manager->setDefaultMaterialOptions(this);
    }
}

DefaultMaterialOptionGroup::~DefaultMaterialOptionGroup()
{
    if (m_manager != nullptr && m_manager->defaultMaterialOptions() == this) {
        m_manager->setDefaultMaterialOptions(nullptr);
    }
}

void DefaultMaterialOptionGroup::createOptions()
{
    const auto start = std::chrono::steady_clock::now();
    AppLogMgr::appPerfLog(L"\tPERF: DefaultMaterialOptionGroup::createOptions Kx::AmbrelManager::GetAmbrelManager START");
    if (m_manager != nullptr) {
        m_manager->LoadLibs(false);
    }
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    AppLogMgr::appPerfLog(L"\tPERF: DefaultMaterialOptionGroup::createOptions Kx::AmbrelManager::GetAmbrelManager END "
        + std::to_wstring(elapsed.count()));
    if (m_manager == nullptr) {
        return;
    }

    // The default categories are those of the default materials in the advanced libraries, which
    // hold the same materials as the standard ones (content/data/README.md).
    std::wstring physicalCategory;
    std::wstring visualCategory;
    std::wstring subcategory;
    (void)m_manager->GetCategoryForMaterial(utf8(s_defaultPhysicalMaterial), m_manager->GetAdvancedPhysicalLibraryID(),
        physicalCategory, subcategory);
    (void)m_manager->GetCategoryForMaterial(utf8(s_defaultVisualMaterial), m_manager->GetAdvancedVisualLibraryID(),
        visualCategory, subcategory);

    Side& physical = m_sides[ePhysical];
    physical.defaultMaterial = s_defaultPhysicalMaterial;
    physical.library = &add<DefaultMaterialChoice>(*this, "PhysicalMaterialLibraryID", utf8(s_materialLibraryName));
    describe(*physical.library, "PhysicalLibraryUserName", "Physical Material Library", "PhysicalLibraryToolTip",
        "The default physical material Library for a new document");
    physical.category = &add<DefaultMaterialChoice>(*this, "PhysicalMaterialCategoryID", utf8(physicalCategory));
    describe(*physical.category, "PhysicalCategoryUserName", "Physical Material Category", "PhysicalCategoryToolTip",
        "The default physical material category for a new document");
    physical.name = &add<DefaultMaterialChoice>(*this, "PhysicalMaterialIDID", utf8(s_defaultPhysicalMaterial));
    describe(*physical.name, "PhysicalIDUserName", "Physical Material Name", "PhysicalIDToolTip",
        "The default physical material for a new document");

    m_visualNotAsMaterial = &add<BoolOption>("VisualNotAsMaterialID", false);
    describe(*m_visualNotAsMaterial, "VisualNotAsMaterialUserName", "Apply a different appearance",
        "VisualNotAsMaterialToolTip",
        "Set the default appearance for a new document to be different from the physical material");

    Side& visual = m_sides[eVisual];
    visual.defaultMaterial = s_defaultVisualMaterial;
    visual.library = &add<DefaultMaterialChoice>(*this, "VisualMaterialLibraryID", utf8(s_appearanceLibraryName));
    describe(*visual.library, "VisualLibraryUserName", "Appearance Material Library", "VisualLibraryToolTip",
        "The default Appearance Library for a new document");
    visual.category = &add<DefaultMaterialChoice>(*this, "VisualMaterialCategoryID", utf8(visualCategory));
    describe(*visual.category, "VisualCategoryUserName", "Appearance Category", "VisualCategoryToolTip",
        "The default appearance category for a new document");
    visual.name = &add<DefaultMaterialChoice>(*this, "VisualMaterialIDID", utf8(s_defaultVisualMaterial));
    describe(*visual.name, "VisualIDUserName", "Material Name", "VisualIDToolTip",
        "The default appearance for a new document");

    // The appearance matters only when it differs from the material's own.
    m_visualNotAsMaterial->subGroup(*visual.library);
    m_visualNotAsMaterial->subGroup(*visual.category);
    m_visualNotAsMaterial->subGroup(*visual.name);
}

std::wstring DefaultMaterialOptionGroup::englishNameOf(const std::wstring& displayName)
{
    for (const FixedLibrary& library : fixedLibraries()) {
        if (library.shown == displayName) {
            return library.english;
        }
    }
    return displayName;
}

std::wstring DefaultMaterialOptionGroup::getMaterialLibraryIDByEngName(const std::wstring& englishName)
{
    AmbrelManager* pMgr = m_manager;
    if (pMgr == nullptr) {
        return {};
    }
    KX_ASSERT(pMgr->LibsLoaded());
    const LibraryInfoMap& libraries = pMgr->GetLibrariesInfo(false);
    if (libraries.empty()) {
        return {};
    }
    for (const auto& [name, entry] : libraries) {
        if (englishNameOf(name) == englishName) {
            return entry.second;
        }
    }
    return {};
}

bool DefaultMaterialOptionGroup::isPhysicalMaterialLibraryEmpty(const std::wstring& name)
{
    const LibraryInfoMap& libraries = m_manager->GetLibrariesInfo(false);
    const auto found = libraries.find(name);
    return found == libraries.end() || m_manager->GetCategorizedPhysicalMaterialsByLibrary(found->second.second).empty();
}

bool DefaultMaterialOptionGroup::isVisualMaterialLibraryEmpty(const std::wstring& name)
{
    const LibraryInfoMap& libraries = m_manager->GetLibrariesInfo(false);
    const auto found = libraries.find(name);
    return found == libraries.end() || m_manager->GetCategorizedVisualMaterialsByLibrary(found->second.second).empty();
}

void DefaultMaterialOptionGroup::createDelayLoadedOptions()
{
    for (Side& side : m_sides) {
        side.library->clearChoices();
        side.category->clearChoices();
        side.name->clearChoices();
    }
    const std::array<FixedLibrary, 4> fixed = fixedLibraries();
    Side& physical = m_sides[ePhysical];
    Side& visual = m_sides[eVisual];
    for (const auto& [name, entry] : m_manager->GetLibrariesInfo(true)) {
        if (name == fixed[0].shown) {
            physical.library->addChoice(utf8(fixed[0].english), name);
            continue;
        }
        if (name == fixed[1].shown) {
            visual.library->addChoice(utf8(fixed[1].english), name);
            continue;
        }
        // Simulation libraries hold materials for analyses, not for the look of a new document.
        if (name == fixed[2].shown || name == fixed[3].shown) {
            continue;
        }
        if (!isPhysicalMaterialLibraryEmpty(name)) {
            physical.library->addChoice(utf8(name), name);
        }
        if (!isVisualMaterialLibraryEmpty(name)) {
            visual.library->addChoice(utf8(name), name);
        }
    }
    populatePhysicalCategory(PhysicalMaterialLibraryId());
    populatePhysicalNames(PhysicalMaterialCategory());
    populateVisualCategory(VisualMaterialLibraryId());
    populateVisualNames(VisualMaterialCategory());
}

const std::vector<std::unique_ptr<Option>>& DefaultMaterialOptionGroup::createOptionsIfNeeded()
{
    if (m_manager == nullptr || !m_manager->LibsLoaded()) {
        return options();
    }
    createDelayLoadedOptions();
    m_choicesLoaded = true;
    for (Side& side : m_sides) {
        side.library->removeChoice(s_placeholder);
        side.category->removeChoice(s_placeholder);
        side.name->removeChoice(s_placeholder);
    }
    dropVanishedChoices(ePhysical);
    dropVanishedChoices(eVisual);
    return options();
}

void DefaultMaterialOptionGroup::dropVanishedChoices(ESide which)
{
    Side& side = m_sides[which];
    const auto vanished = [](const ChoiceOption* option) { return !option->hasChoice(option->value()); };
    if (!vanished(side.library) && !vanished(side.category) && !vanished(side.name)) {
        return;
    }
    const bool atDefaults = side.library->value() == side.library->defaultValue()
        && side.category->value() == side.category->defaultValue() && side.name->value() == side.name->defaultValue();
    if (atDefaults) {
        return; // the defaults themselves are not installed: nothing better to offer
    }
    AppLogMgr::appLogEx(ELogLevel::eWarning,
        L"Default material preference " + ToIString(side.library->value()) + L" / " + ToIString(side.category->value())
            + L" / " + ToIString(side.name->value()) + L" is no longer in the libraries; the default is used");
    if (which == ePhysical) {
        resetPhysicalMaterialOptionsToDefault();
    } else {
        resetVisualMaterialOptionsToDefault();
    }
}

std::wstring DefaultMaterialOptionGroup::libraryIdOfSide(ESide side)
{
    return getMaterialLibraryIDByEngName(ToIString(m_sides[side].library->value()));
}

std::wstring DefaultMaterialOptionGroup::PhysicalMaterialLibraryId()
{
    return m_manager != nullptr ? libraryIdOfSide(ePhysical) : std::wstring();
}

std::wstring DefaultMaterialOptionGroup::VisualMaterialLibraryId()
{
    return m_manager != nullptr ? libraryIdOfSide(eVisual) : std::wstring();
}

void DefaultMaterialOptionGroup::populateCategory(ESide which, const std::wstring& libraryId)
{
    Side& side = m_sides[which];
    side.category->clearChoices();
    side.listing = which == ePhysical ? m_manager->GetCategorizedPhysicalMaterialsByLibrary(libraryId)
                                      : m_manager->GetCategorizedVisualMaterialsByLibrary(libraryId);
    side.listedLibrary = libraryId;
    const Assets::IAssetLibrary* library = m_manager->GetLibraryByIdentifier(libraryId);
    for (auto entry = side.listing.begin(); entry != side.listing.end();
         entry = side.listing.upper_bound(entry->first)) {
        std::wstring text = library != nullptr ? library->GetLocalizedText(entry->first, m_manager->GetUserLanguage())
                                               : std::wstring();
        side.category->addChoice(utf8(entry->first), text.empty() ? entry->first : text);
    }
}

void DefaultMaterialOptionGroup::populateNames(ESide which, const std::wstring& category)
{
    Side& side = m_sides[which];
    side.name->clearChoices();
    const auto [first, last] = side.listing.equal_range(category);
    for (auto entry = first; entry != last; ++entry) {
        std::wstring text = m_manager->GetUIName(entry->second, side.listedLibrary);
        side.name->addChoice(entry->second, text.empty() ? ToIString(entry->second) : text);
    }
}

void DefaultMaterialOptionGroup::populatePhysicalCategory(std::wstring libraryId)
{
    populateCategory(ePhysical, libraryId);
}

void DefaultMaterialOptionGroup::populatePhysicalNames(const std::wstring& category)
{
    populateNames(ePhysical, category);
}

void DefaultMaterialOptionGroup::populateVisualCategory(std::wstring libraryId)
{
    populateCategory(eVisual, libraryId);
}

void DefaultMaterialOptionGroup::populateVisualNames(const std::wstring& category)
{
    populateNames(eVisual, category);
}

void DefaultMaterialOptionGroup::libraryChanged(ESide which, const std::string& library)
{
    Side& side = m_sides[which];
    populateCategory(which, getMaterialLibraryIDByEngName(ToIString(library)));
    const std::vector<ChoiceOption::Choice> categories = side.category->choices();
    if (!categories.empty()) {
        side.category->setValue(categories.front().value);
    }
    populateNames(which, ToIString(side.category->value()));
    const std::vector<ChoiceOption::Choice> names = side.name->choices();
    if (!side.name->dirty() && !names.empty()) {
        side.name->setValue(names.front().value);
    }
}

void DefaultMaterialOptionGroup::categoryChanged(ESide which, const std::string& category)
{
    Side& side = m_sides[which];
    populateNames(which, ToIString(category));
    const std::vector<ChoiceOption::Choice> names = side.name->choices();
    if (!side.name->hasChoice(side.name->value()) && !names.empty()) {
        side.name->setValue(names.front().value);
    }
}

void DefaultMaterialOptionGroup::onOptionChanged(Option& option)
{
    OptionGroup::onOptionChanged(option);
    if (m_manager == nullptr || !m_choicesLoaded) {
        return;
    }
    for (ESide which : {ePhysical, eVisual}) {
        const Side& side = m_sides[which];
        if (&option == side.library) {
            libraryChanged(which, side.library->value());
        } else if (&option == side.category) {
            categoryChanged(which, side.category->value());
        }
    }
}

const std::vector<std::unique_ptr<Option>>& DefaultMaterialOptionGroup::onChoiceChanged(Option& option,
    const std::string& value)
{
    if (m_manager == nullptr) {
        return options();
    }
    for (ESide which : {ePhysical, eVisual}) {
        Side& side = m_sides[which];
        if (&option == side.library) {
            populateCategory(which, getMaterialLibraryIDByEngName(ToIString(value)));
            const std::vector<ChoiceOption::Choice> categories = side.category->choices();
            populateNames(which, categories.empty() ? std::wstring() : ToIString(categories.front().value));
        } else if (&option == side.category) {
            populateNames(which, ToIString(value));
        }
    }
    return options();
}

void DefaultMaterialOptionGroup::resetPhysicalMaterialOptionsToDefault()
{
    if (m_manager == nullptr) {
        return;
    }
    const bool loaded = m_choicesLoaded;
    m_choicesLoaded = false; // no cascade: every value is set here
    Side& side = m_sides[ePhysical];
    side.library->resetToDefault();
    side.category->resetToDefault();
    side.name->resetToDefault();
    m_choicesLoaded = loaded;
    if (loaded && m_manager->LibsLoaded()) {
        populatePhysicalCategory(PhysicalMaterialLibraryId());
        populatePhysicalNames(PhysicalMaterialCategory());
    }
}

void DefaultMaterialOptionGroup::resetVisualMaterialOptionsToDefault()
{
    if (m_manager == nullptr) {
        return;
    }
    const bool loaded = m_choicesLoaded;
    m_choicesLoaded = false;
    Side& side = m_sides[eVisual];
    side.library->resetToDefault();
    side.category->resetToDefault();
    side.name->resetToDefault();
    m_choicesLoaded = loaded;
    if (loaded && m_manager->LibsLoaded()) {
        populateVisualCategory(VisualMaterialLibraryId());
        populateVisualNames(VisualMaterialCategory());
    }
}

const std::wstring& DefaultMaterialOptionGroup::text(const ChoiceOption* option, std::size_t slot) const
{
    m_texts[slot] = option != nullptr ? ToIString(option->value()) : std::wstring();
    return m_texts[slot];
}

void DefaultMaterialOptionGroup::set(ChoiceOption* option, const std::wstring& value)
{
    if (option == nullptr) {
        return;
    }
    if (!m_choicesLoaded) {
        createOptionsIfNeeded();
    }
    option->setValue(utf8(value));
}

const std::wstring& DefaultMaterialOptionGroup::PhysicalMaterialLibrary() const { return text(m_sides[ePhysical].library, 0); }
const std::wstring& DefaultMaterialOptionGroup::PhysicalMaterialCategory() const { return text(m_sides[ePhysical].category, 1); }
const std::wstring& DefaultMaterialOptionGroup::PhysicalMaterialID() const { return text(m_sides[ePhysical].name, 2); }
const std::wstring& DefaultMaterialOptionGroup::VisualMaterialLibrary() const { return text(m_sides[eVisual].library, 3); }
const std::wstring& DefaultMaterialOptionGroup::VisualMaterialCategory() const { return text(m_sides[eVisual].category, 4); }
const std::wstring& DefaultMaterialOptionGroup::VisualMaterialID() const { return text(m_sides[eVisual].name, 5); }

void DefaultMaterialOptionGroup::PhysicalMaterialLibrary(const std::wstring& value) { set(m_sides[ePhysical].library, value); }
void DefaultMaterialOptionGroup::PhysicalMaterialCategory(const std::wstring& value) { set(m_sides[ePhysical].category, value); }
void DefaultMaterialOptionGroup::PhysicalMaterialID(const std::wstring& value) { set(m_sides[ePhysical].name, value); }
void DefaultMaterialOptionGroup::VisualMaterialLibrary(const std::wstring& value) { set(m_sides[eVisual].library, value); }
void DefaultMaterialOptionGroup::VisualMaterialCategory(const std::wstring& value) { set(m_sides[eVisual].category, value); }
void DefaultMaterialOptionGroup::VisualMaterialID(const std::wstring& value) { set(m_sides[eVisual].name, value); }

bool DefaultMaterialOptionGroup::VisualNotAsMaterial() const
{
    return m_visualNotAsMaterial != nullptr && m_visualNotAsMaterial->value();
}

void DefaultMaterialOptionGroup::VisualNotAsMaterial(bool value)
{
    if (m_visualNotAsMaterial != nullptr) {
        m_visualNotAsMaterial->setValue(value);
    }
}

std::filesystem::path DefaultMaterialOptionGroup::onPersistFile(std::vector<std::wstring>& olderFiles) const
{
    const std::string file = name() + ".xml";
    // Where earlier versions kept the group: the server's option folder, then the previous layout
    // of the user's options.
    olderFiles.push_back((Paths::optionsDirectory() / "server" / file).wstring());
    olderFiles.push_back((Paths::userDirectory() / "options.old" / file).wstring());
    return Paths::optionsDirectory() / file;
}

std::filesystem::path DefaultMaterialOptionGroup::persistFile() const
{
    std::vector<std::wstring> older;
    return onPersistFile(older);
}

bool DefaultMaterialOptionGroup::loadPersisted(std::string* problem)
{
    std::vector<std::wstring> older;
    std::filesystem::path file = onPersistFile(older);
    std::error_code error;
    if (!std::filesystem::exists(file, error)) {
        for (const std::wstring& candidate : older) {
            if (std::filesystem::exists(candidate, error)) {
                file = candidate;
                break;
            }
        }
    }
    m_acceptStored = true;
    m_loadProblem.clear();
    const bool loaded = loadFrom(file, &m_loadProblem);
    m_acceptStored = false;
    if (problem != nullptr) {
        *problem = m_loadProblem;
    }
    if (loaded && m_manager != nullptr && m_manager->LibsLoaded()) {
        createOptionsIfNeeded();
    }
    return loaded;
}

} // namespace Kx
