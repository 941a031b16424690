#include "German.h"

#include <map>
#include <stdexcept>
#include <utility>
#include <vector>

namespace Kx::Content {

namespace {

std::string lookup(const std::map<std::string_view, std::string_view>& table, std::string_view english, const char* what)
{
    const auto found = table.find(english);
    if (found == table.end()) {
        throw std::runtime_error(std::string("no German ") + what + " for \"" + std::string(english) + "\"");
    }
    return std::string(found->second);
}

} // namespace

std::string germanCategory(std::string_view english)
{
    static const std::map<std::string_view, std::string_view> s_table{
        {"Metal", "Metall"}, {"Plastic", "Kunststoff"}, {"Wood", "Holz"}, {"Glass", "Glas"}, {"Ceramic", "Keramik"},
        {"Concrete", "Beton"}, {"Composite", "Verbundwerkstoff"}, {"Stone", "Stein"}, {"Rubber", "Gummi"},
        {"Other", "Sonstige"}, {"Aluminum", "Aluminium"}, {"Cast iron", "Gusseisen"}, {"Cast steel", "Stahlguss"},
        {"Copper", "Kupfer"}, {"Copper alloy", "Kupferlegierung"}, {"Iron", "Eisen"}, {"Nickel alloy", "Nickellegierung"},
        {"Reinforcing steel", "Betonstahl"}, {"Stainless steel", "Edelstahl"}, {"Steel", "Stahl"},
        {"Titanium alloy", "Titanlegierung"}, {"Thermoplastic", "Thermoplast"}, {"Generic wood", "Holz allgemein"},
        {"Glass fibre", "Glasfaser"}, {"Soda-lime glass", "Kalk-Natron-Glas"},
        {"Carbon fibre reinforced polymer", "Kohlenstofffaserverst\u00e4rkter Kunststoff"}, {"Carbon", "Kohlenstoff"},
        {"Manmade", "K\u00fcnstlich"}, {"Liquid", "Fl\u00fcssigkeit"}, {"Organic", "Organisch"}, {"Human", "Mensch"},
        {"Crystal", "Kristall"}, {"Opaque", "Undurchsichtig"}, {"Transparent", "Transparent"},
        {"Layered", "Beschichtet"}, {"Metallic", "Metallisch"}, {"Textured", "Texturiert"}, {"Hardwood", "Laubholz"},
        {"Softwood", "Nadelholz"}, {"Paint", "Lack"},
    };
    return lookup(s_table, english, "category");
}

std::string germanPhysicalName(std::string_view english)
{
    // Longer phrases first: "Stainless steel" must not become "Stainless Stahl".
    static const std::vector<std::pair<std::string_view, std::string_view>> s_phrases{
        {"Stainless steel", "Edelstahl"}, {"Reinforcing steel", "Betonstahl"}, {"Cast iron", "Gusseisen"},
        {"Cast steel", "Stahlguss"}, {"Steel", "Stahl"}, {"Nickel aluminum bronze", "Nickel-Aluminium-Bronze"},
        {"Aluminum bronze", "Aluminiumbronze"}, {"Aluminum", "Aluminium"},
        {"Copper-nickel-silicon", "Kupfer-Nickel-Silizium"}, {"Copper-nickel", "Kupfer-Nickel"},
        {"zirconium copper", "Zirkoniumkupfer"}, {"Copper", "Kupfer"}, {"Commercial bronze", "Tombak"},
        {"Red brass", "Rotmessing"}, {"Admiralty brass", "Admiralit\u00e4tsmessing"}, {"Naval brass", "Marinemessing"},
        {"Phosphor bronze", "Phosphorbronze"}, {"High-silicon bronze", "Siliziumbronze"}, {"Iron", "Eisen"},
        {"Titanium", "Titan"}, {"Polyamide", "Polyamid"}, {"Polycarbonate", "Polycarbonat"},
        {"Polypropylene", "Polypropylen"}, {"Acrylic glass", "Acrylglas"}, {"PMMA sheet", "PMMA-Platte"},
        {"copolymer acetal", "Copolymer-Polyacetal"}, {"homopolymer acetal", "Homopolymer-Polyacetal"},
        {"Wood (generic construction)", "Holz (Bauholz, allgemein)"}, {"-glass fibre", "-Glasfaser"},
        {"Soda-lime glass", "Kalk-Natron-Glas"}, {"Concrete", "Beton"},
        {"Carbon/epoxy chopped-fibre moulding compound (quasi-isotropic)",
            "Kohlenstoff/Epoxid-Kurzfaser-Pressmasse (quasi-isotrop)"},
        {"CFRP high-strength unidirectional (carbon/epoxy)", "CFK hochfest unidirektional (Kohlenstoff/Epoxid)"},
        {"Graphite", "Graphit"}, {"(generic)", "(allgemein)"}, {"; generic)", "; allgemein)"},
        {"oxygen-free", "sauerstofffrei"}, {"phosphorus-deoxidized", "phosphordesoxidiert"},
        {"(cold drawn and aged)", "(kaltgezogen und ausgelagert)"}, {"(cold drawn)", "(kaltgezogen)"},
        {"(annealed)", "(weichgegl\u00fcht)"}, {"(spring temper)", "(federhart)"}, {"(aged)", "(ausgelagert)"},
        {"(sand cast)", "(Sandguss)"}, {"(molded)", "(spritzgegossen)"}, {"(FEM sample card)", "(FEM-Beispielkarte)"},
        {"(fib example; reduced design yield)", "(fib-Beispiel; reduzierte Bemessungsstreckgrenze)"},
    };
    std::string german(english);
    for (const auto& [from, to] : s_phrases) {
        for (std::size_t at = german.find(from); at != std::string::npos; at = german.find(from, at + to.size())) {
            german.replace(at, from.size(), to);
        }
    }
    if (german == english) {
        throw std::runtime_error("no German name for \"" + std::string(english) + "\"");
    }
    return german;
}

std::string germanAppearanceName(std::string_view english)
{
    static const std::map<std::string_view, std::string_view> s_table{
        {"Aluminum", "Aluminium"}, {"Aluminum (Anodized Red)", "Aluminium (rot eloxiert)"}, {"Amber", "Bernstein"},
        {"Asphalt (Fresh)", "Asphalt (frisch)"}, {"Banana", "Banane"}, {"Beer (Pale Lager)", "Bier (helles Lagerbier)"},
        {"Beryllium", "Beryllium"}, {"Blackboard", "Schultafel"}, {"Blood (Deoxygenated)", "Blut (sauerstoffarm)"},
        {"Blood (Oxygenated)", "Blut (sauerstoffreich)"}, {"Bone", "Knochen"}, {"Brass", "Messing"}, {"Brick", "Ziegel"},
        {"Car Paint", "Autolack"}, {"Cardboard", "Karton"}, {"Carrot", "Karotte"}, {"Cesium", "Caesium"},
        {"Charcoal", "Holzkohle"}, {"Chocolate", "Schokolade"}, {"Chromium", "Chrom"}, {"Cobalt", "Cobalt"},
        {"Coffee", "Kaffee"}, {"Cola", "Cola"}, {"Concrete", "Beton"}, {"Cooking Oil", "Speise\u00f6l"},
        {"Copper", "Kupfer"}, {"Cream", "Sahne"}, {"Diamond", "Diamant"}, {"Egg Shell (Brown)", "Eierschale (braun)"},
        {"Egg Shell (White)", "Eierschale (wei\u00df)"}, {"Eye (Cornea)", "Auge (Hornhaut)"}, {"Eye (Lens)", "Auge (Linse)"},
        {"Eye (Sclera)", "Auge (Lederhaut)"}, {"Gasoline", "Benzin"}, {"Germanium", "Germanium"},
        {"Glass (Borosilicate)", "Glas (Borosilikat)"}, {"Glass (Soda-lime)", "Glas (Kalk-Natron)"}, {"Gold", "Gold"},
        {"Grass", "Gras"}, {"Gray Card", "Graukarte"}, {"Honey (Liquid)", "Honig (fl\u00fcssig)"},
        {"Honey (Crystallized)", "Honig (kristallisiert)"}, {"Ice", "Eis"}, {"Iridium", "Iridium"}, {"Iron", "Eisen"},
        {"Juice (Apple)", "Saft (Apfel)"}, {"Juice (Cranberry)", "Saft (Cranberry)"}, {"Juice (Grape)", "Saft (Traube)"},
        {"Juice (Ruby Grapefruit)", "Saft (rote Grapefruit)"}, {"Juice (White Grapefruit)", "Saft (wei\u00dfe Grapefruit)"},
        {"Ketchup", "Ketchup"}, {"Lead", "Blei"}, {"Lemon", "Zitrone"}, {"Lithium", "Lithium"},
        {"Magnesium", "Magnesium"}, {"Manganese", "Mangan"}, {"Marble", "Marmor"}, {"Mercury", "Quecksilber"},
        {"Milk", "Milch"}, {"MIT Black", "MIT Black"}, {"Molybdenum", "Molybd\u00e4n"}, {"Musou Black", "Musou Black"},
        {"Nickel", "Nickel"}, {"Office Paper", "B\u00fcropapier"}, {"Orange", "Orange"}, {"Palladium", "Palladium"},
        {"Pearl", "Perle"}, {"Petroleum", "Erd\u00f6l"}, {"Plastic (Acrylic)", "Kunststoff (Acryl)"},
        {"Plastic (PC)", "Kunststoff (PC)"}, {"Plastic (PET)", "Kunststoff (PET)"}, {"Plastic (PP)", "Kunststoff (PP)"},
        {"Plastic (PUR)", "Kunststoff (PUR)"}, {"Plastic (PVC)", "Kunststoff (PVC)"}, {"Platinum", "Platin"},
        {"Polystyrene (Foam)", "Polystyrol (Schaum)"}, {"Porcelain", "Porzellan"}, {"Potassium", "Kalium"},
        {"Quartz", "Quarz"}, {"Rubidium", "Rubidium"}, {"Salt", "Salz"}, {"Sand", "Sand"}, {"Sapphire", "Saphir"},
        {"Silicon", "Silizium"}, {"Silver", "Silber"}, {"Skin I", "Haut I"}, {"Skin II", "Haut II"},
        {"Skin III", "Haut III"}, {"Skin IV", "Haut IV"}, {"Skin V", "Haut V"}, {"Skin VI", "Haut VI"},
        {"Snow", "Schnee"}, {"Soap Bubble", "Seifenblase"}, {"Sodium", "Natrium"}, {"Spectralon", "Spectralon"},
        {"Stainless Steel", "Edelstahl"}, {"Terracotta", "Terrakotta"}, {"Tire", "Reifen"}, {"Titanium", "Titan"},
        {"Titanium (Anodized)", "Titan (eloxiert)"}, {"Toilet Paper", "Toilettenpapier"},
        {"Toner (Black)", "Toner (schwarz)"}, {"Toothpaste", "Zahnpasta"}, {"Tungsten", "Wolfram"},
        {"Vanadium", "Vanadium"}, {"Water", "Wasser"}, {"Whiteboard", "Whiteboard"}, {"Wine (Red)", "Wein (rot)"},
        {"Wine (White)", "Wein (wei\u00df)"}, {"Zinc", "Zink"},
        // Authored presets (content/data/README.md).
        {"Oak", "Eiche"}, {"Beech", "Buche"}, {"Maple", "Ahorn"}, {"Walnut", "Nussbaum"}, {"Pine", "Kiefer"},
        {"Plastic (Matte White)", "Kunststoff (matt wei\u00df)"},
        {"Carbon Fibre (Clear Coat)", "Kohlefaser (Klarlack)"}, {"Brick (Running Bond)", "Ziegel (L\u00e4uferverband)"},
        {"Ceramic Tiles (Grey Grout)", "Keramikfliesen (graue Fuge)"}, {"Concrete (Textured)", "Beton (texturiert)"},
        // Derived presets (content/data/README.md).
        {"Plastic (PP, Natural)", "Kunststoff (PP, natur)"}, {"Plastic (PP, Black)", "Kunststoff (PP, schwarz)"},
        {"Plastic (PVC, Grey)", "Kunststoff (PVC, grau)"}, {"Plastic (PVC, White)", "Kunststoff (PVC, wei\u00df)"},
        {"Plastic (PET, White)", "Kunststoff (PET, wei\u00df)"}, {"Paint (Gloss White)", "Lack (gl\u00e4nzend wei\u00df)"},
        {"Paint (Gloss Black)", "Lack (gl\u00e4nzend schwarz)"}, {"Paint (Gloss Red)", "Lack (gl\u00e4nzend rot)"},
        {"Paint (Satin Blue)", "Lack (seidenmatt blau)"}, {"Paint (Satin Grey)", "Lack (seidenmatt grau)"},
        {"Paint (Matte Black)", "Lack (matt schwarz)"},
    };
    // A metal's finish: "Aluminum (Brushed)" is "Aluminium (gebürstet)".
    static const std::pair<std::string_view, std::string_view> s_finishes[] = {{" (Satin)", " (seidenmatt)"},
        {" (Brushed)", " (geb\u00fcrstet)"}, {" (Bead-blasted)", " (glasperlgestrahlt)"}};
    for (const auto& [suffix, german] : s_finishes) {
        if (english.ends_with(suffix)) {
            return lookup(s_table, english.substr(0, english.size() - suffix.size()), "name") + std::string(german);
        }
    }
    return lookup(s_table, english, "name");
}

} // namespace Kx::Content
