#include "datamodel/DocumentRegistry.h"

#include <algorithm>
#include <system_error>

namespace Kx {

namespace {

bool samePath(const std::filesystem::path& first, const std::filesystem::path& second)
{
    if (first.empty() || second.empty())
        return false;
    std::error_code error;
    const bool equivalent = std::filesystem::equivalent(first, second, error);
    return error ? first.lexically_normal() == second.lexically_normal() : equivalent;
}

} // namespace

DocumentRegistry& DocumentRegistry::get()
{
    static DocumentRegistry registry;
    return registry;
}

Document& DocumentRegistry::create(EBlobFolderKind blobFolderKind)
{
    return adopt(std::make_unique<Document>(blobFolderKind));
}

Document& DocumentRegistry::open(const std::filesystem::path& path, const DocumentOpenOptions& options)
{
    if (!options.asCopy) {
        if (Document* open = findByPath(path)) {
            activate(*open);
            return *open;
        }
    }
    // Read outside the lock: opening runs the subsystems' hooks, which may ask the registry.
    return adopt(DocumentFile::open(path, options));
}

Document& DocumentRegistry::adopt(std::unique_ptr<Document> document)
{
    std::lock_guard lock(m_mutex);
    m_documents.push_back(std::move(document));
    m_active = m_documents.back().get();
    return *m_documents.back();
}

Document* DocumentRegistry::active() const
{
    std::lock_guard lock(m_mutex);
    return m_active;
}

bool DocumentRegistry::activate(Document& document)
{
    std::lock_guard lock(m_mutex);
    const bool held = std::any_of(m_documents.begin(), m_documents.end(),
        [&](const auto& owned) { return owned.get() == &document; });
    if (held)
        m_active = &document;
    return held;
}

Document* DocumentRegistry::find(std::string_view identifier) const
{
    std::lock_guard lock(m_mutex);
    const auto found = std::find_if(m_documents.begin(), m_documents.end(),
        [&](const auto& document) { return document->identifier() == identifier; });
    return found == m_documents.end() ? nullptr : found->get();
}

Document* DocumentRegistry::findByPath(const std::filesystem::path& path) const
{
    std::lock_guard lock(m_mutex);
    const auto found = std::find_if(m_documents.begin(), m_documents.end(),
        [&](const auto& document) { return samePath(document->path(), path); });
    return found == m_documents.end() ? nullptr : found->get();
}

std::vector<Document*> DocumentRegistry::documents() const
{
    std::lock_guard lock(m_mutex);
    std::vector<Document*> all;
    for (const auto& document : m_documents)
        all.push_back(document.get());
    return all;
}

bool DocumentRegistry::close(Document& document)
{
    std::unique_ptr<Document> closing;
    {
        std::lock_guard lock(m_mutex);
        const auto found = std::find_if(m_documents.begin(), m_documents.end(),
            [&](const auto& owned) { return owned.get() == &document; });
        if (found == m_documents.end())
            return false;
        closing = std::move(*found);
        m_documents.erase(found);
        if (m_active == &document)
            m_active = m_documents.empty() ? nullptr : m_documents.back().get();
    }
    // Destroyed outside the lock: entities' destructors may ask the registry.
    return true;
}

} // namespace Kx
