#pragma once

// Downloads from the online material library: the download manager
// (ExchangeMaterialManager::GetInstance), its events and the helper interface, the application's
// helper over HTTP (InstallExchangeMaterialHelper, DownloadMaterialAndWait), the texture records,
// the online library's index and publishing library files as an online library.
#include <kx/Materials.h>

#include <Types/Appearance/ExchangeMaterialEvent.h>
#include <Types/Appearance/ExchangeMaterialEventSite.h>
#include <Types/Appearance/ExchangeMaterialEventSource.h>
#include <Types/Appearance/ExchangeMaterialHelperInterface.h>
#include <Types/Appearance/ExchangeMaterialManager.h>
#include <Types/Appearance/MaterialLocalTexRecordManager.h>
#include <Types/Online/ExchangeMaterialHelper.h>
#include <Types/Online/OnlineDownloads.h>
#include <Types/Online/OnlineLibraryIndex.h>
#include <Types/Online/OnlineLibraryPublisher.h>
