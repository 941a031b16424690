#pragma once

#include "Types/Appearance/ExchangeMaterialEvent.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace Kx::Types {

class CMExchangeMaterialHelper;

// The application's download helper over the online library the environment names
// (OnlineLibrarySettings::fromEnvironment), made on first call and installed into
// ExchangeMaterialManager::GetInstance(); UI thread. Hosts that never call it keep the helper that
// does nothing.
CMExchangeMaterialHelper& InstallExchangeMaterialHelper();
// Cancels what it still does and removes it (before the host exits).
void ShutdownExchangeMaterialHelper();

// Pumps the UI thread's queue until an ExchangeMaterialEvent that `wanted` accepts is delivered,
// or `timeout` passes (none). UI thread; the event is the one delivered to subscribed sites.
[[nodiscard]] std::optional<ExchangeMaterialEvent> WaitForExchangeMaterialEvent(
    const std::function<bool(const ExchangeMaterialEvent&)>& wanted, std::chrono::milliseconds timeout);

// Starts DownloadMaterial(libraryId, assetType, uuid) on the application's manager and waits for
// its end: the completion (success or failure, with the message) or the cancellation event. None
// when nothing ended in time (the download goes on). UI thread.
[[nodiscard]] std::optional<ExchangeMaterialEvent> DownloadMaterialAndWait(const std::wstring& uuid,
    std::chrono::milliseconds timeout, const std::wstring& libraryId = {}, const std::wstring& assetType = L"materialappearance");

} // namespace Kx::Types
