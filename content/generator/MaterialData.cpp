#include "MaterialData.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <map>
#include <stdexcept>

namespace Kx::Content {

const std::array<PhysicalColumn, s_physicalPropertyCount> s_physicalColumns{{
    {EPhysicalProperty::eDensity, "density_kg_m3", "kg/m^3"},
    {EPhysicalProperty::eYoungsModulus, "youngs_modulus_pa", "Pa"},
    {EPhysicalProperty::ePoissonRatio, "poisson_ratio", ""},
    {EPhysicalProperty::eYieldStrength, "yield_strength_pa", "Pa"},
    {EPhysicalProperty::eTensileStrength, "ultimate_tensile_strength_pa", "Pa"},
    {EPhysicalProperty::eThermalConductivity, "thermal_conductivity_w_mk", "W/(m*K)"},
    {EPhysicalProperty::eThermalExpansion, "thermal_expansion_1_k", "1/K"},
    {EPhysicalProperty::eSpecificHeat, "specific_heat_j_kgk", "J/(kg*K)"},
}};

namespace {

// The files hold no quotes and no commas inside fields (content/data/README.md).
class CsvRows {
public:
    explicit CsvRows(const std::filesystem::path& file)
        : m_file(file)
        , m_stream(file)
    {
        if (!m_stream) {
            throw std::runtime_error("cannot read " + file.string());
        }
        std::vector<std::string> header;
        if (!next(header)) {
            fail("no header row");
        }
        for (std::size_t index = 0; index < header.size(); ++index) {
            m_columns[header[index]] = index;
        }
        m_width = header.size();
    }

    bool next(std::vector<std::string>& fields)
    {
        std::string line;
        if (!std::getline(m_stream, line)) {
            return false;
        }
        ++m_line;
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        fields.clear();
        std::size_t start = 0;
        while (true) {
            const std::size_t comma = line.find(',', start);
            fields.push_back(line.substr(start, comma - start));
            if (comma == std::string::npos) {
                break;
            }
            start = comma + 1;
        }
        if (m_width != 0 && fields.size() != m_width) {
            fail("expected " + std::to_string(m_width) + " fields, found " + std::to_string(fields.size()));
        }
        return true;
    }

    [[nodiscard]] std::size_t column(const std::string& name) const
    {
        const auto found = m_columns.find(name);
        if (found == m_columns.end()) {
            throw std::runtime_error(m_file.string() + ": no column " + name);
        }
        return found->second;
    }

    [[noreturn]] void fail(const std::string& what) const
    {
        throw std::runtime_error(m_file.string() + ":" + std::to_string(m_line) + ": " + what);
    }

private:
    std::filesystem::path m_file;
    std::ifstream m_stream;
    std::map<std::string, std::size_t> m_columns;
    std::size_t m_width = 0;
    std::size_t m_line = 0;
};

std::optional<double> number(const CsvRows& rows, const std::string& text)
{
    if (text.empty()) {
        return std::nullopt;
    }
    double value = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) {
        rows.fail("not a number: \"" + text + "\"");
    }
    return value;
}

double required(const CsvRows& rows, const std::string& text)
{
    const auto value = number(rows, text);
    if (!value) {
        rows.fail("a required value is empty");
    }
    return *value;
}

std::vector<std::string> split(const std::string& text, char separator)
{
    std::vector<std::string> parts;
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t end = std::min(text.find(separator, start), text.size());
        if (end > start) {
            parts.push_back(text.substr(start, end - start));
        }
        start = end + 1;
    }
    return parts;
}

bool isPhysicalColumn(const std::string& column)
{
    return std::any_of(s_physicalColumns.begin(), s_physicalColumns.end(),
        [&](const PhysicalColumn& entry) { return column == entry.column; });
}

EPhysicalProperty propertyOf(const CsvRows& rows, const std::string& column)
{
    if (!isPhysicalColumn(column)) {
        rows.fail("\"" + column + "\" is not a numeric column of physical.csv");
    }
    return physicalProperty(column);
}

std::string referenceOf(const CsvRows& rows, const std::string& text)
{
    if (text.empty()) {
        rows.fail("every value needs its reference");
    }
    return text;
}

} // namespace

EPhysicalProperty physicalProperty(const std::string& column)
{
    for (const PhysicalColumn& entry : s_physicalColumns) {
        if (column == entry.column) {
            return entry.property;
        }
    }
    throw std::runtime_error("no numeric column " + column);
}

std::vector<Correction> readCorrections(const std::filesystem::path& file)
{
    CsvRows rows(file);
    const std::size_t id = rows.column("id"), column = rows.column("column"), found = rows.column("found");
    const std::size_t value = rows.column("value"), reference = rows.column("reference");
    std::vector<Correction> corrections;
    std::vector<std::string> fields;
    while (rows.next(fields)) {
        corrections.push_back({fields[id], propertyOf(rows, fields[column]), required(rows, fields[found]),
            number(rows, fields[value]), referenceOf(rows, fields[reference])});
    }
    return corrections;
}

std::vector<FamilyValue> readFamilyValues(const std::filesystem::path& file)
{
    CsvRows rows(file);
    const std::size_t family = rows.column("family"), members = rows.column("members"), column = rows.column("column");
    const std::size_t value = rows.column("value"), reference = rows.column("reference");
    std::vector<FamilyValue> values;
    std::vector<std::string> fields;
    while (rows.next(fields)) {
        FamilyValue entry{fields[family], split(fields[members], ';'), propertyOf(rows, fields[column]),
            required(rows, fields[value]), referenceOf(rows, fields[reference])};
        if (entry.family.empty() || entry.members.empty()) {
            rows.fail("a family value needs its family and members");
        }
        values.push_back(std::move(entry));
    }
    return values;
}

std::vector<PhysicalRecord> readPhysical(const std::filesystem::path& file)
{
    CsvRows rows(file);
    const std::size_t id = rows.column("id");
    const std::size_t name = rows.column("name");
    const std::size_t category = rows.column("category");
    const std::size_t subcategory = rows.column("subcategory");
    const std::size_t behavior = rows.column("behavior");
    const std::size_t source = rows.column("source");
    const std::size_t inheritedFrom = rows.column("inherited_from");
    const std::size_t doubtful = rows.column("doubtful_columns");
    std::array<std::size_t, s_physicalPropertyCount> valueColumns{};
    for (std::size_t index = 0; index < s_physicalPropertyCount; ++index) {
        valueColumns[index] = rows.column(s_physicalColumns[index].column);
    }
    std::vector<PhysicalRecord> records;
    std::vector<std::string> fields;
    while (rows.next(fields)) {
        PhysicalRecord record{fields[id], fields[name], fields[category], fields[subcategory], {}, fields[behavior],
            fields[source], fields[inheritedFrom], split(fields[doubtful], ';'), {}};
        for (const std::string& column : record.doubtfulColumns) {
            if (!isPhysicalColumn(column)) {
                rows.fail("doubtful_columns names \"" + column + "\", not a numeric column");
            }
        }
        for (std::size_t index = 0; index < s_physicalPropertyCount; ++index) {
            record.values[index] = number(rows, fields[valueColumns[index]]);
        }
        if (record.id.empty() || record.name.empty() || record.category.empty()) {
            rows.fail("id, name and category are required");
        }
        records.push_back(std::move(record));
    }
    return records;
}

std::vector<AppearanceRecord> readAppearance(const std::filesystem::path& file)
{
    CsvRows rows(file);
    const auto column = [&](const char* name) { return rows.column(name); };
    const std::size_t id = column("id"), name = column("name"), category = column("category"), kind = column("kind");
    const std::size_t baseR = column("base_r"), baseG = column("base_g"), baseB = column("base_b");
    const std::size_t metalness = column("metalness"), roughness = column("roughness"), ior = column("ior");
    const std::size_t specR = column("specular_r"), specG = column("specular_g"), specB = column("specular_b");
    const std::size_t transmission = column("transmission"), source = column("source");
    std::vector<AppearanceRecord> records;
    std::vector<std::string> fields;
    while (rows.next(fields)) {
        AppearanceRecord record;
        record.id = fields[id];
        record.name = fields[name];
        record.category = fields[category];
        record.kind = fields[kind];
        record.base = {required(rows, fields[baseR]), required(rows, fields[baseG]), required(rows, fields[baseB])};
        record.metalness = required(rows, fields[metalness]);
        record.roughness = required(rows, fields[roughness]);
        record.ior = number(rows, fields[ior]);
        if (!fields[specR].empty()) {
            record.specular = Rgb{required(rows, fields[specR]), required(rows, fields[specG]), required(rows, fields[specB])};
        }
        record.transmission = number(rows, fields[transmission]);
        record.source = fields[source];
        if (record.kind != "metal" && record.kind != "transparent" && record.kind != "layered" &&
            record.kind != "opaque" && record.kind != "wood") {
            rows.fail("unknown kind \"" + record.kind + "\"");
        }
        records.push_back(std::move(record));
    }
    return records;
}

} // namespace Kx::Content
