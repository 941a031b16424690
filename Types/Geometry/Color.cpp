#include <Types/Geometry/Color.h>

#include <boost/format.hpp>
#include <boost/regex.hpp>

#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <stdexcept>

namespace Kx {

namespace {

constexpr float s_tolerance = 0.0001f;

// A plain cast of an out-of-range double to int is undefined, so the extremes saturate.
int scaledTo255(float channel) noexcept
{
    const double scaled = std::trunc(static_cast<double>(channel) * 255.0);
    if (std::isnan(scaled)) {
        return 0;
    }
    if (scaled <= static_cast<double>(std::numeric_limits<int>::min())) {
        return std::numeric_limits<int>::min();
    }
    if (scaled >= static_cast<double>(std::numeric_limits<int>::max())) {
        return std::numeric_limits<int>::max();
    }
    return static_cast<int>(scaled);
}

bool inUnitRange(float channel) noexcept { return channel >= 0.0f && channel <= 1.0f; }

} // namespace

int Color::redAsInt() const noexcept { return scaledTo255(m_red); }
int Color::greenAsInt() const noexcept { return scaledTo255(m_green); }
int Color::blueAsInt() const noexcept { return scaledTo255(m_blue); }
int Color::alphaAsInt() const noexcept { return scaledTo255(m_alpha); }

bool Color::isValid() const noexcept
{
    return inUnitRange(m_red) && inUnitRange(m_green) && inUnitRange(m_blue) && inUnitRange(m_alpha);
}

bool Color::operator==(const Color& other) const noexcept
{
    return std::abs(m_red - other.m_red) < s_tolerance && std::abs(m_green - other.m_green) < s_tolerance
        && std::abs(m_blue - other.m_blue) < s_tolerance && std::abs(m_alpha - other.m_alpha) < s_tolerance;
}

bool Color::operator<(const Color& other) const noexcept
{
    const float sum = ((m_green + m_red) + m_blue) + m_alpha;
    const float otherSum = ((other.m_green + other.m_red) + other.m_blue) + other.m_alpha;
    return sum < otherSum;
}

Color Color::operator*(double factor) const noexcept
{
    const auto scale = static_cast<float>(factor);
    return Color(m_red * scale, m_green * scale, m_blue * scale, m_alpha);
}

std::wstring Color::toString() const
{
    return (boost::wformat(L"(Red: %1%, Green: %2%, Blue: %3%, Alpha: %4%)") % m_red % m_green % m_blue % m_alpha).str();
}

std::wstring Color::toHex(bool withAlpha) const
{
    if (withAlpha) {
        return (boost::wformat(L"#%1$02X%2$02X%3$02X%4$02X") % redAsInt() % greenAsInt() % blueAsInt() % alphaAsInt()).str();
    }
    return (boost::wformat(L"#%1$02X%2$02X%3$02X") % redAsInt() % greenAsInt() % blueAsInt()).str();
}

Color Color::fromHex(const std::string& text)
{
    static const boost::regex s_pair("[0-9A-Fa-f]{2,2}");

    std::array<float, 4> channels{0.0f, 0.0f, 0.0f, 1.0f};
    std::size_t found = 0;
    for (boost::sregex_iterator match(text.begin(), text.end(), s_pair), end; match != end && found < channels.size();
         ++match) {
        const unsigned long byte = std::stoul(match->str(), nullptr, 16);
        channels[found++] = static_cast<float>(byte) / 255.0f;
    }
    if (found < 3) {
        throw std::invalid_argument("Color::fromHex: \"" + text + "\" holds fewer than three hexadecimal pairs");
    }
    return Color(channels[0], channels[1], channels[2], channels[3]);
}

Color Color::random()
{
    thread_local std::mt19937 s_generator{std::random_device{}()};
    std::uniform_real_distribution<float> channel(0.0f, 1.0f);
    const float red = channel(s_generator);
    const float green = channel(s_generator);
    const float blue = channel(s_generator);
    const float alpha = channel(s_generator);
    return Color(red, green, blue, alpha);
}

} // namespace Kx
