#include "base/JSONNode.h"

#include "base/Assert.h"
#include "base/Exception.h"

#include <core/Strings.h>

#include "internal/PreciseJSONParser.h"

#include <charconv>

namespace Kx {

namespace JSON {

double floatToStoredDouble(float value)
{
    char text[64];
    const auto written = std::to_chars(text, text + sizeof text, value);
    double stored = static_cast<double>(value);
    // NaN and the infinities round-trip through their own spellings; any failure keeps the exact
    // widening, which is still the same float when read back.
    std::from_chars(text, written.ptr, stored);
    return stored;
}

} // namespace JSON

namespace {

boost::json::value toValue(std::int32_t value) { return static_cast<std::int64_t>(value); }
boost::json::value toValue(std::uint32_t value) { return static_cast<std::uint64_t>(value); }
boost::json::value toValue(std::int64_t value) { return value; }
boost::json::value toValue(std::uint64_t value) { return value; }
boost::json::value toValue(double value) { return value; }
boost::json::value toValue(float value) { return JSON::floatToStoredDouble(value); }
boost::json::value toValue(bool value) { return value; }
boost::json::value toValue(const char* value) { return value != nullptr ? boost::json::value(value) : nullptr; }
boost::json::value toValue(const std::string& value) { return boost::json::string(value); }
boost::json::value toValue(const std::wstring& value)
{
    return boost::json::string(telvarin::platform::core::toUTF8(value));
}
boost::json::value toValue(const wchar_t* value)
{
    return value != nullptr ? toValue(std::wstring(value)) : nullptr;
}
boost::json::value toValue(const JSONNode& value) { return value.value(); }

boost::json::object& asObject(boost::json::value& value)
{
    KX_ASSERT(value.is_null() || value.is_object());
    if (!value.is_object()) {
        value.emplace_object();
    }
    return value.get_object();
}

boost::json::value& member(boost::json::value& value, std::string_view key)
{
    return asObject(value)[boost::json::string_view(key.data(), key.size())];
}

} // namespace

JSONNode::JSONNode(std::string_view jsonText)
{
    std::string error;
    auto parsed = parse(jsonText, &error);
    if (!parsed) {
        throw Exception(L"The JSON text is not valid.", error);
    }
    m_value = std::move(parsed->m_value);
}

std::optional<JSONNode> JSONNode::parse(std::string_view text, std::string* error)
{
    auto parsed = JSON::parsePrecisely(text, error);
    if (!parsed) {
        return std::nullopt;
    }
    return fromValue(std::move(*parsed));
}

JSONNode JSONNode::fromValue(boost::json::value value)
{
    JSONNode node;
    node.m_value = std::move(value);
    return node;
}

JSONNodeProxy JSONNode::operator[](std::string_view key)
{
    return JSONNodeProxy(member(m_value, key));
}

boost::json::array& JSONNode::asArray()
{
    KX_ASSERT(m_value.is_null() || m_value.is_array());
    if (!m_value.is_array()) {
        m_value.emplace_array();
    }
    return m_value.get_array();
}

void JSONNode::append(std::int32_t value) { asArray().push_back(toValue(value)); }
void JSONNode::append(std::uint32_t value) { asArray().push_back(toValue(value)); }
void JSONNode::append(std::int64_t value) { asArray().push_back(toValue(value)); }
void JSONNode::append(std::uint64_t value) { asArray().push_back(toValue(value)); }
void JSONNode::append(double value) { asArray().push_back(toValue(value)); }
void JSONNode::append(float value) { asArray().push_back(toValue(value)); }
void JSONNode::append(bool value) { asArray().push_back(toValue(value)); }
void JSONNode::append(const char* value) { asArray().push_back(toValue(value)); }
void JSONNode::append(const wchar_t* value) { asArray().push_back(toValue(value)); }
void JSONNode::append(const std::string& value) { asArray().push_back(toValue(value)); }
void JSONNode::append(const std::wstring& value) { asArray().push_back(toValue(value)); }
void JSONNode::append(const JSONNode& value) { asArray().push_back(toValue(value)); }

JSONNodeProxy& JSONNodeProxy::operator=(const JSONNodeProxy& other)
{
    if (m_slot != other.m_slot) {
        *m_slot = *other.m_slot;
    }
    return *this;
}

JSONNodeProxy& JSONNodeProxy::operator=(std::int32_t value) { *m_slot = toValue(value); return *this; }
JSONNodeProxy& JSONNodeProxy::operator=(std::uint32_t value) { *m_slot = toValue(value); return *this; }
JSONNodeProxy& JSONNodeProxy::operator=(std::int64_t value) { *m_slot = toValue(value); return *this; }
JSONNodeProxy& JSONNodeProxy::operator=(std::uint64_t value) { *m_slot = toValue(value); return *this; }
JSONNodeProxy& JSONNodeProxy::operator=(double value) { *m_slot = toValue(value); return *this; }
JSONNodeProxy& JSONNodeProxy::operator=(float value) { *m_slot = toValue(value); return *this; }
JSONNodeProxy& JSONNodeProxy::operator=(bool value) { *m_slot = toValue(value); return *this; }
JSONNodeProxy& JSONNodeProxy::operator=(const char* value) { *m_slot = toValue(value); return *this; }
JSONNodeProxy& JSONNodeProxy::operator=(const wchar_t* value) { *m_slot = toValue(value); return *this; }
JSONNodeProxy& JSONNodeProxy::operator=(const std::string& value) { *m_slot = toValue(value); return *this; }
JSONNodeProxy& JSONNodeProxy::operator=(const std::wstring& value) { *m_slot = toValue(value); return *this; }
JSONNodeProxy& JSONNodeProxy::operator=(const JSONNode& value) { *m_slot = toValue(value); return *this; }

JSONNodeProxy JSONNodeProxy::operator[](std::string_view key)
{
    return JSONNodeProxy(member(*m_slot, key));
}

} // namespace Kx
