#pragma once

// The material library manager (AmbrelManager::GetAmbrelManager) and its asset queries: the
// standard and user libraries, cached instances by material id, connected aspects, display names,
// the typed parameters and colours read and written per schema, and which library set is installed.
#include <kx/Assets.h>

#include <Types/Appearance/AmbrelManager.h>
#include <Types/Appearance/AppearanceColors.h>
#include <Types/Appearance/AssetParameterTable.h>
#include <Types/Appearance/MaterialKey.h>
#include <Types/Appearance/MaterialTweak.h>
#include <Types/Utility/TypesUtil.h>
