#pragma once

#include "base/Event.h"

#include <string>

namespace Kx {

// The application announces that it is updating itself while it runs: a minor update replaces
// files of the installation (the material libraries among them), a major one needs a restart.
class LiveUpdateEvent : public Event {
public:
    explicit LiveUpdateEvent(std::wstring version = {}, ETiming timing = ePre)
        : Event(timing), m_version(std::move(version))
    {
    }

    [[nodiscard]] const std::wstring& version() const noexcept { return m_version; }

private:
    std::wstring m_version;
};

} // namespace Kx
