#pragma once

#include <string>

namespace Kx::Console {

// The console's own text commands for the document a session works on ("Document.Open FILE", then
// material commands, "Document.Save"): registered by the console, since opening files and keeping
// one active is the host's part. A session line "doc open FILE" (or "kx doc open FILE") means
// "Document.Open FILE".
void registerDocumentTextCommands();

// Closes every document the session opened, unsaved changes dropped.
void closeAllDocuments();

// The text-command line a session's "doc VERB ..." (or "kx doc VERB ...") line stands for; the
// line itself when it is no such line.
[[nodiscard]] std::string documentLineAsTextCommand(const std::string& line);

} // namespace Kx::Console
