#include "datamodel/JSONStreams.h"

namespace Kx {

JSONSetStream::JSONSetStream(JSONNode document, bool notifyOfChange)
    : m_document(std::move(document))
    , m_notifyOfChange(notifyOfChange)
{
}

JSONRef JSONSetStream::currentJSONRef() const
{
    return m_refs.empty() ? m_document.ref() : m_refs.back();
}

} // namespace Kx
