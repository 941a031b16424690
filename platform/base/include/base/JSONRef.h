#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace boost::json {
class value;
}

namespace Kx {

// A read-only view of a JSON value that may be absent: indexing a missing key or index, or
// something that is not a container, yields an absent view, so paths can be followed without
// checks at every step. The typed reads are strict: they answer false and leave `out` as it was
// when the value is absent or of another kind, and never convert between text and numbers.
// The view does not own the value: it lives as long as the node it came from is unchanged.
class JSONRef {
public:
    JSONRef() = default;
    explicit JSONRef(const boost::json::value* value)
        : m_value(value)
    {
    }

    [[nodiscard]] bool exists() const { return m_value != nullptr; }
    [[nodiscard]] JSONRef operator[](std::string_view key) const;
    [[nodiscard]] JSONRef operator[](std::size_t index) const;

    [[nodiscard]] bool isObject() const;
    [[nodiscard]] bool isArray() const;
    [[nodiscard]] bool isNumber() const;
    [[nodiscard]] bool isString() const;
    [[nodiscard]] bool isBool() const;
    [[nodiscard]] bool isNull() const;
    // Members of an object, elements of an array, 0 for anything else.
    [[nodiscard]] std::size_t size() const;
    // Member names of an object in document order.
    [[nodiscard]] std::vector<std::string> keys() const;

    // Integers: a number written with a fraction or exponent counts only when its value is integral
    // and in range; out of range is false, never wrapped or clamped.
    bool get(std::int32_t& out) const;
    bool get(std::uint32_t& out) const;
    bool get(std::int64_t& out) const;
    bool get(std::uint64_t& out) const;
    // Any number; for float, only one within the float range.
    bool get(double& out) const;
    bool get(float& out) const;
    bool get(bool& out) const;
    bool get(std::string& out) const;
    bool get(std::wstring& out) const;

    // The compact form is exactly Boost.JSON's serialisation; the pretty form indents by two
    // spaces. An absent view gives an empty text.
    [[nodiscard]] std::string stringify(bool pretty = false) const;
    [[nodiscard]] const boost::json::value* raw() const { return m_value; }

private:
    const boost::json::value* m_value = nullptr;
};

} // namespace Kx
