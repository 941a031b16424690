#pragma once

#include <pugixml.hpp>

#include <cstdint>
#include <string>

namespace Kx {

// One attribute of an element, present or not: assigning creates or replaces it; the typed reads
// answer the fallback when it is absent or its whole text is not a number of that type (no blanks,
// no '+', no trailing characters, nothing out of range). Numbers are written so that they read back
// exactly: integers in decimal, floats and doubles in their shortest round-trip form, bools as
// "1"/"0" (which read back, as "true" and "false" do).
class XMLAttributeProxy {
public:
    // A proxy for an attribute whose name outlives it (an XMLString key): nothing is copied, as the
    // data model asks for attributes once per field of every value saved or loaded.
    XMLAttributeProxy(pugi::xml_node node, const char* stableName)
        : m_node(node)
        , m_name(stableName)
    {
    }
    XMLAttributeProxy(pugi::xml_node node, std::string name)
        : m_node(node)
        , m_storage(std::move(name))
        , m_name(m_storage.c_str())
    {
    }
    // A proxy for an attribute looked up already (null when absent).
    XMLAttributeProxy(pugi::xml_node node, const char* stableName, pugi::xml_attribute found)
        : m_node(node)
        , m_name(stableName)
        , m_found(found)
        , m_looked(true)
    {
    }
    XMLAttributeProxy(const XMLAttributeProxy& other)
        : m_node(other.m_node)
        , m_storage(other.m_storage)
        , m_name(other.m_storage.empty() ? other.m_name : m_storage.c_str())
        , m_found(other.m_found)
        , m_looked(other.m_looked)
    {
    }
    XMLAttributeProxy& operator=(const XMLAttributeProxy&) = delete;

    XMLAttributeProxy& operator=(std::int32_t value);
    XMLAttributeProxy& operator=(std::uint32_t value);
    XMLAttributeProxy& operator=(std::int64_t value);
    XMLAttributeProxy& operator=(std::uint64_t value);
    XMLAttributeProxy& operator=(float value);
    XMLAttributeProxy& operator=(double value);
    XMLAttributeProxy& operator=(bool value);
    XMLAttributeProxy& operator=(const std::string& value);
    XMLAttributeProxy& operator=(const char* value);
    XMLAttributeProxy& operator=(const std::wstring& value);
    // Without it a wide literal would silently become a bool.
    XMLAttributeProxy& operator=(const wchar_t* value);

    [[nodiscard]] bool exists() const;
    [[nodiscard]] std::int32_t asInt32(std::int32_t fallback = 0) const;
    [[nodiscard]] std::uint32_t asUInt32(std::uint32_t fallback = 0) const;
    [[nodiscard]] std::int64_t asInt64(std::int64_t fallback = 0) const;
    [[nodiscard]] std::uint64_t asUInt64(std::uint64_t fallback = 0) const;
    [[nodiscard]] float asFloat(float fallback = 0) const;
    [[nodiscard]] double asDouble(double fallback = 0) const;
    [[nodiscard]] bool asBool(bool fallback = false) const;
    // Empty when absent.
    [[nodiscard]] std::string asString() const;
    [[nodiscard]] std::wstring asWString() const;

    [[nodiscard]] std::string name() const { return m_name; }

private:
    [[nodiscard]] pugi::xml_attribute attribute() const;
    void set(const char* text);

    pugi::xml_node m_node;
    std::string m_storage;
    const char* m_name;
    mutable pugi::xml_attribute m_found;
    mutable bool m_looked = false;
};

// Finds the attributes of one element by name, trying first the attribute after the one it found
// last: values are read in the order they were written, so each field costs one comparison.
class XMLAttributeCursor {
public:
    explicit XMLAttributeCursor(pugi::xml_node node) : m_node(node) {}

    [[nodiscard]] XMLAttributeProxy operator[](const char* stableName)
    {
        return {m_node, stableName, m_node.attribute(stableName, m_hint)};
    }

private:
    pugi::xml_node m_node;
    pugi::xml_attribute m_hint;
};

} // namespace Kx
