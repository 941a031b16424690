#include "base/JSONRef.h"

#include <core/Strings.h>

#include <boost/json/serialize.hpp>
#include <boost/json/value.hpp>

#include <charconv>
#include <cmath>
#include <limits>

namespace Kx {

namespace {

// Reads any JSON number as an integer of type Int when its value is exactly representable.
template <class Int>
bool readInteger(const boost::json::value* value, Int& out)
{
    if (value == nullptr) {
        return false;
    }
    using Limits = std::numeric_limits<Int>;
    if (const auto* i = value->if_int64()) {
        if constexpr (Limits::is_signed) {
            if (*i < static_cast<std::int64_t>(Limits::min()) || *i > static_cast<std::int64_t>(Limits::max())) {
                return false;
            }
        } else if (*i < 0 || static_cast<std::uint64_t>(*i) > static_cast<std::uint64_t>(Limits::max())) {
            return false;
        }
        out = static_cast<Int>(*i);
        return true;
    }
    if (const auto* u = value->if_uint64()) {
        if (*u > static_cast<std::uint64_t>(Limits::max())) {
            return false;
        }
        out = static_cast<Int>(*u);
        return true;
    }
    if (const auto* d = value->if_double()) {
        // The bounds are powers of two, exact as doubles; the upper one is exclusive because
        // Limits::max() itself may not be representable.
        const double lower = static_cast<double>(Limits::min());
        const double upperExclusive = std::ldexp(1.0, Limits::digits);
        if (!std::isfinite(*d) || std::trunc(*d) != *d || *d < lower || *d >= upperExclusive) {
            return false;
        }
        out = static_cast<Int>(*d);
        return true;
    }
    return false;
}

// Numbers are written in their shortest round-trip form ("0.5", "1", "1e+20"), not in the
// library's default exponent form ("5E-1", "1E0"): JSON users read these texts.
void writeNumber(const boost::json::value& value, std::string& out)
{
    char buffer[32];
    std::to_chars_result written{};
    if (const auto* i = value.if_int64()) {
        written = std::to_chars(buffer, buffer + sizeof buffer, *i);
    } else if (const auto* u = value.if_uint64()) {
        written = std::to_chars(buffer, buffer + sizeof buffer, *u);
    } else {
        const double d = value.get_double();
        if (!std::isfinite(d)) {
            out += "null"; // JSON has no NaN or infinity
            return;
        }
        if (d == 0 && std::signbit(d)) {
            out += "-0.0"; // "-0" would read back as the integer 0 and lose the sign
            return;
        }
        written = std::to_chars(buffer, buffer + sizeof buffer, d);
    }
    out.append(buffer, written.ptr);
}

void write(const boost::json::value& value, std::string& out, bool pretty, std::size_t depth)
{
    const auto newline = [&](std::size_t level) {
        if (pretty) {
            out += '\n';
            out.append(level * 2, ' ');
        }
    };
    if (const auto* object = value.if_object(); object != nullptr && !object->empty()) {
        out += '{';
        bool first = true;
        for (const auto& member : *object) {
            if (!first) {
                out += ',';
            }
            first = false;
            newline(depth + 1);
            out += boost::json::serialize(boost::json::string_view(member.key()));
            out += pretty ? ": " : ":";
            write(member.value(), out, pretty, depth + 1);
        }
        newline(depth);
        out += '}';
    } else if (const auto* array = value.if_array(); array != nullptr && !array->empty()) {
        out += '[';
        bool first = true;
        for (const auto& element : *array) {
            if (!first) {
                out += ',';
            }
            first = false;
            newline(depth + 1);
            write(element, out, pretty, depth + 1);
        }
        newline(depth);
        out += ']';
    } else if (value.is_number()) {
        writeNumber(value, out);
    } else {
        out += boost::json::serialize(value);
    }
}

} // namespace

JSONRef JSONRef::operator[](std::string_view key) const
{
    if (m_value == nullptr || !m_value->is_object()) {
        return {};
    }
    return JSONRef(m_value->get_object().if_contains(boost::json::string_view(key.data(), key.size())));
}

JSONRef JSONRef::operator[](std::size_t index) const
{
    if (m_value == nullptr || !m_value->is_array()) {
        return {};
    }
    return JSONRef(m_value->get_array().if_contains(index));
}

bool JSONRef::isObject() const { return m_value != nullptr && m_value->is_object(); }
bool JSONRef::isArray() const { return m_value != nullptr && m_value->is_array(); }
bool JSONRef::isNumber() const { return m_value != nullptr && m_value->is_number(); }
bool JSONRef::isString() const { return m_value != nullptr && m_value->is_string(); }
bool JSONRef::isBool() const { return m_value != nullptr && m_value->is_bool(); }
bool JSONRef::isNull() const { return m_value != nullptr && m_value->is_null(); }

std::size_t JSONRef::size() const
{
    if (isObject()) {
        return m_value->get_object().size();
    }
    if (isArray()) {
        return m_value->get_array().size();
    }
    return 0;
}

std::vector<std::string> JSONRef::keys() const
{
    std::vector<std::string> names;
    if (isObject()) {
        for (const auto& member : m_value->get_object()) {
            names.emplace_back(member.key());
        }
    }
    return names;
}

bool JSONRef::get(std::int32_t& out) const { return readInteger(m_value, out); }
bool JSONRef::get(std::uint32_t& out) const { return readInteger(m_value, out); }
bool JSONRef::get(std::int64_t& out) const { return readInteger(m_value, out); }
bool JSONRef::get(std::uint64_t& out) const { return readInteger(m_value, out); }

bool JSONRef::get(double& out) const
{
    if (!isNumber()) {
        return false;
    }
    out = m_value->to_number<double>();
    return true;
}

bool JSONRef::get(float& out) const
{
    double number = 0;
    if (!get(number)) {
        return false;
    }
    // Refuse only what would round to infinity: the stored double of FLT_MAX (see JSONNode) lies
    // slightly above FLT_MAX itself.
    constexpr double s_roundsToInfinity = 0x1.ffffffp+127;
    if (std::isfinite(number) && std::fabs(number) >= s_roundsToInfinity) {
        return false;
    }
    out = static_cast<float>(number);
    return true;
}

bool JSONRef::get(bool& out) const
{
    if (!isBool()) {
        return false;
    }
    out = m_value->get_bool();
    return true;
}

bool JSONRef::get(std::string& out) const
{
    if (!isString()) {
        return false;
    }
    const auto& text = m_value->get_string();
    out.assign(text.data(), text.size());
    return true;
}

bool JSONRef::get(std::wstring& out) const
{
    if (!isString()) {
        return false;
    }
    const auto& text = m_value->get_string();
    out = telvarin::platform::core::toWide(std::string_view(text.data(), text.size()));
    return true;
}

std::string JSONRef::stringify(bool pretty) const
{
    if (m_value == nullptr) {
        return {};
    }
    std::string out;
    write(*m_value, out, pretty, 0);
    return out;
}

} // namespace Kx
