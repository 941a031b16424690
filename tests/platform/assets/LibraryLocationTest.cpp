#include <assets/ILocalizationManager.h>
#include <assets/LibraryLocation.h>

#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

using namespace telvarin::platform::assets;

TEST(LibraryLocationTest, NetfsUrisAreParsedStrictly)
{
    struct Case {
        const wchar_t* uri;
        const wchar_t* authority; // null: refused
        const wchar_t* path;
    };
    const Case cases[] = {
        {L"netfs://LOCAL:/slib/content/physical", L"LOCAL", L"/slib/content/physical"},
        {L"netfs://{6F9619FF-8B86}:/user/jo.doe/content/private", L"{6F9619FF-8B86}", L"/user/jo.doe/content/private"},
        {L"netfs://LOCAL/slib/content", L"LOCAL", L"/slib/content"},
        {L"netfs://:/slib/content", nullptr, nullptr},
        {L"netfs://LOCAL:", nullptr, nullptr},
        {L"netfs://LOCAL:/", nullptr, nullptr},
        {L"netfs://LOCAL:/slib//content", nullptr, nullptr},
        {L"netfs://LOCAL:/slib/../etc", nullptr, nullptr},
        {L"netfs://LOCAL:/slib/./x", nullptr, nullptr},
        {L"netfs://LOCAL:/slib/content?x=1", nullptr, nullptr},
        {L"netfs://LOCAL:/slib/con tent", nullptr, nullptr},
        {L"netfs://LO:CAL:/slib", nullptr, nullptr},
        {L"netfs://LOCAL:\\slib", nullptr, nullptr},
        {L"file:///slib/content", nullptr, nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(telvarin::platform::core::toUTF8(c.uri));
        const auto parsed = ParseNetfsUri(c.uri);
        ASSERT_EQ(parsed.has_value(), c.authority != nullptr);
        if (parsed) {
            EXPECT_EQ(parsed->authority, c.authority);
            EXPECT_EQ(parsed->path, c.path);
            EXPECT_EQ(ParseNetfsUri(MakeNetfsUri(parsed->authority, parsed->path))->path, parsed->path);
        }
    }
}

TEST(LibraryLocationTest, MountedPathsWinOverTheFolderLayout)
{
    KxTest::TempDir content;
    std::filesystem::create_directories(content / "libraries");
    std::ofstream(content / "libraries" / "netfs.mounts") << "# comment\n\n/slib/content/physical PhysicalMaterial.tvrnlib\r\n"
                                                          << "/slib/content/physicalx Other Name.tvrnlib\n";
    EXPECT_EQ(ResolveNetfsUri(L"netfs://ANY:/slib/content/physical", content.path()),
        content / "libraries" / "PhysicalMaterial.tvrnlib");
    EXPECT_EQ(ResolveNetfsUri(L"netfs://ANY:/slib/content/physicalx", content.path()),
        content / "libraries" / "Other Name.tvrnlib");
    EXPECT_EQ(ResolveNetfsUri(L"netfs://ANY:/slib/content/phys", content.path()),
        content / "libraries" / "slib" / "content" / "phys.tvrnlib");
    EXPECT_FALSE(ResolveNetfsUri(L"netfs://ANY:/../x", content.path()).has_value());
}

TEST(LibraryLocationTest, MountsNeverLeaveTheLibrariesFolder)
{
    KxTest::TempDir content;
    std::filesystem::create_directories(content / "libraries");
    // Each hostile line is skipped, so the path falls through to a later line or to the folder layout.
    std::ofstream(content / "libraries" / "netfs.mounts") << "/a /etc/passwd\n/a ../../outside.tvrnlib\n/a sub/../../x\n"
                                                          << "/a sub/../inside.tvrnlib\n/b ..\n/c .\n";
    EXPECT_EQ(ResolveNetfsUri(L"netfs://ANY:/a", content.path()), content / "libraries" / "inside.tvrnlib");
    EXPECT_EQ(ResolveNetfsUri(L"netfs://ANY:/b", content.path()), content / "libraries" / "b.tvrnlib");
    EXPECT_EQ(ResolveNetfsUri(L"netfs://ANY:/c", content.path()), content / "libraries" / "c.tvrnlib");
}

TEST(LibraryLocationTest, MountedNamesAreTakenAsTheyAreStored)
{
    // Whatever the process's locale: a name beyond ASCII, and one that is not even UTF-8, name files.
    KxTest::TempDir content;
    std::filesystem::create_directories(content / "libraries");
    std::ofstream(content / "libraries" / "netfs.mounts") << "/a Matériaux.tvrnlib\n/b bad\xFE.tvrnlib\n";
    EXPECT_EQ(ResolveNetfsUri(L"netfs://ANY:/a", content.path())->native(), (content / "libraries").native() + "/Matériaux.tvrnlib");
    EXPECT_EQ(ResolveNetfsUri(L"netfs://ANY:/b", content.path())->native(), (content / "libraries").native() + "/bad\xFE.tvrnlib");
}

TEST(LibraryLocationTest, LocaleTagsMapToNameLanguages)
{
    const std::pair<const char*, const char*> cases[] = {{"de-DE", "deu"}, {"DE_at", "deu"}, {"de", "deu"},
        {"en-US", "eng"}, {"pt-BR", "ptb"}, {"zh-CN", "chs"}, {"zh-TW", "cht"}, {"zh-Hant-HK", "cht"},
        {"zh", "chs"}, {"xx-YY", "eng"}, {"", "eng"}, {"deu", "eng"}};
    for (const auto& [tag, language] : cases) {
        SCOPED_TRACE(tag);
        EXPECT_EQ(LanguageForLocale(tag), language);
    }
}

} // namespace
