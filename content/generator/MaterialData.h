#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

// The two data files of content/data as records. An empty cell is an absent value, never zero.
namespace Kx::Content {

// The numeric columns of physical.csv, in file order; lint ranges and corrections name them.
enum class EPhysicalProperty {
    eDensity,
    eYoungsModulus,
    ePoissonRatio,
    eYieldStrength,
    eTensileStrength,
    eThermalConductivity,
    eThermalExpansion,
    eSpecificHeat,
};
inline constexpr std::size_t s_physicalPropertyCount = 8;

struct PhysicalColumn {
    EPhysicalProperty property;
    const char* column;
    const char* unit;
};
// Column names and SI units of the numeric columns.
extern const std::array<PhysicalColumn, s_physicalPropertyCount> s_physicalColumns;

struct PhysicalRecord {
    std::string id;
    std::string name;
    std::string category;
    std::string subcategory;
    std::array<std::optional<double>, s_physicalPropertyCount> values;
    std::string behavior;
    std::string source;

    [[nodiscard]] const std::optional<double>& value(EPhysicalProperty property) const
    {
        return values[static_cast<std::size_t>(property)];
    }
    std::optional<double>& value(EPhysicalProperty property) { return values[static_cast<std::size_t>(property)]; }
};

struct Rgb {
    double r = 0.0;
    double g = 0.0;
    double b = 0.0;
};

struct AppearanceRecord {
    std::string id;
    std::string name;
    std::string category;
    std::string kind; // metal, transparent, layered, wood, opaque
    Rgb base;
    double metalness = 0.0;
    double roughness = 0.0;
    std::optional<double> ior;
    std::optional<Rgb> specular;
    std::optional<double> transmission;
    std::string source;
};

// Throw std::runtime_error naming the file and line for a malformed file.
[[nodiscard]] std::vector<PhysicalRecord> readPhysical(const std::filesystem::path& file);
[[nodiscard]] std::vector<AppearanceRecord> readAppearance(const std::filesystem::path& file);

} // namespace Kx::Content
