#include <base/BootstrapOptionGroup.h>
#include <base/StringTable.h>
#include <base/XMLNode.h>

#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>

namespace {

using Kx::StringTable;

// A content root of its own with tables in several languages; the user language is restored after.
class StringTableTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        m_language = Kx::BootstrapOptionGroup::get().userLanguage();
        writeTable("en-US", "Mod", R"(<String id="Hello">Hello</String><String id="Only">only English</String>
            <String id="Empty">English for empty</String>)");
        writeTable("de-DE", "Mod", R"(<String id="Hello">Hallo</String><String id="Empty"></String>)");
        writeTable("de-AT", "Mod", R"(<String id="Hello">Servus</String><String id="Austrian">&#246;sterreichisch</String>)");
        writeTable("de-CH", "Mod", R"(<String id="Austrian">wrong table</String><String id="Swiss">Gr&#252;ezi</String>)");
        writeFile("fr-FR", "Mod", "<StringTable><String id=\"Hello\">Bonjour</String>"); // not closed
        writeFile("it-IT", "Mod", "<Strings><String id=\"Hello\">Ciao</String></Strings>");
        writeFile("../outside", "Mod", "<StringTable><String id=\"Hello\">escaped</String></StringTable>");
        StringTable::reload();
    }

    void TearDown() override
    {
        Kx::BootstrapOptionGroup::get().userLanguage(m_language);
        StringTable::reload();
    }

    void writeTable(const std::string& language, const std::string& module, const std::string& entries)
    {
        writeFile(language, module,
            "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<StringTable module=\"" + module + "\" language=\"" + language
                + "\">" + entries + "</StringTable>\n");
    }

    void writeFile(const std::string& language, const std::string& module, const std::string& text)
    {
        const auto file = m_content / "strings" / language / (module + ".xml");
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << text;
    }

    static std::wstring lookup(const std::string& language, const std::string& id)
    {
        Kx::BootstrapOptionGroup::get().userLanguage(language);
        return StringTable::getLocalizedString("Mod", id, "fallback \xc3\xa9");
    }

    KxTest::TempDir m_content;
    KxTest::ScopedEnvironment m_contentRoot{"KX_CONTENT_DIR", m_content.path()};
    std::string m_language;
};

TEST_F(StringTableTest, FallsBackFromLanguageToPrimaryLanguageToEnglishToDefault)
{
    const struct {
        const char* language;
        const char* id;
        const wchar_t* expected;
    } cases[] = {
        {"de-DE", "Hello", L"Hallo"},
        {"de-AT", "Hello", L"Servus"},
        {"de-DE", "Austrian", L"\u00f6sterreichisch"}, // de-AT comes before de-CH
        {"de-DE", "Swiss", L"Gr\u00fcezi"},
        {"de", "Hello", L"Servus"}, // no "de" folder: the first of its regional tables
        {"de-DE", "Only", L"only English"},
        {"de-DE", "Empty", L"English for empty"}, // an empty entry is untranslated
        {"de-DE", "Missing", L"fallback \u00e9"},
        {"en-US", "Hello", L"Hello"},
        {"en-GB", "Hello", L"Hello"},
        {"ja-JP", "Hello", L"Hello"},
        {"", "Hello", L"Hello"},
        {"../outside", "Hello", L"Hello"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.language) + "/" + c.id);
        EXPECT_EQ(lookup(c.language, c.id), c.expected);
    }
    EXPECT_EQ(StringTable::getLocalizedString("NoSuchModule", "Hello", "Fallback"), L"Fallback");
}

TEST_F(StringTableTest, MalformedTablesCountAsMissing)
{
    EXPECT_EQ(lookup("fr-FR", "Hello"), L"Hello");
    EXPECT_EQ(lookup("it-IT", "Hello"), L"Hello");
}

TEST_F(StringTableTest, TablesAreCachedUntilReload)
{
    EXPECT_EQ(lookup("de-DE", "Hello"), L"Hallo");
    writeTable("de-DE", "Mod", R"(<String id="Hello">Guten Tag</String>)");
    EXPECT_EQ(StringTable::getLocalizedString("Mod", "Hello", ""), L"Hallo");
    StringTable::reload();
    EXPECT_EQ(StringTable::getLocalizedString("Mod", "Hello", ""), L"Guten Tag");
}

TEST_F(StringTableTest, ChangingTheContentRootNeedsNoReload)
{
    EXPECT_EQ(lookup("en-US", "Hello"), L"Hello");
    KxTest::TempDir other;
    KxTest::ScopedEnvironment root("KX_CONTENT_DIR", other.path());
    EXPECT_EQ(StringTable::getLocalizedString("Mod", "Hello", "none"), L"none");
}

std::set<std::string> idsOf(const std::filesystem::path& file)
{
    std::set<std::string> ids;
    const auto document = Kx::XMLDocument::loadFile(file);
    for (auto entry = document ? document->documentElement().firstChild() : Kx::XMLNode(); entry; entry = entry.nextSibling()) {
        ids.insert(entry["id"].asString());
    }
    return ids;
}

TEST_F(StringTableTest, ShippedTablesTranslateEveryKey)
{
    const auto resources = std::filesystem::path(KX_TEST_DATA_DIR).parent_path().parent_path() / "Types" / "Resources";
    const auto english = idsOf(resources / "strings" / "en-US" / "KxTypes.xml");
    ASSERT_FALSE(english.empty());
    EXPECT_EQ(idsOf(resources / "strings" / "de-DE" / "KxTypes.xml"), english);

    KxTest::ScopedEnvironment root("KX_CONTENT_DIR", resources);
    Kx::BootstrapOptionGroup::get().userLanguage("de-DE");
    EXPECT_EQ(StringTable::getLocalizedString("KxTypes", "UnitsMeters", "meters"), L"Meter");
    EXPECT_EQ(StringTable::getLocalizedString("KxTypes", "ColorGreen", "Green"), L"Gr\u00fcn");
}

} // namespace
