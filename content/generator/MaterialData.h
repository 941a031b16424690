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

// Where a shipped value comes from when it is not the source's own figure.
enum class EValueOrigin { eCorrected, eWithdrawn, eFamily };

struct ValueNote {
    EValueOrigin origin = EValueOrigin::eCorrected;
    std::string text; // what was done and the public reference it rests on
};

struct PhysicalRecord {
    std::string id;
    std::string name;
    std::string category;
    std::string subcategory;
    std::array<std::optional<double>, s_physicalPropertyCount> values;
    std::string behavior;
    std::string source;
    std::string inheritedFrom;
    std::vector<std::string> doubtfulColumns; // values the data itself marks as not to be shipped as they are
    std::array<std::optional<ValueNote>, s_physicalPropertyCount> notes;

    [[nodiscard]] const std::optional<double>& value(EPhysicalProperty property) const
    {
        return values[static_cast<std::size_t>(property)];
    }
    std::optional<double>& value(EPhysicalProperty property) { return values[static_cast<std::size_t>(property)]; }
};

// A replacement for a value the data marks as doubtful (content/data/corrections.csv). It applies
// only while the data still holds `found`; no `value` withdraws the figure, leaving it empty.
struct Correction {
    std::string id;
    EPhysicalProperty property;
    double found = 0.0;
    std::optional<double> value;
    std::string reference;
};

// A value a whole family of materials shares, filling the cells its members' sources leave empty
// (content/data/family-values.csv). `members` are material ids or subcategories.
struct FamilyValue {
    std::string family;
    std::vector<std::string> members;
    EPhysicalProperty property;
    double value = 0.0;
    std::string reference;
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
[[nodiscard]] std::vector<Correction> readCorrections(const std::filesystem::path& file);
[[nodiscard]] std::vector<FamilyValue> readFamilyValues(const std::filesystem::path& file);
// The numeric column of physical.csv with this name; throws for another name.
[[nodiscard]] EPhysicalProperty physicalProperty(const std::string& column);

} // namespace Kx::Content
