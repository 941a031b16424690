#pragma once

#include <string>
#include <vector>

namespace Kx::Application {

// Called once by the host on its UI thread before anything else of the platform: marks the calling
// thread as the UI thread and loads the options the start needs from their files (the bootstrap
// options and the material options with the user's libraries). An option file that cannot be read
// leaves its group at the defaults; the answer holds one text per such file, for the host to show
// (each is logged as well, so a host without a place to show them may drop them).
std::vector<std::string> initialize();

} // namespace Kx::Application
