#pragma once

#include "base/JSONRef.h"

#include <boost/json/value.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Kx {

class JSONNode;

// The member slot returned by JSONNode::operator[]: assign to it, index further into it, or read
// it through a JSONRef. Use it at once: a later insertion into the same object may move the slot.
class JSONNodeProxy {
public:
    explicit JSONNodeProxy(boost::json::value& slot)
        : m_slot(&slot)
    {
    }

    JSONNodeProxy(const JSONNodeProxy&) = default;
    // Assigning one slot to another copies the value, as `node["a"] = other["b"]` means.
    JSONNodeProxy& operator=(const JSONNodeProxy& other);
    JSONNodeProxy& operator=(std::int32_t value);
    JSONNodeProxy& operator=(std::uint32_t value);
    JSONNodeProxy& operator=(std::int64_t value);
    JSONNodeProxy& operator=(std::uint64_t value);
    JSONNodeProxy& operator=(double value);
    JSONNodeProxy& operator=(float value);
    JSONNodeProxy& operator=(bool value);
    JSONNodeProxy& operator=(const char* value);
    // Without it a wide literal would silently become a bool.
    JSONNodeProxy& operator=(const wchar_t* value);
    JSONNodeProxy& operator=(const std::string& value);
    JSONNodeProxy& operator=(const std::wstring& value);
    JSONNodeProxy& operator=(const JSONNode& value);

    // The member `key` of this slot, which becomes an object if it was null.
    [[nodiscard]] JSONNodeProxy operator[](std::string_view key);

    [[nodiscard]] JSONRef ref() const { return JSONRef(m_slot); }
    operator JSONRef() const { return ref(); }
    [[nodiscard]] boost::json::value& value() { return *m_slot; }

private:
    boost::json::value* m_slot;
};

// An owned JSON value. Floats are stored as the double nearest to their shortest decimal form, so
// 0.1f is written as 0.1 rather than 0.100000001490116 and reads back as the same float.
class JSONNode {
public:
    JSONNode() = default;
    // Throws Kx::Exception when `jsonText` is not one well-formed JSON value.
    explicit JSONNode(std::string_view jsonText);
    // Not a constructor: JSONNode("...") must always mean parsing, never a string value.
    [[nodiscard]] static JSONNode fromValue(boost::json::value value);

    [[nodiscard]] static std::optional<JSONNode> parse(std::string_view text, std::string* error = nullptr);

    // A null node becomes an object; the key is appended when new, so members keep their order.
    // Reading goes through ref() or a const node: this one inserts the key it is asked for.
    [[nodiscard]] JSONNodeProxy operator[](std::string_view key);
    [[nodiscard]] JSONRef operator[](std::string_view key) const { return ref()[key]; }

    // A null node becomes an array.
    void append(std::int32_t value);
    void append(std::uint32_t value);
    void append(std::int64_t value);
    void append(std::uint64_t value);
    void append(double value);
    void append(float value);
    void append(bool value);
    void append(const char* value);
    void append(const wchar_t* value);
    void append(const std::string& value);
    void append(const std::wstring& value);
    void append(const JSONNode& value);

    [[nodiscard]] std::string stringify(bool pretty = false) const { return ref().stringify(pretty); }
    [[nodiscard]] JSONRef ref() const { return JSONRef(&m_value); }
    [[nodiscard]] boost::json::value& value() { return m_value; }
    [[nodiscard]] const boost::json::value& value() const { return m_value; }

private:
    boost::json::array& asArray();

    boost::json::value m_value;
};

namespace JSON {
// The double that a float is stored as (see JSONNode).
[[nodiscard]] double floatToStoredDouble(float value);
} // namespace JSON

} // namespace Kx
