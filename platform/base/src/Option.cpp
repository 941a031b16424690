#include "base/Option.h"

#include "base/OptionGroup.h"
#include "base/XMLNode.h"

namespace Kx {

Option::Option(std::string id)
    : m_id(std::move(id))
{
}

Option::~Option() = default;

void Option::subGroup(Option& child)
{
    if (&child != this && child.m_parent == nullptr) {
        child.m_parent = this;
        m_subOptions.push_back(&child);
    }
}

void Option::save(XMLNode element) const
{
    element["Value"] = toText();
}

bool Option::load(const XMLNode& element)
{
    const auto value = element["Value"];
    return value.exists() && fromText(value.asString());
}

void Option::changed()
{
    m_dirty.store(true, std::memory_order_relaxed);
    if (m_group != nullptr) {
        m_group->notifyChanged(*this);
    }
}

} // namespace Kx
