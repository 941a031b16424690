#pragma once

namespace Kx::Application {

// Called once by the host on its UI thread before anything else of the platform: marks the calling
// thread as the UI thread and loads the bootstrap options from their file.
void initialize();

} // namespace Kx::Application
