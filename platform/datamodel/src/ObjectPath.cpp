#include "datamodel/ObjectPath.h"

#include <algorithm>
#include <charconv>

namespace Kx {

ObjectPath& ObjectPath::append(EntityId id)
{
    if (id != kNoEntityId)
        m_ids.push_back(id);
    return *this;
}

ObjectPath ObjectPath::parent() const
{
    if (m_ids.empty())
        return {};
    return ObjectPath(std::vector<EntityId>(m_ids.begin(), m_ids.end() - 1));
}

bool ObjectPath::startsWith(const ObjectPath& other) const
{
    return other.m_ids.size() <= m_ids.size() && std::equal(other.m_ids.begin(), other.m_ids.end(), m_ids.begin());
}

Entity* ObjectPath::resolve(const IEntityResolver& resolver) const
{
    Entity* entity = nullptr;
    for (EntityId id : m_ids) {
        entity = resolver.resolveEntity(id);
        if (entity == nullptr)
            return nullptr;
    }
    return entity;
}

std::wstring ObjectPath::toString() const
{
    std::wstring text;
    for (EntityId id : m_ids) {
        if (!text.empty())
            text += L'/';
        text += std::to_wstring(id);
    }
    return text;
}

bool ObjectPath::fromString(const std::wstring& text, ObjectPath& path)
{
    std::vector<EntityId> ids;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find(L'/', start);
        if (end == std::wstring::npos)
            end = text.size();
        // Plain decimal digits only: no sign, no blanks, no empty step, so that the text of a
        // path reads back as that path and nothing else does.
        std::string digits;
        for (std::size_t at = start; at < end; ++at) {
            if (text[at] < L'0' || text[at] > L'9')
                return false;
            digits += static_cast<char>(text[at]);
        }
        EntityId id = 0;
        const auto [last, error] = std::from_chars(digits.data(), digits.data() + digits.size(), id);
        if (digits.empty() || error != std::errc() || id == kNoEntityId || (digits.size() > 1 && digits[0] == '0'))
            return false;
        ids.push_back(id);
        start = end + 1;
        if (end + 1 == text.size())
            return false; // a trailing '/'
    }
    path = ObjectPath(std::move(ids));
    return true;
}

} // namespace Kx
