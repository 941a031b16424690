#include <Types/Appearance/AmbrelManager.h>

#include "AmbrelTestLibraries.h"

#include <assets/IAssetDefinition.h>
#include <base/Assert.h>
#include <base/OS.h>

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace AmbrelTest {
namespace {

using Kx::AmbrelManager;
using Kx::Color;
using Kx::MaterialTweak;

MaterialTweak tint(float r, float g, float b, float a)
{
    MaterialTweak tweak;
    tweak.kind = MaterialTweak::eTintColor;
    tweak.color = Color(r, g, b, a);
    return tweak;
}

TEST(AmbrelKey, JoinsIdentityAndDescribesTheTweak)
{
    MaterialTweak scaled;
    scaled.scale = 2.5f;
    MaterialTweak rotated;
    rotated.rotation = 90.0f;
    MaterialTweak vertex;
    vertex.kind = MaterialTweak::eVertexColor;
    MaterialTweak everything = tint(1.0f, 0.5f, 0.0f, 1.0f);
    everything.scale = 0.5f;
    everything.rotation = 45.0f;
    MaterialTweak darkTint = tint(0.0f, 0.01f, 0.05f, 1.0f);

    const std::pair<const char*, std::pair<MaterialTweak, std::wstring>> cases[] = {
        {"neutral adds no suffix", {MaterialTweak{}, L"LIBmat-1hot37"}},
        {"scale", {scaled, L"LIBmat-1hot37[x2.5"}},
        {"rotation", {rotated, L"LIBmat-1hot37[@90"}},
        {"vertex colour", {vertex, L"LIBmat-1hot37[VertexColor"}},
        {"tint, scale and rotation", {everything, L"LIBmat-1hot37[ff7f 0ffx0.5@45"}},
        // Components below 16 are padded with a space, as the two-wide hexadecimal field does.
        {"small components", {darkTint, L"LIBmat-1hot37[ 0 2 cff"}},
    };
    for (const auto& [name, c] : cases) {
        SCOPED_TRACE(name);
        const std::wstring key = AmbrelManager::GetKeyForMaterial(L"LIB", L"mat-1", L"hot", 3, 7, c.first);
        EXPECT_EQ(key, c.second);
    }
}

TEST(AmbrelKey, LongAndNonAsciiIdentifiersKeepEveryCharacter)
{
    const std::wstring longLibrary(200, L'L');
    const Kx::MaterialKey spilled(longLibrary, std::string("m"), L"", 1, 0, MaterialTweak{});
    EXPECT_EQ(spilled.view(), longLibrary + L"m10");

    // "Stahl-ä" in UTF-8, and a material identifier that crosses the inline buffer half way.
    const Kx::MaterialKey german(L"LIB", std::string("Stahl-\xC3\xA4"), L"v", -1, 12, MaterialTweak{});
    EXPECT_EQ(german.view(), L"LIBStahl-\u00E4v-112");
    const std::string crossing(100, 'x');
    const Kx::MaterialKey crossed(std::wstring(100, L'L'), crossing, L"", 1, 0, MaterialTweak{});
    EXPECT_EQ(crossed.view(), std::wstring(100, L'L') + std::wstring(100, L'x') + L"10");
    EXPECT_EQ(Kx::MaterialKeyHash{}(crossed.view()), Kx::MaterialKeyHash{}(crossed.str()));
}

class AmbrelCache : public AmbrelFixture {
protected:
    void SetUp() override
    {
        writeVisualLibrary(librariesFolder() / "assetlibrary_base.tvrnlib");
        m_manager = makeManager();
        ASSERT_TRUE(m_manager->LoadLibs(false));
    }

    InstancePtr get(const char* id, const MaterialTweak& tweak = {})
    {
        return InstancePtr(m_manager->GetAssetInstance(id, s_visualId, tweak));
    }

    std::unique_ptr<AmbrelManager> m_manager;
};

TEST_F(AmbrelCache, EqualTweaksShareAnInstanceAndOthersDoNot)
{
    InstancePtr plain = get("red");
    ASSERT_NE(plain, nullptr);
    InstancePtr again = get("red");
    EXPECT_EQ(plain.get(), again.get());
    EXPECT_EQ(plain->GetReferenceCount(), 3) << "the cache's reference and one per caller";

    InstancePtr tinted = get("red", tint(0.0f, 0.0f, 1.0f, 1.0f));
    InstancePtr tintedAgain = get("red", tint(0.0f, 0.0f, 1.0f, 1.0f));
    EXPECT_NE(tinted.get(), plain.get());
    EXPECT_EQ(tinted.get(), tintedAgain.get());

    MaterialTweak turned = tint(0.0f, 0.0f, 1.0f, 1.0f);
    turned.rotation = 30.0f;
    InstancePtr rotated = get("red", turned);
    EXPECT_NE(rotated.get(), tinted.get());
    EXPECT_EQ(m_manager->GetCachedInstanceCount(), 3U);

    EXPECT_EQ(get("nonexistent"), nullptr);
    EXPECT_EQ(InstancePtr(m_manager->GetAssetInstance("red", L"no-such-library", {})), nullptr);
}

TEST_F(AmbrelCache, AChangedPresetIsNotAnsweredFromTheCache)
{
    InstancePtr before = get("red");
    ASSERT_NE(before, nullptr);
    EXPECT_EQ(get("red").get(), before.get());

    // A new version of the preset, written through the library the manager holds.
    IAssetLibraryManager* assets = m_manager->GetAssetLibMgr();
    AssetError error;
    IWritableAssetLibrary* writable = assets->GetWritableAssetLibrary(m_manager->GetLibraryByIdentifier(s_visualId), &error);
    ASSERT_NE(writable, nullptr) << error.message;
    ASSERT_TRUE(writable->DeleteAssetDefinition(writable->FindAssetDefinition("red"), &error)) << error.message;
    IAssetInstance* red = assets->CreateAssetInstance(L"CorvexOpaqueSchema");
    ASSERT_TRUE(writable->CreateNewAssetPreset(red, AssetPresetInfo{"red", {}, 2, 0, {}, {}, L"Paint", {}}, &error))
        << error.message;
    red->Release();
    ASSERT_TRUE(assets->CommitAssetLibrary(writable, &error)) << error.message;
    assets->ReleaseWritableAssetLibrary(writable);

    InstancePtr after = get("red");
    ASSERT_NE(after, nullptr);
    EXPECT_NE(after.get(), before.get());
    int major = 0;
    int minor = 0;
    ASSERT_TRUE(m_manager->GetMaterialVersion(after.get(), major, minor));
    EXPECT_EQ(major, 2);
    EXPECT_EQ(get("red").get(), after.get());
}

TEST_F(AmbrelCache, ThreadsShareOneInstancePerKey)
{
    constexpr int s_rounds = 500;
    std::vector<IAssetInstance*> seen[2];
    std::thread workers[2];
    for (int t = 0; t < 2; ++t) {
        workers[t] = std::thread([&, t] {
            for (int i = 0; i < s_rounds; ++i) {
                MaterialTweak tweak;
                tweak.rotation = static_cast<float>(i % 5);
                seen[t].push_back(m_manager->GetAssetInstance("red", s_visualId, tweak));
            }
        });
    }
    for (std::thread& worker : workers) {
        worker.join();
    }
    EXPECT_EQ(m_manager->GetCachedInstanceCount(), 5U);
    for (int i = 0; i < s_rounds; ++i) {
        EXPECT_EQ(seen[0][i], seen[1][i]);
    }
    IAssetInstance* first = seen[0][0];
    EXPECT_EQ(first->GetReferenceCount(), 1 + 2 * s_rounds / 5);
    for (auto& list : seen) {
        for (IAssetInstance* instance : list) {
            instance->Release();
        }
    }
    EXPECT_EQ(first->GetReferenceCount(), 1) << "only the cache's reference is left";
}

// Readers hitting the cache without the lock while another one misses (a new tweak now and then)
// and the UI thread refreshes, releases and reloads the libraries. Every answer must be the material
// asked for, and every reference handed out must come back; built with ThreadSanitizer, this also
// checks the hit path's reads against the changes.
TEST_F(AmbrelCache, HitsRunBesideMissesRefreshesAndReloads)
{
    Kx::OS::markUIThread();
    const std::string materials[] = {"red", "brick", "oak", "glass"};
    std::atomic<bool> done{false};
    std::atomic<long> answers{0};
    std::atomic<long> wrongAnswers{0};
    std::vector<std::thread> readers;
    for (int t = 0; t < 3; ++t) {
        readers.emplace_back([&, t] {
            for (int i = 0; !done.load(); ++i) {
                const std::string& id = materials[static_cast<std::size_t>(i + t) % std::size(materials)];
                MaterialTweak tweak;
                if (t == 0) {
                    tweak.rotation = static_cast<float>(i % 40);
                }
                // Null while the libraries are released.
                InstancePtr instance(m_manager->GetAssetInstance(id, s_visualId, tweak));
                if (instance != nullptr) {
                    answers.fetch_add(1);
                    if (instance->GetAssetId() != id || instance->GetReferenceCount() < 1) {
                        wrongAnswers.fetch_add(1);
                    }
                }
            }
        });
    }
    for (int round = 0; round < 100; ++round) {
        m_manager->RefreshLibraryByIdentifier(s_visualId);
        if (round % 25 == 24) {
            m_manager->ReleaseLib();
            EXPECT_TRUE(m_manager->LoadLibs(false));
        }
        while (answers.load() < round) {
            std::this_thread::yield();
        }
    }
    done = true;
    for (std::thread& reader : readers) {
        reader.join();
    }
    EXPECT_EQ(wrongAnswers.load(), 0);
    InstancePtr red = get("red");
    ASSERT_NE(red, nullptr);
    EXPECT_EQ(red->GetReferenceCount(), 2) << "the cache's reference and this one: the readers gave theirs back";
}

// The hit path tells tweaks apart by their exact values, the cache by the key's rounded colour:
// tweaks that differ below the key's precision must still share the cached instance.
TEST_F(AmbrelCache, TweaksEqualInTheKeyShareTheInstanceWhateverPathAnswers)
{
    InstancePtr first = get("red", tint(0.5f, 0.5f, 0.5f, 1.0f));
    InstancePtr again = get("red", tint(0.5f, 0.5f, 0.5f, 1.0f));
    InstancePtr nearly = get("red", tint(0.5001f, 0.5f, 0.5f, 1.0f));
    InstancePtr nearlyAgain = get("red", tint(0.5001f, 0.5f, 0.5f, 1.0f));
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(again.get(), first.get());
    EXPECT_EQ(nearly.get(), first.get());
    EXPECT_EQ(nearlyAgain.get(), first.get());
    EXPECT_EQ(first->GetReferenceCount(), 5);
    EXPECT_EQ(m_manager->GetCachedInstanceCount(), 1U);
}

TEST_F(AmbrelCache, TweaksAreAppliedToTheCachedInstance)
{
    Kx::OS::markUIThread();
    InstancePtr tinted = get("red", tint(0.0f, 0.0f, 1.0f, 1.0f));
    Color color;
    ASSERT_TRUE(m_manager->GetAssetInstanceColor(tinted.get(), color));
    EXPECT_EQ(color, Color(0.0f, 0.0f, 1.0f, 1.0f));
    InstancePtr plain = get("red");
    ASSERT_TRUE(m_manager->GetAssetInstanceColor(plain.get(), color));
    EXPECT_EQ(color, Color(0.5f, 0.25f, 0.125f, 1.0f)) << "the tint must not leak into the neutral instance";

    MaterialTweak turned;
    turned.scale = 4.0f;
    turned.rotation = 30.0f;
    InstancePtr brick = get("brick", turned);
    float value = 0.0f;
    ASSERT_TRUE(m_manager->GetAssetInstanceTextureScale(brick.get(), value));
    EXPECT_FLOAT_EQ(value, 4.0f);
    ASSERT_TRUE(m_manager->GetAssetInstanceTextureRotate(brick.get(), value));
    EXPECT_FLOAT_EQ(value, 30.0f);
    InstancePtr plainBrick = get("brick");
    ASSERT_TRUE(m_manager->GetAssetInstanceTextureScale(plainBrick.get(), value));
    EXPECT_FLOAT_EQ(value, 2.0f);
}

TEST_F(AmbrelCache, EveryOverloadAndReleaseBalanceReferences)
{
    InstancePtr byId = get("oak");
    IAssetDefinition* definition = byId->GetAssetDefinition();
    ASSERT_NE(definition, nullptr);
    InstancePtr byDefinition(m_manager->GetAssetInstance(definition, s_visualId, {}));
    InstancePtr byInstance(m_manager->GetAssetInstance(byId.get(), {}));
    EXPECT_EQ(byDefinition.get(), byId.get());
    EXPECT_EQ(byInstance.get(), byId.get());
    EXPECT_EQ(byId->GetReferenceCount(), 4);

    InstancePtr uncached(m_manager->GetAssetUncacheInstance("oak", s_visualId));
    ASSERT_NE(uncached, nullptr);
    EXPECT_NE(uncached.get(), byId.get());
    EXPECT_EQ(uncached->GetReferenceCount(), 1);
    EXPECT_EQ(m_manager->GetCachedInstanceCount(), 1U);

    InstancePtr connected(m_manager->GetConnectedAssetInstance(get("brick").get(), L"opaque_albedo"));
    ASSERT_NE(connected, nullptr);
    EXPECT_EQ(connected->GetSchemaName(), L"texture");

    Kx::ScopedAssertionCapture capture;
    m_manager->ReleaseLib();
    EXPECT_EQ(m_manager->GetCachedInstanceCount(), 0U);
    EXPECT_EQ(byId->GetReferenceCount(), 3) << "releasing the cache gives back exactly its own reference";
    EXPECT_EQ(capture.count(), 0U);
}

TEST_F(AmbrelCache, CloneAndCacheReplacesOnlyWhenAsked)
{
    Kx::OS::markUIThread();
    InstancePtr original = get("glass");
    InstancePtr clone(m_manager->CloneAndCacheAsset(original.get(), false));
    ASSERT_NE(clone, nullptr);
    EXPECT_NE(clone.get(), original.get());
    EXPECT_EQ(clone->GetReferenceCount(), 1) << "kept out of the cache: the key is taken";
    EXPECT_EQ(get("glass").get(), original.get());

    ASSERT_TRUE(m_manager->SetAssetInstanceRefractiveIndex(clone.get(), 1.7));
    InstancePtr replacing(m_manager->CloneAndCacheAsset(clone.get(), true));
    EXPECT_EQ(replacing->GetReferenceCount(), 2);
    EXPECT_EQ(original->GetReferenceCount(), 1) << "the replaced entry's reference is given back";
    InstancePtr now = get("glass");
    EXPECT_EQ(now.get(), replacing.get());
    EXPECT_EQ(m_manager->IsDifferentFromLibrary(now.get()), Kx::MaterialState::eDifferentFromLibrary);
    EXPECT_EQ(m_manager->IsDifferentFromLibrary(original.get()), Kx::MaterialState::eSameAsLibrary);
}

TEST_F(AmbrelCache, ClonesTakeTheirEmbeddedImagesAlong)
{
    Kx::OS::markUIThread();
    KxTest::TempDir user;
    KxTest::ScopedEnvironment userDirectory("KX_USER_DIR", user.path());
    const auto bitmapOf = [&](IAssetInstance* instance) {
        InstancePtr texture(m_manager->GetConnectedAssetInstance(instance, L"opaque_albedo"));
        std::wstring bitmap;
        EXPECT_TRUE(texture != nullptr && texture->GetStringValue(L"unifiedbitmap_Bitmap", bitmap));
        return bitmap;
    };

    InstancePtr brick = get("brick");
    InstancePtr clone(m_manager->CloneAndCacheAsset(brick.get(), true));
    ASSERT_NE(clone, nullptr);
    const std::filesystem::path extracted = AmbrelManager::GetEmbeddedResourceFolder(s_visualId) / "textures/brick.png";
    EXPECT_EQ(bitmapOf(clone.get()), extracted.wstring());
    EXPECT_EQ(std::filesystem::file_size(extracted), 8U);
    EXPECT_TRUE(m_manager->InstanceTexturesAreLocal(clone.get()));
    EXPECT_EQ(bitmapOf(brick.get()), L"tvp:?asset=textures/brick.png") << "the library's instance is not touched";

    InstancePtr escape = get("escape");
    InstancePtr escapeClone(m_manager->CloneAndCacheAsset(escape.get(), true));
    EXPECT_EQ(bitmapOf(escapeClone.get()), L"tvp:?asset=../../escape.png") << "a name leading out is not extracted";
    EXPECT_FALSE(std::filesystem::exists(user.path() / "escape.png"));
    EXPECT_FALSE(std::filesystem::exists(user.path().parent_path() / "escape.png"));
}

} // namespace
} // namespace AmbrelTest
