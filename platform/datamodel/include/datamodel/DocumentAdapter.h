#pragma once

#include <filesystem>
#include <string>

namespace Kx {

class Document;

enum class ETransactionEnd {
    eCommitted,
    eUndone,
    eRedone,
    eAborted,
};

// The host's side of a document: a host that shows documents attaches one to each, and hears
// what happened to it. A document without an adapter is plain data (tools, tests, conversions);
// code that only matters for documents the user works on asks whether there is an adapter.
class IDocumentAdapter {
public:
    virtual ~IDocumentAdapter() = default;
    virtual void onDocumentSaved(Document& document, const std::filesystem::path& path) {}
    // A transaction was recorded (eCommitted), undone, redone, or rolled back before its end.
    virtual void onTransactionEnded(Document& document, const std::wstring& name, ETransactionEnd how) {}
};

} // namespace Kx
