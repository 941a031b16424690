#include "base/XMLAttributeProxy.h"

#include "base/NumberText.h"

#include <core/Strings.h>

#include <string_view>

namespace Kx {

namespace {

template <class Number>
Number parse(const pugi::xml_attribute& attribute, Number fallback)
{
    Number value{};
    return attribute && parseWhole(attribute.value(), value) ? value : fallback;
}

} // namespace

pugi::xml_attribute XMLAttributeProxy::attribute() const
{
    if (!m_looked) {
        m_found = m_node.attribute(m_name);
        m_looked = true;
    }
    return m_found;
}

void XMLAttributeProxy::set(const char* text)
{
    if (!m_node) {
        return;
    }
    pugi::xml_attribute target = attribute();
    if (!target) {
        target = m_node.append_attribute(m_name);
        m_found = target;
    }
    target.set_value(text);
}

XMLAttributeProxy& XMLAttributeProxy::operator=(std::int32_t value) { set(shortestText(value).c_str()); return *this; }
XMLAttributeProxy& XMLAttributeProxy::operator=(std::uint32_t value) { set(shortestText(value).c_str()); return *this; }
XMLAttributeProxy& XMLAttributeProxy::operator=(std::int64_t value) { set(shortestText(value).c_str()); return *this; }
XMLAttributeProxy& XMLAttributeProxy::operator=(std::uint64_t value) { set(shortestText(value).c_str()); return *this; }
XMLAttributeProxy& XMLAttributeProxy::operator=(float value) { set(shortestText(value).c_str()); return *this; }
XMLAttributeProxy& XMLAttributeProxy::operator=(double value) { set(shortestText(value).c_str()); return *this; }
XMLAttributeProxy& XMLAttributeProxy::operator=(bool value) { set(value ? "1" : "0"); return *this; }
XMLAttributeProxy& XMLAttributeProxy::operator=(const std::string& value) { set(value.c_str()); return *this; }
XMLAttributeProxy& XMLAttributeProxy::operator=(const char* value) { set(value != nullptr ? value : ""); return *this; }

XMLAttributeProxy& XMLAttributeProxy::operator=(const std::wstring& value)
{
    set(telvarin::platform::core::toUTF8(value).c_str());
    return *this;
}

XMLAttributeProxy& XMLAttributeProxy::operator=(const wchar_t* value)
{
    return *this = std::wstring(value != nullptr ? value : L"");
}

bool XMLAttributeProxy::exists() const
{
    return static_cast<bool>(attribute());
}

std::int32_t XMLAttributeProxy::asInt32(std::int32_t fallback) const { return parse(attribute(), fallback); }
std::uint32_t XMLAttributeProxy::asUInt32(std::uint32_t fallback) const { return parse(attribute(), fallback); }
std::int64_t XMLAttributeProxy::asInt64(std::int64_t fallback) const { return parse(attribute(), fallback); }
std::uint64_t XMLAttributeProxy::asUInt64(std::uint64_t fallback) const { return parse(attribute(), fallback); }
float XMLAttributeProxy::asFloat(float fallback) const { return parse(attribute(), fallback); }
double XMLAttributeProxy::asDouble(double fallback) const { return parse(attribute(), fallback); }

bool XMLAttributeProxy::asBool(bool fallback) const
{
    const pugi::xml_attribute found = attribute();
    if (!found) {
        return fallback;
    }
    const std::string_view text = found.value();
    if (text == "true") {
        return true;
    }
    if (text == "false") {
        return false;
    }
    std::int64_t number = 0;
    return parseWhole(text, number) ? number != 0 : fallback;
}

std::string XMLAttributeProxy::asString() const
{
    return attribute().value();
}

std::wstring XMLAttributeProxy::asWString() const
{
    return telvarin::platform::core::toWide(attribute().value());
}

} // namespace Kx
