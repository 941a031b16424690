#include "internal/PreciseJSONParser.h"

#include <boost/json/basic_parser_impl.hpp>
#include <boost/json/value_stack.hpp>

#include <charconv>

namespace Kx::JSON {

namespace {

using boost::json::error_code;
using boost::json::string_view;

// Builds the value exactly as Boost's parser does, except that doubles are re-read from their text
// with a correctly rounded conversion.
class PreciseHandler {
public:
    static constexpr std::size_t max_object_size = boost::json::object::max_size();
    static constexpr std::size_t max_array_size = boost::json::array::max_size();
    static constexpr std::size_t max_key_size = boost::json::string::max_size();
    static constexpr std::size_t max_string_size = boost::json::string::max_size();

    boost::json::value_stack stack;

    bool on_document_begin(error_code&) { return true; }
    bool on_document_end(error_code&) { return true; }
    bool on_object_begin(error_code&) { return true; }
    bool on_object_end(std::size_t count, error_code&)
    {
        stack.push_object(count);
        return true;
    }
    bool on_array_begin(error_code&) { return true; }
    bool on_array_end(std::size_t count, error_code&)
    {
        stack.push_array(count);
        return true;
    }
    bool on_key_part(string_view part, std::size_t, error_code&)
    {
        stack.push_chars(part);
        return true;
    }
    bool on_key(string_view part, std::size_t, error_code&)
    {
        stack.push_key(part);
        return true;
    }
    bool on_string_part(string_view part, std::size_t, error_code&)
    {
        stack.push_chars(part);
        return true;
    }
    bool on_string(string_view part, std::size_t, error_code&)
    {
        stack.push_string(part);
        return true;
    }
    bool on_number_part(string_view part, error_code&)
    {
        m_number.append(part.data(), part.size());
        return true;
    }
    bool on_int64(std::int64_t value, string_view, error_code&)
    {
        m_number.clear();
        stack.push_int64(value);
        return true;
    }
    bool on_uint64(std::uint64_t value, string_view, error_code&)
    {
        m_number.clear();
        stack.push_uint64(value);
        return true;
    }
    bool on_double(double value, string_view part, error_code&)
    {
        m_number.append(part.data(), part.size());
        double exact = 0;
        const auto result = std::from_chars(m_number.data(), m_number.data() + m_number.size(), exact);
        // Out of range keeps the parser's own answer (an infinity).
        if (result.ec == std::errc() && result.ptr == m_number.data() + m_number.size())
            value = exact;
        m_number.clear();
        stack.push_double(value);
        return true;
    }
    bool on_bool(bool value, error_code&)
    {
        stack.push_bool(value);
        return true;
    }
    bool on_null(error_code&)
    {
        stack.push_null();
        return true;
    }
    bool on_comment_part(string_view, error_code&) { return true; }
    bool on_comment(string_view, error_code&) { return true; }

private:
    std::string m_number;
};

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

} // namespace

std::optional<boost::json::value> parsePrecisely(std::string_view text, std::string* error)
{
    boost::json::basic_parser<PreciseHandler> parser(boost::json::parse_options{});
    parser.handler().stack.reset();
    error_code code;
    std::size_t used = parser.write_some(false, text.data(), text.size(), code);
    if (!code) {
        while (used < text.size() && isBlank(text[used]))
            ++used;
        if (used != text.size())
            code = boost::json::make_error_code(boost::json::error::extra_data);
    }
    if (code) {
        if (error != nullptr)
            *error = code.message() + " at offset " + std::to_string(used);
        return std::nullopt;
    }
    return parser.handler().stack.release();
}

} // namespace Kx::JSON
