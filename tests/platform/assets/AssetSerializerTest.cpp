#include "SampleLibrary.h"

#include <assets/IAssetDefinition.h>
#include <assets/IAssetSerializer.h>

#include <core/io/FileDataStream.h>

#include "support/TestSupport.h"

#include <gtest/gtest.h>

namespace {

using namespace telvarin::platform::assets;
using telvarin::platform::core::io::FileDataStream;
using AssetTest::InstancePtr;

class Resolver : public IAssetLibraryRequest {
public:
    explicit Resolver(IAssetLibrary* library) : m_library(library) {}
    IAssetLibrary* RequestAssetLibrary(const WideString& libraryId) override
    {
        requests.push_back(libraryId);
        return m_library != nullptr && m_library->GetLibraryId() == libraryId ? m_library : nullptr;
    }
    std::vector<WideString> requests;

private:
    IAssetLibrary* m_library;
};

class AssetSerializerTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        AssetTest::writeSampleLibrary(*m_manager, m_dir / "sample.tvrnlib");
        m_library = m_manager->OpenAssetLibrary((m_dir / "sample.tvrnlib").wstring());
        ASSERT_NE(m_library, nullptr);
    }
    void TearDown() override { m_manager->ReleaseAssetLibrary(m_library); }

    // A tinted library steel, the untouched library glass and a steel made from scratch.
    std::vector<std::uint8_t> serializeSample()
    {
        InstancePtr tinted(m_library->CreateAssetInstance("steel"));
        InstancePtr appearance(tinted->GetConnectedAsset(L"materialappearance"));
        EXPECT_TRUE(appearance->SetColorValue(L"opaque_albedo", {1, 0, 0, 1}));
        InstancePtr glass(m_library->CreateAssetInstance("glass"));
        InstancePtr loose = AssetTest::makeSteel(*m_manager);

        auto serializer = m_manager->CreateAssetSerializer();
        EXPECT_TRUE(serializer->RegisterAssetInstance(tinted.get(), L"0"));
        EXPECT_TRUE(serializer->RegisterAssetInstance(glass.get(), L"1"));
        EXPECT_TRUE(serializer->RegisterAssetInstance(loose.get(), L"2"));
        EXPECT_FALSE(serializer->RegisterAssetInstance(glass.get(), L"1")) << "keys are unique";
        EXPECT_FALSE(serializer->RegisterAssetInstance(nullptr, L"3"));
        EXPECT_EQ(glass->GetReferenceCount(), 2) << "the serializer holds its own reference";

        const auto file = m_dir / "assets.bin";
        FileDataStream stream(file, FileDataStream::EOpenMode::eWrite);
        EXPECT_TRUE(stream.open());
        AssetError error;
        EXPECT_TRUE(serializer->Serialize(stream, &error)) << error.message;
        stream.close();
        std::vector<std::uint8_t> again;
        EXPECT_TRUE(serializer->SerializeToBytes(again));
        EXPECT_EQ(KxTest::readBytes(file), again) << "same instances, same bytes";
        return again;
    }

    KxTest::TempDir m_dir;
    std::unique_ptr<IAssetLibraryManager> m_manager = CreateAssetLibraryManager();
    IAssetLibrary* m_library = nullptr;
};

TEST_F(AssetSerializerTest, RoundTripKeepsValuesIdentityAndSharing)
{
    const auto bytes = serializeSample();
    KxTest::writeBytes(m_dir / "read.bin", bytes);
    FileDataStream stream(m_dir / "read.bin", FileDataStream::EOpenMode::eRead);
    ASSERT_TRUE(stream.open());
    Resolver resolver(m_library);
    auto deserializer = m_manager->CreateAssetDeSerializer();
    AssetError error;
    ASSERT_TRUE(deserializer->Deserialize(stream, &resolver, &error)) << error.message;
    EXPECT_EQ(resolver.requests, std::vector<WideString>{AssetTest::s_sampleLibraryId}) << "one request per library";
    EXPECT_EQ(deserializer->GetKeys(), (std::vector<WideString>{L"0", L"1", L"2"}));

    InstancePtr tinted(deserializer->TakeAssetInstance(L"0"));
    ASSERT_NE(tinted, nullptr);
    EXPECT_EQ(tinted->GetReferenceCount(), 1) << "the deserializer hands over its reference";
    EXPECT_EQ(deserializer->TakeAssetInstance(L"0"), nullptr);
    EXPECT_EQ(tinted->GetAssetDefinition(), m_library->FindAssetDefinition("steel")) << "the live library's definition";
    InstancePtr appearance(tinted->GetConnectedAsset(L"materialappearance"));
    AssetColor color;
    ASSERT_TRUE(appearance->GetColorValue(L"opaque_albedo", color));
    EXPECT_EQ(color, (AssetColor{1, 0, 0, 1})) << "the document's change wins over the library";
    EXPECT_EQ(appearance->GetConnectedAssetCount(L"opaque_albedo"), 1);
    InstancePtr structural(tinted->GetConnectedAsset(L"Structural"));
    InstancePtr aspect(tinted->GetConnectedAsset(L"physmat_aspects"));
    EXPECT_EQ(structural.get(), aspect.get());

    InstancePtr loose(deserializer->TakeAssetInstance(L"2"));
    EXPECT_EQ(loose->GetAssetDefinition(), nullptr);
    EXPECT_EQ(loose->GetAssetId(), "steel");
    EXPECT_TRUE(loose->IsEqual(AssetTest::makeSteel(*m_manager).get()));
    EXPECT_EQ(loose->GetName("deu"), L"Stahl");
}

TEST_F(AssetSerializerTest, WithoutItsLibraryTheIdentityIsRebuilt)
{
    auto deserializer = m_manager->CreateAssetDeSerializer();
    ASSERT_TRUE(deserializer->DeserializeFromBytes(serializeSample()));
    InstancePtr glass(deserializer->TakeAssetInstance(L"1"));
    ASSERT_NE(glass, nullptr);
    const IAssetDefinition* definition = glass->GetAssetDefinition();
    ASSERT_NE(definition, nullptr);
    EXPECT_NE(definition, m_library->FindAssetDefinition("glass"));
    EXPECT_EQ(definition->GetLibraryId(), AssetTest::s_sampleLibraryId);
    EXPECT_EQ(definition->GetMaterialId(), "glass");
    EXPECT_EQ(definition->GetCategory(), L"Glass");
    EXPECT_EQ(definition->GetSchemaName(), L"CorvexTransparentSchema");
    InstancePtr tinted(deserializer->TakeAssetInstance(L"0"));
    EXPECT_EQ(tinted->GetAssetDefinition()->GetMajorVersion(), 2);
    EXPECT_EQ(tinted->GetAssetDefinition()->GetRevision(), L"2024.1");
}

TEST_F(AssetSerializerTest, DamagedBytesKeepNothing)
{
    const auto bytes = serializeSample();
    auto deserializer = m_manager->CreateAssetDeSerializer();
    ASSERT_TRUE(deserializer->DeserializeFromBytes(bytes));

    struct Case {
        const char* name;
        std::vector<std::uint8_t> bytes;
    };
    std::vector<std::uint8_t> flipped = bytes;
    flipped[16] ^= 0xFF; // the page size
    flipped[17] ^= 0xFF;
    const Case cases[] = {
        {"empty", {}},
        {"half", std::vector<std::uint8_t>(bytes.begin(), bytes.begin() + bytes.size() / 2)},
        {"last byte missing", std::vector<std::uint8_t>(bytes.begin(), bytes.end() - 1)},
        {"damaged header", flipped},
        {"a library, not document assets", KxTest::readBytes(m_dir / "sample.tvrnlib")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto fresh = m_manager->CreateAssetDeSerializer();
        AssetError error;
        EXPECT_FALSE(fresh->DeserializeFromBytes(c.bytes, nullptr, &error));
        EXPECT_NE(error.code, EAssetError::eNone);
        EXPECT_TRUE(fresh->GetKeys().empty());
    }
}

} // namespace
