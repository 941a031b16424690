// The material text commands on the document the user works on: material dictionaries taken from
// a body's own JSON, the answers to wrong input, the library listings, and the housekeeping of a
// document's materials (where used, replace everywhere with undo, purge kept across a save).

#include "../Appearance/MaterialTestSupport.h"

#include <Types/Appearance/AmbrelAssetManager.h>
#include <Types/Testors/AppearanceTestor.h>
#include <Types/Utility/TypesUtil.h>

#include <base/JavaScriptEngine.h>
#include <base/TextCommandRegistry.h>
#include <datamodel/Document.h>
#include <datamodel/DocumentFile.h>
#include <datamodel/DocumentRegistry.h>
#include <datamodel/EntityCodec.h>
#include <datamodel/Segment.h>
#include <datamodel/TransactionManager.h>
#include <support/TestSupport.h>

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>

#include <sstream>

namespace Kx {
namespace {

using namespace MaterialTest;
using telvarin::platform::core::toUTF8;

const std::wstring s_steel = L"CorvexMaterial-018";

class MaterialCommands : public ::testing::Test {
protected:
    MaterialCommands()
    {
        document = &DocumentRegistry::get().create();
        Segment* segment = document->createSegment("main");
        registry = AmbrelAssetManager::findOrMake(segment);
        for (const std::wstring& physical : {s_steel, s_steel, standardPhysicalId(1)}) {
            StrongRef<AppearanceTestor> body = segment->add(StrongRefCreator<AppearanceTestor>::create());
            body->physical = PhysicalMaterial(physical, manager().GetPhysicalLibraryID());
            body->visual = VisualMaterial(visualId(0), manager().GetVisualLibraryID());
            (void)registry->registerMaterial(body->physical);
            (void)registry->registerMaterial(body->visual);
            bodies.push_back(body.get());
        }
        document->transactions().clear();
    }
    ~MaterialCommands() override
    {
        for (Document* open : DocumentRegistry::get().documents())
            DocumentRegistry::get().close(*open);
    }

    static std::wstring visualId(std::size_t index)
    {
        return firstId(manager().GetVisualMaterialsByLibrary(manager().GetVisualLibraryID()), index);
    }
    static TextCommandOutcome run(const std::string& line) { return TextCommandRegistry::instance().runLine(line); }
    // The JSON of a body's member, as kx doc dump shows it: a material dictionary.
    std::string dictionary(std::size_t body, const char* member) const
    {
        const boost::json::value entity = boost::json::parse(entityToJSON(*bodies[body]));
        return boost::json::serialize(entity.at(member));
    }

    Document* document = nullptr;
    StrongRef<AmbrelAssetManager> registry;
    std::vector<AppearanceTestor*> bodies;
};

TEST_F(MaterialCommands, WrongInputIsAnsweredWithTheSystemsTexts)
{
    struct Case {
        const char* line;
        const wchar_t* answer;
    };
    const Case cases[] = {
        {"Materials.GetMaterialProperties", L"You need to provide a material directionary"},
        {"Materials.GetMaterialProperties {}", L"The input material directionary is invalid"},
        {"Materials.GetUserNameW \"not json\"", L"The input material directionary is invalid"},
        {R"(Materials.GetMaterialProperties {"ambrelMaterialID":"CorvexMaterial-018","rAmbrelAssetManager":"4"})",
            L"Not valid material"},
        {"Materials.FindPhysical", L"You need to provide a Physical material name or id (maybe using quotes)"},
        {"Materials.FindPhysical Steel (generic)",
            L"You provided too many parameters; the only needed parameter is the Physical material name or id BUT YOU "
            L"MIGHT NEED TO USE QUOTES"},
        {"Materials.FindVisual", L"You need to provide a visual material name or id (maybe using quotes)"},
        {"Materials.WhereUsed", L"You need to provide one material name or id (maybe using quotes)"},
        {"Materials.WhereUsed \"No such material\"", L"The document has no physical material No such material"},
        {"Materials.ReplaceAll CorvexMaterial-018", L"You need to provide the material to replace and its replacement (name or id, maybe using quotes)"},
        {"Materials.ReplaceAll CorvexMaterial-018 Nothing", L"No physical material has the name or id Nothing"},
        {"Materials.ReplaceAll CorvexMaterial-018 CorvexMaterial-018", L"A material cannot replace itself"},
    };
    // A reference to a body, not to the registry; and one to an entity of no open document.
    const std::string toBody = R"(Materials.GetMaterialProperties {"ambrelMaterialID":"CorvexMaterial-018","rAmbrelAssetManager":)"
        + std::to_string(bodies[0]->id()) + "}";
    EXPECT_EQ(run(toBody).text, L"Not valid material");
    EXPECT_EQ(run(R"(Materials.GetUserNameW {"ambrelMaterialID":"CorvexMaterial-018","rAmbrelAssetManager":9999})").text,
        L"Not valid material");
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line);
        const TextCommandOutcome outcome = run(c.line);
        EXPECT_FALSE(outcome.ok());
        EXPECT_EQ(outcome.text, c.answer);
    }
    EXPECT_EQ(registry->useCount(bodies[0]->physical.assetInstance()), 2u) << "a refused replacement changed nothing";
    EXPECT_FALSE(document->transactions().canUndo());
}

TEST_F(MaterialCommands, ADictionaryFromABodyAnswersItsPropertiesAndName)
{
    const TextCommandOutcome physical = run("Materials.GetMaterialProperties " + dictionary(0, "physical"));
    ASSERT_TRUE(physical.ok()) << toUTF8(physical.text);
    const boost::json::value answer = boost::json::parse(toUTF8(physical.text));
    EXPECT_EQ(answer.at("name"), "Steel (generic)");
    EXPECT_EQ(answer.at("type"), "physicalMaterial");
    EXPECT_DOUBLE_EQ(answer.at("density").to_number<double>(), 7900.0);
    EXPECT_EQ(answer.as_object().size(), 10u) << "name, type and the eight properties";

    const TextCommandOutcome visual = run("Materials.GetMaterialProperties " + dictionary(0, "visual"));
    ASSERT_TRUE(visual.ok()) << toUTF8(visual.text);
    EXPECT_EQ(boost::json::parse(toUTF8(visual.text)).at("type"), "visualMaterial");
    EXPECT_EQ(run("Materials.GetUserNameW " + dictionary(2, "physical")).text, manager().GetUIName(bodies[2]->physical.assetInstance()));

    // The script functions run the same commands.
    std::ostringstream printed;
    JavaScriptEngine engine(printed);
    const auto result = engine.evaluate("print(trvModeling.getMaterialUserName(" + dictionary(0, "physical") + "));", "names.js");
    ASSERT_TRUE(result.ok) << result.text;
    EXPECT_EQ(printed.str(), "Steel (generic)\n");
}

TEST_F(MaterialCommands, FindingAndListingTheLibraries)
{
    EXPECT_EQ(run("Materials.FindPhysical \"Steel (generic)\"").text, L"Name Steel (generic), Id CorvexMaterial-018");
    EXPECT_EQ(run("Materials.FindPhysical /ById CorvexMaterial-018").text, L"Name Steel (generic), Id CorvexMaterial-018");
    const std::wstring listed = run("Materials.ListPhysical /Raw").text;
    EXPECT_NE(listed.find(L"Name Steel (generic), Id CorvexMaterial-018\n"), std::wstring::npos);
    std::size_t physical = 0;
    for (const auto& [name, pathAndId] : manager().GetLibrariesInfo())
        physical += manager().GetPhysicalMaterialsByLibrary(pathAndId.second).size();
    EXPECT_TRUE(listed.ends_with(L"Total Physical Materials: " + std::to_wstring(physical))) << toUTF8(listed.substr(listed.size() - 60));

    const std::wstring all = run("Materials.ListReducedLibrary").text;
    const std::wstring physicalOnly = run("Materials.ListReducedLibrary -physical").text;
    EXPECT_LT(physicalOnly.size(), all.size());
    EXPECT_TRUE(physicalOnly.ends_with(L" Materials \n"));
    EXPECT_EQ(run("Materials.MaterialLibraryPath").text, Types::GetReducedLibraryPath());
}

TEST_F(MaterialCommands, WhereUsedAndListShowTheDocumentsMaterials)
{
    const std::wstring whereUsed = run("Materials.WhereUsed CorvexMaterial-018").text;
    EXPECT_EQ(whereUsed, L"#" + std::to_wstring(bodies[0]->id()) + L" AppearanceTestor physical\n#" + std::to_wstring(bodies[1]->id())
            + L" AppearanceTestor physical\n2 uses of Steel (generic) (CorvexMaterial-018)");
    const std::wstring list = run("Materials.List").text;
    EXPECT_NE(list.find(L"Segment Id: main \nSteel (generic), CorvexMaterial-018, 0, "), std::wstring::npos) << toUTF8(list);
    EXPECT_TRUE(list.ends_with(L"Total Physical Materials: 2, Visual Materials: 1")) << toUTF8(list);
}

TEST_F(MaterialCommands, ReplaceAllIsOneUndoableStep)
{
    IAssetInstance* steel = bodies[0]->physical.assetInstance();
    IAssetInstance* other = bodies[2]->physical.assetInstance();
    const TextCommandOutcome replaced = run("Materials.ReplaceAll CorvexMaterial-018 " + toUTF8(standardPhysicalId(1)));
    ASSERT_TRUE(replaced.ok()) << toUTF8(replaced.text);
    EXPECT_EQ(replaced.text.substr(0, 11), L"Replaced 2 ");
    EXPECT_EQ(registry->useCount(steel), 0u);
    EXPECT_EQ(registry->useCount(other), 3u);
    EXPECT_EQ(document->transactions().undoNames(), std::vector<std::wstring>{L"Replace Material"});

    ASSERT_TRUE(document->transactions().undo());
    EXPECT_EQ(registry->useCount(steel), 2u);
    EXPECT_EQ(registry->useCount(other), 1u);
    EXPECT_EQ(bodies[1]->physical.assetInstance(), steel);
    ASSERT_TRUE(document->transactions().redo());
    EXPECT_EQ(registry->useCount(other), 3u);
    EXPECT_TRUE(registry->validate());

    // A replacement the document does not hold yet comes from the libraries, once.
    ASSERT_TRUE(run("Materials.ReplaceAll " + toUTF8(standardPhysicalId(1)) + " CorvexMaterial-018").ok());
    EXPECT_EQ(registry->registeredPhysicalMaterials(), 2u) << "the steel still registered is shared";
}

TEST_F(MaterialCommands, PurgeRemovesWhatNothingUsesAndTheSavedDocumentLosesIt)
{
    ASSERT_TRUE(run("Materials.ReplaceAll CorvexMaterial-018 " + toUTF8(standardPhysicalId(1))).ok());
    EXPECT_EQ(run("Materials.PurgeUnused /DryRun").text,
        L"would purge physical material Steel (generic) (CorvexMaterial-018)\n1 unused materials would be purged");
    EXPECT_EQ(registry->registeredPhysicalMaterials(), 2u) << "a dry run purges nothing";
    EXPECT_EQ(run("Materials.PurgeUnused").text, L"purged physical material Steel (generic) (CorvexMaterial-018)\n1 unused materials purged");
    EXPECT_EQ(run("Materials.PurgeUnused").text, L"0 unused materials purged");

    KxTest::TempDir folder;
    DocumentFile::save(*document, folder / "purged.kxd");
    const std::unique_ptr<Document> reopened = DocumentFile::open(folder / "purged.kxd");
    StrongRef<AmbrelAssetManager> read = AmbrelAssetManager::find(reopened.get());
    ASSERT_TRUE(read);
    std::vector<IAssetInstance*> physical;
    read->getAllRegisteredPhysicalMaterials(physical);
    ASSERT_EQ(physical.size(), 1u);
    EXPECT_EQ(manager().GetAssetInstanceMaterialID(physical[0]), standardPhysicalId(1));
    EXPECT_EQ(read->useCount(physical[0]), 3u);
}

TEST_F(MaterialCommands, DictionariesNamingNoMaterialOfTheActiveDocumentAreNotValid)
{
    const std::string registryId = std::to_string(registry->id());
    // A material the registry does not hold, wrong member types, and an id that is not a registry.
    for (const std::string& dictionary :
        {R"({"ambrelMaterialID":"CorvexMaterial-999","AmbrelAssetManager":)" + registryId + "}",
            R"({"ambrelMaterialID":18,"AmbrelAssetManager":)" + registryId + "}",
            R"({"ambrelMaterialID":"CorvexMaterial-018","AmbrelAssetManager":[)" + registryId + "]}",
            std::string(R"({"ambrelMaterialID":"CorvexMaterial-018","AmbrelAssetManager":-1})")}) {
        SCOPED_TRACE(dictionary);
        EXPECT_EQ(run("Materials.GetMaterialProperties " + dictionary).text, L"Not valid material");
    }
    // Another document, made active, holds no registry under that id: the first document's
    // dictionary is not one of the active document's materials.
    const std::string steel = dictionary(0, "physical");
    Document& other = DocumentRegistry::get().create();
    (void)other.createSegment("main");
    EXPECT_EQ(run("Materials.GetUserNameW " + steel).text, L"Not valid material");
    EXPECT_EQ(run("Materials.WhereUsed CorvexMaterial-018").text, L"The document has no physical material CorvexMaterial-018");
    EXPECT_EQ(run("Materials.PurgeUnused").text, L"0 unused materials purged") << "an empty document has nothing to purge";
    ASSERT_TRUE(DocumentRegistry::get().activate(*document));
    EXPECT_EQ(run("Materials.GetUserNameW " + steel).text, L"Steel (generic)");
}

TEST(MaterialCommandsWithoutDocument, EveryDocumentCommandSaysSo)
{
    for (Document* open : DocumentRegistry::get().documents())
        DocumentRegistry::get().close(*open);
    for (const char* line : {"Materials.WhereUsed Steel", "Materials.ReplaceAll A B", "Materials.PurgeUnused"}) {
        const TextCommandOutcome outcome = TextCommandRegistry::instance().runLine(line);
        EXPECT_FALSE(outcome.ok());
        EXPECT_EQ(outcome.text, L"No document is open: open one first (doc open FILE)");
    }
    EXPECT_EQ(TextCommandRegistry::instance().runLine("Materials.List").text, L"Total Physical Materials: 0, Visual Materials: 0");
}

} // namespace
} // namespace Kx
