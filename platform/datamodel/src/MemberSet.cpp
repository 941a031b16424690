#include "datamodel/MemberSet.h"

#include <base/Assert.h>

#include <algorithm>

namespace Kx {

namespace {
// A letter, then letters, digits or '_': valid as an XML name and a JSON key as it stands, and never
// clashing with the data model's own attributes, which start with '_'.
bool isMemberName(const std::string& name)
{
    const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    return !name.empty() && isLetter(name.front())
        && std::all_of(name.begin(), name.end(), [&](char c) { return isLetter(c) || isDigit(c) || c == '_'; });
}
} // namespace

void MemberSet::initialize(MemberSet* memberSet, const void* owner, const std::string& typeName)
{
    memberSet->m_members.clear();
    memberSet->m_typeName = typeName;
    memberSet->m_owner = owner;
    memberSet->m_initialized = true;
    ++memberSet->m_initializationCount;
}

void MemberSet::addNewMember(const std::string& name, const void* field, const char* runtimeTypeName,
    const MemberMetaType* metaType)
{
    KX_ASSERT(m_initialized);
    KX_ASSERT(metaType != nullptr);
    KX_ASSERT(isMemberName(name));
    const auto* base = static_cast<const char*>(m_owner);
    const auto* address = static_cast<const char*>(field);
    KX_ASSERT(address >= base);
    KX_ASSERT(find(name) == nullptr);
    m_members.push_back(Member{name, static_cast<std::size_t>(address - base), runtimeTypeName, metaType});
}

const Member* MemberSet::find(std::string_view name) const noexcept
{
    const auto found = std::find_if(m_members.begin(), m_members.end(),
        [&](const Member& member) { return member.name == name; });
    return found == m_members.end() ? nullptr : &*found;
}

} // namespace Kx
