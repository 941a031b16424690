#pragma once

#include <Types/Appearance/AmbrelManager.h>

#include <assets/IAssetInstance.h>
#include <core/Strings.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace MaterialTest {

using telvarin::platform::assets::IAssetInstance;
using telvarin::platform::assets::InstancePtr;

// Material values resolve through the application's library manager, which reads this build's
// generated content (the test environment's content root).
inline Kx::AmbrelManager& manager()
{
    Kx::AmbrelManager* application = Kx::AmbrelManager::GetAmbrelManager(true);
    EXPECT_NE(application, nullptr);
    EXPECT_TRUE(application->LibsLoaded()) << "the generated content must be built (target kx_content)";
    return *application;
}

// A physical material of the advanced library that the standard library does not hold.
inline std::wstring advancedOnlyPhysicalId()
{
    Kx::AmbrelManager& libraries = manager();
    const auto standard = libraries.GetPhysicalMaterialsByLibrary(libraries.GetPhysicalLibraryID());
    for (const std::string& id : libraries.GetPhysicalMaterialsByLibrary(libraries.GetAdvancedPhysicalLibraryID())) {
        if (std::find(standard.begin(), standard.end(), id) == standard.end()) {
            return telvarin::platform::core::toWide(id);
        }
    }
    return {};
}

inline std::wstring firstId(const std::vector<std::string>& ids, std::size_t index = 0)
{
    return ids.size() > index ? telvarin::platform::core::toWide(ids[index]) : std::wstring{};
}

// The double `name` of the material's structural aspect as the library stores it; -1 when missing.
inline double storedStructural(const IAssetInstance* material, const wchar_t* name)
{
    InstancePtr structural(manager().GetConnectedAssetInstance(material, L"Structural"));
    double value = -1.0;
    if (structural == nullptr || !structural->GetDoubleValue(name, value)) {
        return -1.0;
    }
    return value;
}

inline std::wstring standardPhysicalId(std::size_t index = 0)
{
    return firstId(manager().GetPhysicalMaterialsByLibrary(manager().GetPhysicalLibraryID()), index);
}

inline std::wstring libraryOf(const IAssetInstance* instance)
{
    return instance != nullptr ? manager().GetAssetInstanceLibraryID(instance) : std::wstring{};
}

} // namespace MaterialTest
