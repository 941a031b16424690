#pragma once

#include <string>
#include <string_view>

// Named points on failure paths that tests can make fail on purpose, so that the code that handles
// a failed write or a full disk runs in tests too. Production code asks shouldFail("Area.point") where
// a real failure could happen; with nothing armed the question costs one atomic load.
namespace Kx::FaultInjection {

// The point `name` lets `passesBeforeFault` passes through, then fails once and disarms itself.
// Arming an armed point restarts its count.
void arm(std::string name, unsigned passesBeforeFault = 0);
void disarm(const std::string& name);
void disarmAll();
[[nodiscard]] bool shouldFail(std::string_view name);

// Arms a point for the lifetime of the object.
class ScopedFault {
public:
    explicit ScopedFault(std::string name, unsigned passesBeforeFault = 0);
    ~ScopedFault();
    ScopedFault(const ScopedFault&) = delete;
    ScopedFault& operator=(const ScopedFault&) = delete;

private:
    std::string m_name;
};

} // namespace Kx::FaultInjection
