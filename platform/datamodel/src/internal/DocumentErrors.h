#pragma once

#include <base/Exception.h>

#include <string>

// The texts a user sees when a document cannot be saved or opened, in one place, so that every
// way of failing reads the same. The detail says what exactly went wrong, for logs and tests.
namespace Kx::DocumentErrors {

// The file is not a document, or a damaged one (the application's text for every corrupt file).
[[nodiscard]] Exception corrupt(std::string detail);
// The file was written by a newer version of the application.
[[nodiscard]] Exception tooNew(std::string detail);
// The document holds entities of a type this build does not know.
[[nodiscard]] Exception unknownType(std::string detail);
// The file does not exist or cannot be read.
[[nodiscard]] Exception cannotOpen(std::string detail);
// Writing the file failed; whatever was in the target's place is untouched.
[[nodiscard]] Exception saveFailed(std::string detail);
// A failure of a save as the user is told it: when a file was in the target's place before the
// save, a save failure adds that the previous version is unchanged. Only then is that a promise
// worth making; a first save leaves no file at all. Any other failure is answered as it is.
[[nodiscard]] Exception saveFailed(const Exception& failure, bool previousFileKept);

} // namespace Kx::DocumentErrors
