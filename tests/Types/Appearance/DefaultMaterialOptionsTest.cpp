#include <Types/Appearance/DefaultMaterialOptions.h>

#include "AmbrelTestLibraries.h"

#include <base/Assert.h>
#include <base/BootstrapOptionGroup.h>
#include <base/ChoiceOption.h>
#include <base/Options.h>
#include <base/StringTable.h>
#include <base/Strings.h>
#include <base/Paths.h>

#include <gtest/gtest.h>

#include <fstream>

namespace AmbrelTest {
namespace {

using Kx::AmbrelManager;
using Kx::ChoiceOption;
using Kx::DefaultMaterialOptionGroup;

const char* const s_choiceIds[] = {"PhysicalMaterialLibraryID", "PhysicalMaterialCategoryID", "PhysicalMaterialIDID",
    "VisualMaterialLibraryID", "VisualMaterialCategoryID", "VisualMaterialIDID"};

// The build's standard content, opened through the content service as a desktop edition does, by a
// manager of the test's own; every test in a user directory of its own.
class DefaultMaterialOptions : public ::testing::Test {
protected:
    DefaultMaterialOptions()
    {
        setUserLibraries({}, {});
    }
    ~DefaultMaterialOptions() override { setUserLibraries({}, {}); }

    static void setUserLibraries(const std::vector<std::string>& names, const std::vector<std::string>& paths)
    {
        auto& options = Kx::AmbrelMaterialOptionGroup::get();
        ASSERT_TRUE(options.optionAs<Kx::StringListOption>("UserLibraryNames")->setValue(names));
        ASSERT_TRUE(options.optionAs<Kx::StringListOption>("UserLibraryPaths")->setValue(paths));
    }

    ChoiceOption& choice(DefaultMaterialOptionGroup& group, const char* id)
    {
        auto* option = group.optionAs<ChoiceOption>(id);
        EXPECT_NE(option, nullptr) << id;
        return *option;
    }

    static std::vector<std::string> values(const ChoiceOption& option)
    {
        std::vector<std::string> result;
        for (const ChoiceOption::Choice& choice : option.choices()) {
            result.push_back(choice.value);
        }
        return result;
    }

    static bool offers(const ChoiceOption& option, const std::string& value)
    {
        return option.hasChoice(value);
    }

    void writeOptionFile(const std::string& body)
    {
        const auto file = Kx::Paths::optionsDirectory() / "DefaultMaterialOptionGroup.xml";
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary)
            << "<?xml version=\"1.0\"?>\n<OptionGroup Name=\"DefaultMaterialOptionGroup\" Version=\"1\">" << body
            << "</OptionGroup>\n";
    }

    KxTest::TempDir m_user;
    KxTest::ScopedEnvironment m_userDirectory{"KX_USER_DIR", m_user.path()};
    std::unique_ptr<IAssetLibraryManager> m_assets = CreateAssetLibraryManager();
    AmbrelManager m_manager{[this] { return m_assets.get(); }};
};

TEST_F(DefaultMaterialOptions, SevenOptionsInOrderWithPlaceholdersUntilShown)
{
    DefaultMaterialOptionGroup group(&m_manager);
    EXPECT_EQ(group.name(), "DefaultMaterialOptionGroup");
    std::vector<std::string> ids;
    for (const auto& option : group.options()) {
        ids.push_back(option->id());
    }
    EXPECT_EQ(ids, (std::vector<std::string>{"PhysicalMaterialLibraryID", "PhysicalMaterialCategoryID",
                       "PhysicalMaterialIDID", "VisualNotAsMaterialID", "VisualMaterialLibraryID",
                       "VisualMaterialCategoryID", "VisualMaterialIDID"}));
    for (const char* id : s_choiceIds) {
        SCOPED_TRACE(id);
        EXPECT_EQ(values(choice(group, id)), std::vector<std::string>{"Dummy"});
    }
    // The appearance options belong below the switch that makes them count.
    const Kx::Option* visualNotAsMaterial = group.option("VisualNotAsMaterialID");
    ASSERT_NE(visualNotAsMaterial, nullptr);
    ASSERT_EQ(visualNotAsMaterial->subOptions().size(), 3u);
    EXPECT_EQ(visualNotAsMaterial->subOptions()[0]->id(), "VisualMaterialLibraryID");
    EXPECT_EQ(visualNotAsMaterial->subOptions()[2]->id(), "VisualMaterialIDID");
    EXPECT_EQ(group.option("PhysicalMaterialIDID")->parentOption(), nullptr);

    group.createOptionsIfNeeded();
    EXPECT_TRUE(group.choicesLoaded());
    for (const char* id : s_choiceIds) {
        SCOPED_TRACE(id);
        EXPECT_FALSE(offers(choice(group, id), "Dummy"));
        EXPECT_FALSE(choice(group, id).choices().empty());
    }
    EXPECT_EQ(DefaultMaterialOptionGroup(nullptr).options().size(), 0u) << "no manager, no options";
}

TEST_F(DefaultMaterialOptions, TheDefaultsResolveInTheStandardLibraries)
{
    DefaultMaterialOptionGroup group(&m_manager);
    group.createOptionsIfNeeded();
    EXPECT_EQ(group.PhysicalMaterialLibrary(), L"Orvane Material Library");
    EXPECT_EQ(group.PhysicalMaterialCategory(), L"Metal");
    EXPECT_EQ(group.PhysicalMaterialID(), L"CorvexMaterial-018");
    EXPECT_FALSE(group.VisualNotAsMaterial());
    EXPECT_EQ(group.VisualMaterialLibrary(), L"Orvane Appearance Library");
    EXPECT_EQ(group.VisualMaterialCategory(), L"Manmade");
    EXPECT_EQ(group.VisualMaterialID(), L"Corvex-256");

    ASSERT_FALSE(m_manager.GetPhysicalLibraryID().empty());
    EXPECT_EQ(group.PhysicalMaterialLibraryId(), m_manager.GetPhysicalLibraryID());
    EXPECT_EQ(group.VisualMaterialLibraryId(), m_manager.GetVisualLibraryID());
    const struct {
        const char* name;
        std::wstring library;
        std::wstring material;
    } defaults[] = {{"physical", group.PhysicalMaterialLibraryId(), group.PhysicalMaterialID()},
        {"appearance", group.VisualMaterialLibraryId(), group.VisualMaterialID()}};
    for (const auto& d : defaults) {
        SCOPED_TRACE(d.name);
        InstancePtr instance(m_manager.GetAssetInstance(Kx::ToUTF8(d.material), d.library, {}));
        EXPECT_NE(instance, nullptr) << "the default must exist where the preference finds it";
    }
    // Offered as choices too, under the names a user reads.
    EXPECT_TRUE(offers(choice(group, "PhysicalMaterialIDID"), "CorvexMaterial-018"));
    EXPECT_TRUE(offers(choice(group, "VisualMaterialIDID"), "Corvex-256"));
}

TEST_F(DefaultMaterialOptions, LibraryListsLeaveOutSimulationLibrariesAndLibrariesWithoutThatKind)
{
    // A user library of appearances only.
    const auto looks = m_user.path() / "Looks.tvrnlib";
    {
        auto writer = CreateAssetLibraryManager();
        writeVisualLibraryFile(*writer, looks, L"22222222-0000-4000-8000-000000000009");
    }
    ASSERT_TRUE(m_manager.LoadLibs(false));
    WideString shown;
    ASSERT_TRUE(m_manager.LoadUserLib(looks.wstring(), shown));
    EXPECT_EQ(shown, L"Looks");

    DefaultMaterialOptionGroup group(&m_manager);
    group.createOptionsIfNeeded();
    const ChoiceOption& physical = choice(group, "PhysicalMaterialLibraryID");
    const ChoiceOption& visual = choice(group, "VisualMaterialLibraryID");
    const std::vector<WideString>& names = AmbrelManager::GetStandardLibraryDisplayNames();
    const struct {
        const char* name;
        std::string value;
        bool physical;
        bool visual;
    } cases[] = {
        {"standard material library", "Orvane Material Library", true, false},
        {"standard appearance library", "Orvane Appearance Library", false, true},
        {"advanced material library", Kx::ToUTF8(names[AmbrelManager::eAdvancedPhysicalName]), true, false},
        {"advanced appearance library", Kx::ToUTF8(names[AmbrelManager::eAdvancedVisualName]), false, true},
        {"additive library", Kx::ToUTF8(names[AmbrelManager::eAdditiveName]), false, false},
        {"nonlinear library", Kx::ToUTF8(names[AmbrelManager::eNonlinearName]), false, false},
        {"additive by its English name", "Orvane Additive Material Library", false, false},
        {"user library of appearances", "Looks", false, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(offers(physical, c.value), c.physical);
        EXPECT_EQ(offers(visual, c.value), c.visual);
    }
    EXPECT_TRUE(m_manager.UnloadUserLib(L"Looks"));
}

TEST_F(DefaultMaterialOptions, ChangingTheLibraryTakesItsFirstCategoryAndName)
{
    DefaultMaterialOptionGroup group(&m_manager);
    group.createOptionsIfNeeded();
    const std::string advanced = Kx::ToUTF8(AmbrelManager::GetStandardLibraryDisplayNames()[AmbrelManager::eAdvancedPhysicalName]);
    group.PhysicalMaterialLibrary(Kx::ToIString(advanced));
    EXPECT_EQ(group.PhysicalMaterialLibrary(), Kx::ToIString(advanced));
    const auto listing = m_manager.GetCategorizedPhysicalMaterialsByLibrary(m_manager.GetAdvancedPhysicalLibraryID());
    ASSERT_FALSE(listing.empty());
    EXPECT_EQ(group.PhysicalMaterialCategory(), listing.begin()->first);
    EXPECT_EQ(group.PhysicalMaterialID(), Kx::ToIString(listing.begin()->second));
    EXPECT_EQ(values(choice(group, "PhysicalMaterialIDID")).size(), listing.count(listing.begin()->first));

    // A category change keeps a name that is still offered and replaces one that is not.
    group.PhysicalMaterialCategory(L"Metal");
    EXPECT_EQ(group.PhysicalMaterialID(), Kx::ToIString(listing.find(L"Metal")->second));
    group.PhysicalMaterialID(L"CorvexMaterial-018");
    EXPECT_EQ(group.PhysicalMaterialID(), L"CorvexMaterial-018");
    group.PhysicalMaterialID(L"no such material");
    EXPECT_EQ(group.PhysicalMaterialID(), L"CorvexMaterial-018") << "a value that is not offered is refused";

    // A choice being made in the dialog fills the lists without committing the value.
    group.onChoiceChanged(*group.option("PhysicalMaterialLibraryID"), "Orvane Material Library");
    EXPECT_EQ(group.PhysicalMaterialLibrary(), Kx::ToIString(advanced));
    EXPECT_LT(values(choice(group, "PhysicalMaterialCategoryID")).size(), 12u) << "the standard library's categories";

    group.resetPhysicalMaterialOptionsToDefault();
    EXPECT_EQ(group.PhysicalMaterialLibrary(), L"Orvane Material Library");
    EXPECT_EQ(group.PhysicalMaterialCategory(), L"Metal");
    EXPECT_EQ(group.PhysicalMaterialID(), L"CorvexMaterial-018");
    EXPECT_TRUE(offers(choice(group, "PhysicalMaterialIDID"), "CorvexMaterial-018"));
}

TEST_F(DefaultMaterialOptions, ChoicesPersistAndAVanishedOneFallsBackToTheDefaults)
{
    const struct {
        const char* name;
        std::string body;
        std::wstring library;
        std::wstring category;
        std::wstring material;
    } cases[] = {
        {"all still there",
            R"(<PhysicalMaterialLibraryID Value="Orvane Material Library"/><PhysicalMaterialCategoryID Value="Wood"/>)"
            R"(<PhysicalMaterialIDID Value="CorvexMaterial-133"/>)",
            L"Orvane Material Library", L"Wood", L"CorvexMaterial-133"},
        {"library gone",
            R"(<PhysicalMaterialLibraryID Value="Removed Library"/><PhysicalMaterialCategoryID Value="Wood"/>)"
            R"(<PhysicalMaterialIDID Value="CorvexMaterial-133"/>)",
            L"Orvane Material Library", L"Metal", L"CorvexMaterial-018"},
        {"category gone",
            R"(<PhysicalMaterialLibraryID Value="Orvane Material Library"/><PhysicalMaterialCategoryID Value="Lava"/>)"
            R"(<PhysicalMaterialIDID Value="CorvexMaterial-133"/>)",
            L"Orvane Material Library", L"Metal", L"CorvexMaterial-018"},
        {"material gone",
            R"(<PhysicalMaterialLibraryID Value="Orvane Material Library"/><PhysicalMaterialCategoryID Value="Wood"/>)"
            R"(<PhysicalMaterialIDID Value="CorvexMaterial-999"/>)",
            L"Orvane Material Library", L"Metal", L"CorvexMaterial-018"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        writeOptionFile(c.body + R"(<VisualNotAsMaterialID Value="1"/>)");
        DefaultMaterialOptionGroup group(&m_manager);
        std::string problem;
        ASSERT_TRUE(group.loadPersisted(&problem)) << problem;
        EXPECT_EQ(group.PhysicalMaterialLibrary(), c.library);
        EXPECT_EQ(group.PhysicalMaterialCategory(), c.category);
        EXPECT_EQ(group.PhysicalMaterialID(), c.material);
        EXPECT_TRUE(group.VisualNotAsMaterial()) << "the other options are kept";
        EXPECT_TRUE(offers(choice(group, "PhysicalMaterialIDID"), Kx::ToUTF8(c.material)));
    }

    // What is saved comes back in the next run.
    {
        DefaultMaterialOptionGroup group(&m_manager);
        group.createOptionsIfNeeded();
        group.VisualNotAsMaterial(true);
        group.VisualMaterialCategory(L"Wood");
        ASSERT_TRUE(group.save());
    }
    DefaultMaterialOptionGroup again(&m_manager);
    ASSERT_TRUE(again.loadPersisted());
    EXPECT_TRUE(again.VisualNotAsMaterial());
    EXPECT_EQ(again.VisualMaterialCategory(), L"Wood");
    EXPECT_FALSE(again.VisualMaterialID().empty());
    EXPECT_NE(again.VisualMaterialID(), L"Corvex-256");
}

TEST_F(DefaultMaterialOptions, ADamagedOrNewerOptionFileGivesTheDefaultsAndIsKept)
{
    const std::pair<const char*, const char*> cases[] = {
        {"damaged", "<OptionGroup Name=\"DefaultMaterialOptionGroup\" Version=\"1\"><PhysicalMaterialIDID"},
        {"newer", "<OptionGroup Name=\"DefaultMaterialOptionGroup\" Version=\"7\">"
                  "<PhysicalMaterialIDID Value=\"CorvexMaterial-133\"/></OptionGroup>"},
    };
    for (const auto& [name, text] : cases) {
        SCOPED_TRACE(name);
        const auto file = Kx::Paths::optionsDirectory() / "DefaultMaterialOptionGroup.xml";
        std::filesystem::remove_all(file.parent_path());
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << text;
        DefaultMaterialOptionGroup group(&m_manager);
        std::string problem;
        EXPECT_FALSE(group.loadPersisted(&problem));
        EXPECT_NE(problem.find("DefaultMaterialOptionGroup.xml"), std::string::npos) << problem;
        EXPECT_EQ(group.PhysicalMaterialID(), L"CorvexMaterial-018");
        ASSERT_TRUE(group.save());
        EXPECT_EQ(KxTest::readText(file.string() + ".unreadable"), text);
    }
}

TEST_F(DefaultMaterialOptions, OlderOptionFilesAreReadUntilTheCurrentOneExists)
{
    DefaultMaterialOptionGroup group(&m_manager);
    std::vector<std::wstring> older;
    const auto current = group.onPersistFile(older);
    EXPECT_EQ(current, Kx::Paths::optionsDirectory() / "DefaultMaterialOptionGroup.xml");
    ASSERT_EQ(older.size(), 2u);
    EXPECT_EQ(older[0], (Kx::Paths::optionsDirectory() / "server" / "DefaultMaterialOptionGroup.xml").wstring());
    EXPECT_EQ(group.persistFile(), current);

    std::filesystem::create_directories(std::filesystem::path(older[1]).parent_path());
    std::ofstream(std::filesystem::path(older[1]), std::ios::binary)
        << R"(<OptionGroup Name="DefaultMaterialOptionGroup" Version="1"><VisualNotAsMaterialID Value="1"/></OptionGroup>)";
    ASSERT_TRUE(group.loadPersisted());
    EXPECT_TRUE(group.VisualNotAsMaterial()) << "read from the old options folder";
    group.VisualNotAsMaterial(false);
    ASSERT_TRUE(group.save());
    DefaultMaterialOptionGroup again(&m_manager);
    ASSERT_TRUE(again.loadPersisted());
    EXPECT_FALSE(again.VisualNotAsMaterial()) << "the current file wins once it exists";
}

TEST_F(DefaultMaterialOptions, ResolvingANameBeforeTheLibrariesLoadIsReported)
{
    KxTest::ScopedEnvironment nothing("KX_CONTENT_DIR", m_user.path() / "no content");
    AmbrelManager unloaded([this] { return m_assets.get(); });
    DefaultMaterialOptionGroup group(&unloaded);
    Kx::ScopedAssertionCapture capture;
    EXPECT_TRUE(group.PhysicalMaterialLibraryId().empty());
    ASSERT_EQ(capture.count(), 1u);
    EXPECT_EQ(capture.reports()[0].condition, "pMgr->LibsLoaded()");
}

// Run a second time with KX_LANG=de-DE (tests/Types/Appearance/CMakeLists.txt): a library is shown
// in the user's language while the preference stores its English name.
TEST_F(DefaultMaterialOptions, TheStoredLibraryNameIsEnglishInEveryLanguage)
{
    DefaultMaterialOptionGroup group(&m_manager);
    group.createOptionsIfNeeded();
    const bool german = Kx::BootstrapOptionGroup::get().userLanguage() == "de-DE";
    const std::vector<ChoiceOption::Choice> libraries = choice(group, "PhysicalMaterialLibraryID").choices();
    const auto standard = std::find_if(libraries.begin(), libraries.end(),
        [](const ChoiceOption::Choice& c) { return c.value == "Orvane Material Library"; });
    ASSERT_NE(standard, libraries.end());
    EXPECT_EQ(standard->text, german ? L"Orvane Materialbibliothek" : L"Orvane Material Library");
    EXPECT_EQ(group.userName(), L"Material");
    EXPECT_EQ(group.option("PhysicalMaterialIDID")->userName(),
        german ? L"Name des physikalischen Materials" : L"Physical Material Name");
    EXPECT_EQ(DefaultMaterialOptionGroup::englishNameOf(standard->text), L"Orvane Material Library");
    EXPECT_EQ(DefaultMaterialOptionGroup::englishNameOf(L"Mine"), L"Mine");
    const std::vector<WideString>& names = AmbrelManager::GetStandardLibraryDisplayNames();
    EXPECT_EQ(names[AmbrelManager::eFavoritesName], german ? L"Favoritenbibliothek" : L"Favorites Library");
    EXPECT_EQ(names[AmbrelManager::eAdditiveName],
        german ? L"Orvane Materialbibliothek für additive Fertigung" : L"Orvane Additive Material Library");
    EXPECT_EQ(group.PhysicalMaterialLibraryId(), m_manager.GetPhysicalLibraryID());
}

} // namespace
} // namespace AmbrelTest
