#pragma once

// The material library manager (AmbrelManager::GetAmbrelManager) and its asset queries: the
// standard and user libraries, cached instances by material id, connected aspects, display names,
// and the typed parameters and colours read and written per schema.
#include <kx/Assets.h>

#include <Types/Appearance/AmbrelManager.h>
#include <Types/Appearance/AppearanceColors.h>
#include <Types/Appearance/AssetParameterTable.h>
#include <Types/Appearance/MaterialKey.h>
#include <Types/Appearance/MaterialTweak.h>
