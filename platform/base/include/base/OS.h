#pragma once

// The UI thread is the thread that initialised the application. Operations that change shared
// state on behalf of the user interface assert that they run there; workers post to it
// (UIThreadQueue).
namespace Kx::OS {

// When no thread has been marked yet, the first thread to ask becomes the UI thread.
[[nodiscard]] bool platformIsUIThread();
// The calling thread becomes the UI thread.
void markUIThread();

} // namespace Kx::OS
