#include <base/Assert.h>
#include <base/FaultInjection.h>
#include <base/Options.h>
#include <base/XMLNode.h>

#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

using namespace Kx;

// A group with one option of every kind and a nested group, recording change notifications.
class SampleGroup : public OptionGroup {
public:
    SampleGroup()
        : OptionGroup("SampleGroup")
        , flag(add<BoolOption>("Flag", true))
        , count(add<IntOption>("Count", -3))
        , scale(add<DoubleOption>("Scale", 0.1))
        , label(add<StringOption>("Label", "default"))
        , items(add<StringListOption>("Items", std::vector<std::string>{"a"}))
        , choice(add<ChoiceOption>("Choice", "Dummy", std::vector<ChoiceOption::Choice>{{"Dummy", L"Dummy"}}))
        , nested(subGroup("Nested").add<StringOption>("Deep", "deep default"))
    {
        choice.addChoice("Metal", L"M\u00e9tal");
        choice.addChoice("Wood");
    }

    std::vector<std::string> changes;
    int loads = 0;
    BoolOption& flag;
    IntOption& count;
    DoubleOption& scale;
    StringOption& label;
    StringListOption& items;
    ChoiceOption& choice;
    StringOption& nested;

private:
    void onOptionChanged(Option& option) override { changes.push_back(option.id()); }
    void onLoaded() override { ++loads; }
};

class OptionGroupTest : public ::testing::Test {
protected:
    void writeOptionFile(const std::string& text)
    {
        std::filesystem::create_directories(m_group.persistFile().parent_path());
        std::ofstream(m_group.persistFile(), std::ios::binary) << text;
    }

    KxTest::TempDir m_user;
    KxTest::ScopedEnvironment m_userDir{"KX_USER_DIR", m_user.path()};
    SampleGroup m_group;
};

TEST_F(OptionGroupTest, SavedValuesLoadBackIntoAFreshGroup)
{
    EXPECT_EQ(m_group.persistFile(), m_user.path() / "options" / "SampleGroup.xml");
    m_group.flag.setValue(false);
    m_group.count.setValue(std::numeric_limits<std::int64_t>::min());
    m_group.scale.setValue(1.0 / 3.0);
    m_group.label.setValue(" <\"Gr\xc3\xbcn\"> &\n\ttab ");
    m_group.items.setValue({"", " x ", "a,b", "line\nbreak", "\"q\""});
    ASSERT_TRUE(m_group.choice.setValue("Wood"));
    m_group.nested.setValue("changed");
    ASSERT_TRUE(m_group.save());

    SampleGroup fresh;
    ASSERT_TRUE(fresh.load());
    EXPECT_FALSE(fresh.flag.value());
    EXPECT_EQ(fresh.count.value(), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(fresh.scale.value(), 1.0 / 3.0);
    EXPECT_EQ(fresh.label.value(), " <\"Gr\xc3\xbcn\"> &\n\ttab ");
    EXPECT_EQ(fresh.items.value(), (std::vector<std::string>{"", " x ", "a,b", "line\nbreak", "\"q\""}));
    EXPECT_EQ(fresh.choice.value(), "Wood");
    EXPECT_EQ(fresh.nested.value(), "changed");
    EXPECT_FALSE(fresh.dirty());
    EXPECT_TRUE(fresh.changes.empty()) << "loading must not look like user edits";
    EXPECT_EQ(fresh.loads, 1);
}

TEST_F(OptionGroupTest, FileLayoutIsOneElementPerOption)
{
    m_group.items.setValue({"x", "y"});
    ASSERT_TRUE(m_group.save());
    const auto document = XMLDocument::loadFile(m_group.persistFile());
    ASSERT_TRUE(document);
    const XMLNode root = document->documentElement();
    EXPECT_EQ(root.name(), "OptionGroup");
    EXPECT_EQ(root["Name"].asString(), "SampleGroup");
    EXPECT_EQ(root["Version"].asInt32(), 1);
    EXPECT_EQ(root.child("Flag")["Value"].asString(), "1");
    EXPECT_EQ(root.child("Scale")["Value"].asString(), "0.1");
    EXPECT_EQ(root.child("Items").childCount(), 2u);
    EXPECT_EQ(root.child("Items").childAt(1)["Value"].asString(), "y");
    EXPECT_EQ(root.child("OptionGroup")["Name"].asString(), "Nested");
    EXPECT_EQ(root.child("OptionGroup").child("Deep")["Value"].asString(), "deep default");
}

TEST_F(OptionGroupTest, DirtyMeansChangedSinceLoadOrSave)
{
    EXPECT_FALSE(m_group.dirty());
    m_group.label.setValue("default"); // the same value is no change
    EXPECT_FALSE(m_group.dirty());
    m_group.nested.setValue("x");
    EXPECT_TRUE(m_group.dirty());
    EXPECT_FALSE(m_group.label.dirty());
    ASSERT_TRUE(m_group.save());
    EXPECT_FALSE(m_group.dirty());
    m_group.count.setValue(5);
    EXPECT_TRUE(m_group.count.dirty());
    ASSERT_TRUE(m_group.load());
    EXPECT_FALSE(m_group.dirty());
    EXPECT_EQ(m_group.count.value(), -3);
    EXPECT_EQ(m_group.changes, (std::vector<std::string>{"Count"})); // sub-group options notify their own group
}

TEST_F(OptionGroupTest, TextFormsRefuseWhatIsNoValue)
{
    const struct {
        const char* name;
        Option* option;
        const char* text;
        bool accepted;
        const char* after;
    } cases[] = {
        {"bool true", &m_group.flag, "true", true, "1"},
        {"bool yes", &m_group.flag, "yes", false, "1"},
        {"int", &m_group.count, "-42", true, "-42"},
        {"int with blank", &m_group.count, " 42", false, "-42"},
        {"int overflow", &m_group.count, "9223372036854775808", false, "-42"},
        {"double", &m_group.scale, "2.5e-3", true, "0.0025"},
        {"double nan", &m_group.scale, "nan", false, "0.0025"},
        {"double trailing", &m_group.scale, "1.5x", false, "0.0025"},
        {"list", &m_group.items, "( a , \"b,c\")", true, "(a, \"b,c\")"},
        {"malformed list", &m_group.items, "(a", false, "(a, \"b,c\")"},
        {"choice", &m_group.choice, "Metal", true, "Metal"},
        {"unknown choice", &m_group.choice, "Stone", false, "Metal"},
        {"choice by its text", &m_group.choice, "M\xc3\xa9tal", false, "Metal"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.option->fromText(c.text), c.accepted);
        EXPECT_EQ(c.option->toText(), c.after);
    }
}

TEST_F(OptionGroupTest, MissingFileLoadsDefaults)
{
    m_group.label.setValue("edited");
    EXPECT_TRUE(m_group.load());
    EXPECT_EQ(m_group.label.value(), "default");
    EXPECT_FALSE(m_group.dirty());
}

TEST_F(OptionGroupTest, CorruptFilesAreRefusedAndChangeNothing)
{
    const struct {
        const char* name;
        const char* text;
    } cases[] = {
        {"empty", ""},
        {"truncated", "<OptionGroup Name=\"SampleGroup\" Version=\"1\"><Label Value=\"x\"/>"},
        {"other group", "<OptionGroup Name=\"OtherGroup\"><Label Value=\"x\"/></OptionGroup>"},
        {"other document", "<Options Name=\"SampleGroup\"><Label Value=\"x\"/></Options>"},
        {"binary", "\x89PNG\r\n\x1a\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        m_group.label.setValue("edited");
        writeOptionFile(c.text);
        EXPECT_FALSE(m_group.load());
        EXPECT_EQ(m_group.label.value(), "edited");
    }
}

// A file this program cannot read (damaged, or written by a newer version whose values may mean
// something else) is refused with a reason that names it, and moved aside before anything could
// save over it: the user's settings are never silently replaced.
TEST_F(OptionGroupTest, UnreadableFilesAreKeptAsideAndNeverSavedOver)
{
    const struct {
        const char* name;
        const char* text;
        const char* reason;
    } cases[] = {
        {"damaged", "<OptionGroup Name=\"SampleGroup\" Version=\"1\"><Label", "SampleGroup.xml: "},
        {"newer version", "<OptionGroup Name=\"SampleGroup\" Version=\"2\"><Label Value=\"new\"/></OptionGroup>",
            "written by another version of the option file format (2; this program reads 1)"},
    };
    const auto file = m_group.persistFile();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::filesystem::remove_all(file.parent_path());
        writeOptionFile(c.text);
        std::string problem;
        EXPECT_FALSE(m_group.load(&problem));
        EXPECT_NE(problem.find(c.reason), std::string::npos) << problem;
        const auto aside = std::filesystem::path(file.string() + ".unreadable");
        EXPECT_NE(problem.find("the file is kept as " + aside.string()), std::string::npos) << problem;
        EXPECT_EQ(m_group.label.value(), "default");
        ASSERT_TRUE(m_group.save());
        EXPECT_EQ(KxTest::readText(aside), c.text) << "the save wrote a new file beside the kept one";
        // A second unreadable file does not replace the first one kept.
        writeOptionFile(c.text);
        EXPECT_FALSE(m_group.load());
        EXPECT_TRUE(std::filesystem::exists(file.string() + ".unreadable-2"));
        EXPECT_EQ(KxTest::readText(aside), c.text);
    }
}

TEST_F(OptionGroupTest, RefusedOrMissingValuesFallBackToDefaults)
{
    writeOptionFile(R"(<OptionGroup Name="SampleGroup" Version="1">
        <Count Value="many"/><Choice Value="Stone"/><Items><Item/></Items><Flag/>
        <Label Value="from file"/><Unknown Value="from a newer version"/>
        <OptionGroup Name="Unknown"><Deep Value="elsewhere"/></OptionGroup></OptionGroup>)");
    m_group.count.setValue(9);
    m_group.scale.setValue(9.0);
    ASSERT_TRUE(m_group.load());
    EXPECT_EQ(m_group.count.value(), -3);
    EXPECT_EQ(m_group.choice.value(), "Dummy");
    EXPECT_EQ(m_group.items.value(), std::vector<std::string>{"a"});
    EXPECT_TRUE(m_group.flag.value());
    EXPECT_EQ(m_group.scale.value(), 0.1);
    EXPECT_EQ(m_group.label.value(), "from file");
    EXPECT_EQ(m_group.nested.value(), "deep default");
}

TEST_F(OptionGroupTest, AFailedSaveKeepsTheOldFileAndTheDirtyState)
{
    ASSERT_TRUE(m_group.save());
    const auto before = KxTest::readText(m_group.persistFile());
    m_group.label.setValue("unsaved");
    {
        FaultInjection::ScopedFault fault("XMLDocument.saveFile.write");
        EXPECT_FALSE(m_group.save());
    }
    EXPECT_TRUE(m_group.dirty());
    EXPECT_EQ(KxTest::readText(m_group.persistFile()), before);
}

TEST_F(OptionGroupTest, ChoicesCanBeReplacedWhileTheDefaultStaysAllowed)
{
    m_group.choice.clearChoices();
    m_group.choice.addChoice("Glass", L"Verre");
    EXPECT_FALSE(m_group.choice.setValue("Wood"));
    EXPECT_TRUE(m_group.choice.setValue("Glass"));
    m_group.choice.resetToDefault();
    EXPECT_EQ(m_group.choice.value(), "Dummy");
    EXPECT_TRUE(m_group.choice.removeChoice("Glass"));
    EXPECT_FALSE(m_group.choice.removeChoice("Glass"));
    EXPECT_TRUE(m_group.choice.choices().empty());
}

TEST_F(OptionGroupTest, InvalidOrDuplicateIdsAreReported)
{
    ScopedAssertionCapture capture;
    OptionGroup group("G");
    group.add<BoolOption>("OK", false);
    group.add<BoolOption>("OK", true);
    group.add<BoolOption>("has space", true);
    group.add<BoolOption>("OptionGroup", true);
    ASSERT_EQ(capture.reports().size(), 3u);
    EXPECT_EQ(capture.reports()[0].condition, "this->option(option->id()) == nullptr");
    EXPECT_EQ(capture.reports()[1].condition, "isElementName(option->id())");
    EXPECT_FALSE(group.optionAs<BoolOption>("OK")->value());
}

TEST_F(OptionGroupTest, BootstrapOptionsDriveLanguageAndPseudoLocalisation)
{
    auto& bootstrap = BootstrapOptionGroup::get();
    EXPECT_EQ(bootstrap.name(), "BootstrapOptionGroup");
    ASSERT_NE(bootstrap.option("UserLanguage"), nullptr);
    ASSERT_NE(bootstrap.option("PseudoLocalize"), nullptr);

    bootstrap.userLanguage("de-DE");
    bootstrap.pseudoLocalize(true);
    ASSERT_TRUE(bootstrap.save());
    bootstrap.userLanguage("fr-FR");
    bootstrap.pseudoLocalize(false);
    ASSERT_TRUE(bootstrap.load());
    EXPECT_EQ(bootstrap.userLanguage(), "de-DE");
    EXPECT_TRUE(bootstrap.pseudoLocalize());

    std::filesystem::remove(bootstrap.persistFile());
    ASSERT_TRUE(bootstrap.load());
    const char* language = std::getenv("KX_LANG");
    EXPECT_EQ(bootstrap.userLanguage(), language != nullptr && *language != '\0' ? language : "en-US");
    EXPECT_FALSE(bootstrap.pseudoLocalize());
}

TEST_F(OptionGroupTest, UserLibraryListsStayParallel)
{
    auto& libraries = AmbrelMaterialOptionGroup::get();
    libraries.resetToDefaults();
    libraries.addLibraryPath(L"Mine", L"/data/mine.tvrnlib");
    libraries.addLibraryPath(L"Th\u00e9irs", L"/data/theirs.tvrnlib");
    libraries.addLibraryPath(L"Renamed", L"/data/mine.tvrnlib");
    EXPECT_EQ(libraries.libraryNames(), (std::vector<std::wstring>{L"Renamed", L"Th\u00e9irs"}));
    EXPECT_EQ(libraries.libraryPaths(), (std::vector<std::wstring>{L"/data/mine.tvrnlib", L"/data/theirs.tvrnlib"}));
    EXPECT_FALSE(libraries.removeLibraryPath(L"/data/none.tvrnlib"));
    EXPECT_TRUE(libraries.removeLibraryPath(L"/data/mine.tvrnlib"));
    EXPECT_EQ(libraries.libraryNames(), std::vector<std::wstring>{L"Th\u00e9irs"});
    EXPECT_EQ(libraries.libraryPaths(), std::vector<std::wstring>{L"/data/theirs.tvrnlib"});
    libraries.resetToDefaults();
}

} // namespace
