#include "Types/Utility/TypesUtil.h"
#include "Types/Utility/internal/MaterialLibraryHistoryFile.h"

#include <base/Assert.h>
#include <base/Paths.h>
#include <base/XMLNode.h>

#include <core/Strings.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <string>

namespace Kx::Types {

namespace {

// Problems are reported under the public function's name: that is the call a reader of the log
// knows, whichever of the two functions read the file first.
constexpr const char* s_reportingFunction = "std::wstring Kx::Types::GetCurrentMaterialLibraryGUID()";

void report(const std::string& text, int line)
{
    reportAssertion(text.c_str(), s_reportingFunction, KX_MODULE_NAME, __FILE__, line);
}

#define KX_HISTORY_CHECK(cond)                 \
    do {                                       \
        if (!static_cast<bool>(cond)) {        \
            report(#cond, __LINE__);           \
        }                                      \
    } while (false)

} // namespace

MaterialLibraryHistory readMaterialLibraryHistory(const std::filesystem::path& file)
{
    MaterialLibraryHistory history;
    std::string error;
    const std::optional<XMLDocument> document = XMLDocument::loadFile(file, &error);
    if (!document) {
        report("Failed to open " + file.string() + ". Error: " + error, __LINE__);
        return history;
    }
    const XMLNode root = document->documentElement();
    if (root.name() != "MaterialLibraryHistory") {
        report("The root element must be MaterialLibraryHistory.", __LINE__);
        return history;
    }
    const std::size_t libraryNum = root.childCount();
    if (libraryNum == 0) {
        report("No elements in MaterialLibraryHistory.", __LINE__);
    }
    std::map<std::int32_t, std::wstring> legacyGUIDs;
    // Walked by sibling: a hostile file with many elements must not cost a walk from the first
    // child for each of them.
    for (XMLNode element = root.firstChild(); element; element = element.nextSibling()) {
        const std::string name = element.name();
        if (name == "Current") {
            // A later "Current" replaces an earlier one.
            history.current = element["GUID"].asWString();
        } else if (name == "Legacy") {
            const std::int32_t id = element["ID"].asInt32();
            KX_HISTORY_CHECK(legacyGUIDs.find(id) == legacyGUIDs.end());
            legacyGUIDs[id] = element["GUID"].asWString();
        } else {
            report("MaterialLibraryHistory only allows Current and Legacy elements", __LINE__);
        }
    }
    const std::wstring* CurrentMaterialLibraryGUID = &history.current;
    KX_HISTORY_CHECK(!CurrentMaterialLibraryGUID->empty());
    std::vector<std::wstring>& LegacyMaterialLibraryGUID = history.legacy;
    for (const auto& [id, guid] : legacyGUIDs) {
        LegacyMaterialLibraryGUID.push_back(guid);
    }
    KX_HISTORY_CHECK(!LegacyMaterialLibraryGUID.empty());
    KX_HISTORY_CHECK(LegacyMaterialLibraryGUID.end() == std::find( LegacyMaterialLibraryGUID.begin(), LegacyMaterialLibraryGUID.end(), *CurrentMaterialLibraryGUID));
    KX_HISTORY_CHECK(LegacyMaterialLibraryGUID.size() == libraryNum - 1);
    return history;
}

namespace {

// Read by the first caller of either function and kept for the rest of the process: the installed
// set does not change while the application runs.
const MaterialLibraryHistory& libraryHistory()
{
    static const MaterialLibraryHistory s_history = readMaterialLibraryHistory(Paths::contentRoot() / "MaterialLibraryHistory.xml");
    return s_history;
}

} // namespace

std::wstring GetCurrentMaterialLibraryGUID()
{
    return libraryHistory().current;
}

std::vector<std::wstring> GetLegacyMaterialLibraryGUID()
{
    return libraryHistory().legacy;
}

} // namespace Kx::Types
