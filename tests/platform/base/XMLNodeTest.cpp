#include <base/FaultInjection.h>
#include <base/XMLNode.h>

#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace {

using Kx::XMLDocument;
using Kx::XMLNode;

const Kx::XMLString s_valueKey(L"Val\u00fcr");

// How every typed read sees one attribute text (nullptr: attribute absent); fallbacks are 77.
struct AttributeCase {
    const char* name;
    const char* text;
    std::int32_t int32;
    std::uint32_t uint32;
    std::int64_t int64;
    double asDouble;
    bool asBool; // fallback true
};

TEST(XMLAttributeProxy, ReadsTheWholeTextOrFallBack)
{
    const AttributeCase cases[] = {
        {"absent", nullptr, 77, 77, 77, 77, true},
        {"zero", "0", 0, 0, 0, 0, false},
        {"negative", "-5", -5, 77, -5, -5, true},
        {"int32 overflow", "2147483648", 77, 2147483648u, 2147483648, 2147483648.0, true},
        {"uint32 overflow", "4294967296", 77, 77, 4294967296, 4294967296.0, true},
        {"int64 overflow", "9223372036854775808", 77, 77, 77, 9223372036854775808.0, true},
        {"plus sign", "+5", 77, 77, 77, 77, true},
        {"leading blank", " 5", 77, 77, 77, 77, true},
        {"trailing garbage", "5px", 77, 77, 77, 77, true},
        {"fraction", "2.5", 77, 77, 77, 2.5, true},
        {"empty", "", 77, 77, 77, 77, true},
        {"true", "true", 77, 77, 77, 77, true},
        {"false", "false", 77, 77, 77, 77, false},
        {"capitalised bool", "True", 77, 77, 77, 77, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        XMLDocument document;
        XMLNode element = document.appendChild("E");
        if (c.text != nullptr) {
            element["a"] = c.text;
        }
        const auto attribute = element["a"];
        EXPECT_EQ(attribute.exists(), c.text != nullptr);
        EXPECT_EQ(attribute.asInt32(77), c.int32);
        EXPECT_EQ(attribute.asUInt32(77), c.uint32);
        EXPECT_EQ(attribute.asInt64(77), c.int64);
        EXPECT_EQ(attribute.asDouble(77), c.asDouble);
        EXPECT_EQ(attribute.asBool(true), c.asBool);
        EXPECT_EQ(attribute.asString(), c.text != nullptr ? c.text : "");
    }
}

TEST(XMLAttributeProxy, WrittenValuesReadBackExactly)
{
    XMLDocument document;
    XMLNode element = document.appendChild("E");
    element["i"] = std::numeric_limits<std::int64_t>::min();
    element["u"] = std::numeric_limits<std::uint64_t>::max();
    element["f"] = 0.1f;
    element["d"] = 0.1;
    element["tiny"] = std::numeric_limits<double>::denorm_min();
    element["b"] = true;
    element[s_valueKey] = std::wstring(L"\u00e9\U0001F600 <&\">");
    element["w"] = L"\u00fc";
    element["n"] = -3;
    element["n"] = 4u; // replaces, does not add

    const auto text = document.toString(false);
    EXPECT_NE(text.find(R"(<E i="-9223372036854775808" u="18446744073709551615" f="0.1" d="0.1" tiny="5e-324" b="1" )"),
        std::string::npos)
        << text;

    const auto parsed = XMLDocument::parse(text);
    ASSERT_TRUE(parsed);
    const XMLNode back = parsed->documentElement();
    EXPECT_EQ(back["i"].asInt64(), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(back["u"].asUInt64(), std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(back["f"].asFloat(), 0.1f);
    EXPECT_EQ(back["d"].asDouble(), 0.1);
    EXPECT_EQ(back["tiny"].asDouble(), std::numeric_limits<double>::denorm_min());
    EXPECT_TRUE(back["b"].asBool());
    EXPECT_EQ(back[s_valueKey].asWString(), L"\u00e9\U0001F600 <&\">");
    EXPECT_EQ(back["w"].asString(), "\xc3\xbc");
    EXPECT_EQ(back["n"].asUInt32(), 4u);
    EXPECT_EQ(back["f"].asFloat(), 0.1f);
    EXPECT_EQ(back.raw().attribute("n").next_attribute(), pugi::xml_attribute());
}

TEST(XMLNode, NavigationSeesElementsOnly)
{
    const auto document = XMLDocument::parse("<r>text<!-- c --><a>1</a>more<b/><?pi x?><a>2</a></r>");
    ASSERT_TRUE(document);
    const XMLNode root = document->documentElement();
    EXPECT_EQ(root.childCount(), 3u);
    EXPECT_EQ(root.childAt(0).name(), "a");
    EXPECT_EQ(root.childAt(1).name(), "b");
    EXPECT_EQ(root.childAt(2).text(), "2");
    EXPECT_TRUE(root.childAt(3).isNull());
    EXPECT_EQ(root.firstChild().nextSibling().nextSibling().text(), "2");
    EXPECT_FALSE(root.firstChild().nextSibling().nextSibling().nextSibling());
    EXPECT_EQ(root.child("a").text(), "1");
    EXPECT_TRUE(root.child("missing").isNull());
    EXPECT_EQ(root.text(), "text");

    XMLNode missing = root.child("missing");
    missing["x"] = 1; // writing through a null node is ignored
    EXPECT_FALSE(missing["x"].exists());
    EXPECT_EQ(missing.childCount(), 0u);
}

TEST(XMLDocument, ParseRefusesWhatIsNotOneWellFormedDocument)
{
    const char* texts[] = {"", "<a>", "<a></b>", "<a x=1/>", "plain text", "<a/><b/>"};
    for (const char* text : texts) {
        SCOPED_TRACE(text);
        std::string error;
        EXPECT_FALSE(XMLDocument::parse(text, &error));
        EXPECT_FALSE(error.empty());
        std::string inPlace(text);
        std::string inPlaceError;
        EXPECT_FALSE(XMLDocument::parseInPlace(inPlace, &inPlaceError));
        EXPECT_FALSE(inPlaceError.empty());
    }
}

TEST(XMLDocument, ParsedInPlaceItReadsFromTheGivenText)
{
    std::string text = "<r a=\"x &amp; y\"><c>1</c></r>";
    const auto document = XMLDocument::parseInPlace(text);
    ASSERT_TRUE(document);
    EXPECT_EQ(document->documentElement()["a"].asString(), "x & y");
    EXPECT_EQ(document->documentElement().child("c").text(), "1");
    // The names and values lie in the text itself.
    const char* name = document->documentElement().raw().name();
    EXPECT_GE(name, text.data());
    EXPECT_LT(name, text.data() + text.size());
}

class XMLDocumentFileTest : public ::testing::Test {
protected:
    static XMLDocument documentWith(const char* value)
    {
        XMLDocument document;
        document.appendChild("Root").appendChild("Child").setText(value);
        return document;
    }

    // Nothing but the target itself may be left in the folder.
    void expectOnlyTarget() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_dir.path())) {
            names.push_back(entry.path().filename().string());
        }
        EXPECT_EQ(names, std::vector<std::string>{"doc.xml"});
    }

    KxTest::TempDir m_dir;
    std::filesystem::path m_file = m_dir / "doc.xml";
};

TEST_F(XMLDocumentFileTest, SaveAndLoadRoundTrip)
{
    ASSERT_TRUE(documentWith("first \xc3\xbc").saveFile(m_file));
    std::string error;
    const auto loaded = XMLDocument::loadFile(m_file, &error);
    ASSERT_TRUE(loaded) << error;
    EXPECT_EQ(loaded->documentElement().child("Child").text(), "first \xc3\xbc");
    expectOnlyTarget();
}

TEST_F(XMLDocumentFileTest, AFailedSaveLeavesThePreviousFileIntact)
{
    ASSERT_TRUE(documentWith("first").saveFile(m_file));
    const auto before = KxTest::readText(m_file);
    for (const char* point : {"XMLDocument.saveFile.write", "XMLDocument.saveFile.rename"}) {
        SCOPED_TRACE(point);
        Kx::FaultInjection::ScopedFault fault(point);
        EXPECT_FALSE(documentWith("second").saveFile(m_file));
        EXPECT_EQ(KxTest::readText(m_file), before);
        expectOnlyTarget();
    }
    EXPECT_FALSE(documentWith("x").saveFile(m_dir / "missing" / "doc.xml"));
}

TEST_F(XMLDocumentFileTest, LoadingMissingOrTruncatedFilesFails)
{
    std::string error;
    EXPECT_FALSE(XMLDocument::loadFile(m_file, &error));
    EXPECT_NE(error.find("doc.xml"), std::string::npos);

    ASSERT_TRUE(documentWith("complete").saveFile(m_file));
    auto bytes = KxTest::readBytes(m_file);
    bytes.resize(bytes.size() / 2);
    KxTest::writeBytes(m_file, bytes);
    EXPECT_FALSE(XMLDocument::loadFile(m_file, &error));
}

} // namespace
