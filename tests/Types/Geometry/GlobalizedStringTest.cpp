#include <Types/Geometry/GlobalizedString.h>

#include <base/BootstrapOptionGroup.h>
#include <base/StringTable.h>
#include <gtest/gtest.h>
#include <support/TestSupport.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace {

using Kx::BootstrapOptionGroup;
using Kx::GlobalizedString;
using Kx::StringTable;

const std::wstring kMark = L"\u00F9";

// Points the content root at a temporary folder whose English table of module "KxTypes" the test
// writes; restores language, pseudo-localisation and content root afterwards.
class GlobalizedStringTest : public testing::Test {
protected:
    GlobalizedStringTest() : m_contentRoot("KX_CONTENT_DIR", m_content.path()) {}

    void SetUp() override
    {
        m_language = BootstrapOptionGroup::get().userLanguage();
        m_pseudoLocalize = BootstrapOptionGroup::get().pseudoLocalize();
        BootstrapOptionGroup::get().userLanguage("en-US");
        BootstrapOptionGroup::get().pseudoLocalize(false);
        writeTable(R"(<String id="Key">Text</String><String id="Untranslated"></String>)");
    }

    void TearDown() override
    {
        BootstrapOptionGroup::get().userLanguage(m_language);
        BootstrapOptionGroup::get().pseudoLocalize(m_pseudoLocalize);
        StringTable::reload();
    }

    void writeTable(const std::string& entries)
    {
        const auto folder = m_content.path() / "strings" / "en-US";
        std::filesystem::create_directories(folder);
        std::ofstream(folder / "KxTypes.xml")
            << R"(<?xml version="1.0" encoding="utf-8"?><StringTable module="KxTypes" language="en-US">)" << entries
            << "</StringTable>";
        StringTable::reload();
    }

private:
    KxTest::TempDir m_content;
    KxTest::ScopedEnvironment m_contentRoot;
    std::string m_language;
    bool m_pseudoLocalize = false;
};

TEST_F(GlobalizedStringTest, LiteralIsShownAsGiven)
{
    const GlobalizedString text(L"Hello");
    EXPECT_EQ(text.value(), L"Hello");
    EXPECT_FALSE(text.isGlobalized());
    EXPECT_FALSE(text.wasGlobalized());
    EXPECT_EQ(GlobalizedString().value(), L"");
}

TEST_F(GlobalizedStringTest, ReferenceResolvesThroughTheTable)
{
    struct Case {
        const char* name;
        GlobalizedString::Reference reference;
        std::wstring expected;
    };
    const Case cases[] = {
        {"entry", {"KxTypes", "Key", "Fallback"}, L"Text"},
        {"missing entry", {"KxTypes", "Missing", "Fallback"}, L"Fallback"},
        {"empty entry", {"KxTypes", "Untranslated", "Fallback"}, L"Fallback"},
        {"missing module", {"NoSuchModule", "Key", "Fallback"}, L"Fallback"},
        {"non-ASCII default", {"KxTypes", "Missing", "Gr\xC3\xBC\xC3\x9F" "e"}, L"Gr\u00FC\u00DFe"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const GlobalizedString text(c.reference);
        EXPECT_TRUE(text.isGlobalized());
        EXPECT_TRUE(text.wasGlobalized());
        EXPECT_EQ(text.value(), c.expected);
    }
}

TEST_F(GlobalizedStringTest, ResolvesOnFirstReadAndAgainOnlyAfterAReset)
{
    GlobalizedString text(GlobalizedString::Reference{"KxTypes", "Key", "Fallback"});
    writeTable(R"(<String id="Key">Before</String>)");
    EXPECT_EQ(text.value(), L"Before");

    writeTable(R"(<String id="Key">After</String>)");
    EXPECT_EQ(text.value(), L"Before");
    text.resetToGlobalized();
    EXPECT_EQ(text.value(), L"After");

    text.set(GlobalizedString::Reference{"KxTypes", "Other", "Other fallback"});
    EXPECT_EQ(text.value(), L"Other fallback");
}

TEST_F(GlobalizedStringTest, LiteralSetOnAReferenceRemembersTheReference)
{
    GlobalizedString text(GlobalizedString::Reference{"KxTypes", "Key", "Fallback"});
    EXPECT_EQ(text.value(), L"Text");
    text.set(L"Typed by the user");
    EXPECT_EQ(text.value(), L"Typed by the user");
    EXPECT_FALSE(text.isGlobalized());
    EXPECT_TRUE(text.wasGlobalized());

    text.resetToGlobalized();
    EXPECT_TRUE(text.isGlobalized());
    EXPECT_EQ(text.value(), L"Text");
}

TEST_F(GlobalizedStringTest, TextFormShowsTheStoredFields)
{
    GlobalizedString text(GlobalizedString::Reference{"KxTypes", "Key", "Fallback"});
    EXPECT_EQ(text.toString(),
        L"(module: KxTypes, id: Key defaultValue: Fallback, value: , globalized: 1, globalizedValueInitialize: 0)");
    (void)text.value();
    EXPECT_EQ(text.toString(),
        L"(module: KxTypes, id: Key defaultValue: Fallback, value: Text, globalized: 1, globalizedValueInitialize: 1)");
}

TEST_F(GlobalizedStringTest, PseudoLocalisationMarksEveryTextOnce)
{
    BootstrapOptionGroup::get().pseudoLocalize(true);

    EXPECT_EQ(GlobalizedString(L"Hello").value(), kMark + L"Hello");
    GlobalizedString text(GlobalizedString::Reference{"KxTypes", "Key", "Fallback"});
    EXPECT_EQ(text.value(), kMark + L"Text");
    EXPECT_EQ(text.value(), kMark + L"Text");
    text.set(L"Typed");
    EXPECT_EQ(text.value(), kMark + L"Typed");
    EXPECT_EQ(GlobalizedString(GlobalizedString::Reference{"KxTypes", "Missing", "Fallback"}).value(),
        kMark + L"Fallback");
}

} // namespace
