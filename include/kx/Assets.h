#pragma once

// The asset API (namespace telvarin::platform::assets): the library manager, material libraries
// (SQLite files), definitions, reference-counted instances with typed properties, search
// iterators, localisation, and the serialiser of a document's assets.
#include <assets/AssetSearchIterator.h>
#include <assets/AssetTypes.h>
#include <assets/IAssetDefinition.h>
#include <assets/IAssetInstance.h>
#include <assets/IAssetLibrary.h>
#include <assets/IAssetLibraryManager.h>
#include <assets/IAssetSerializer.h>
#include <assets/ILocalizationManager.h>
#include <assets/LibraryLocation.h>
