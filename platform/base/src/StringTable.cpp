#include "base/StringTable.h"

#include "base/AppLogMgr.h"
#include "base/BootstrapOptionGroup.h"
#include "base/Paths.h"
#include "base/Strings.h"
#include "base/XMLNode.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>
#include <vector>

namespace Kx {

namespace {

using Table = std::unordered_map<std::string, std::wstring>;

// Keyed by content root too, so that pointing KX_CONTENT_DIR elsewhere needs no reload.
struct TableKey {
    std::string root;
    std::string language;
    std::string module;
    auto operator<=>(const TableKey&) const = default;
};

std::shared_mutex s_mutex;
// A null table records a file that is missing or unreadable, so it is not tried again.
std::map<TableKey, std::shared_ptr<const Table>> s_tables;
// The language folders present under each content root, sorted.
std::map<std::string, std::vector<std::string>> s_languages;

std::string primaryOf(const std::string& language)
{
    std::string primary = language.substr(0, language.find_first_of("-_"));
    std::transform(primary.begin(), primary.end(), primary.begin(), [](unsigned char c) { return std::tolower(c); });
    return primary;
}

std::shared_ptr<const Table> readTable(const std::filesystem::path& file)
{
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) {
        return nullptr;
    }
    std::string problem;
    const auto document = XMLDocument::loadFile(file, &problem);
    const XMLNode root = document ? document->documentElement() : XMLNode();
    if (document && root.name() != "StringTable") {
        problem = file.string() + ": the document element is <" + root.name() + ">, not <StringTable>";
    }
    if (!problem.empty()) {
        AppLogMgr::appLogEx(ELogLevel::eWarning, L"String table ignored: " + ToIString(problem));
        return nullptr;
    }
    auto table = std::make_shared<Table>();
    for (XMLNode entry = root.firstChild(); entry; entry = entry.nextSibling()) {
        const std::string id = entry["id"].asString();
        const std::string text = entry.text();
        // An untranslated entry is left empty by translators: it must not hide the fallback.
        if (entry.name() == "String" && !id.empty() && !text.empty()) {
            table->emplace(id, ToIString(text));
        }
    }
    return table;
}

std::shared_ptr<const Table> tableFor(const std::filesystem::path& root, const std::string& language,
    const std::string& module)
{
    TableKey key{root.string(), language, module};
    {
        std::shared_lock lock(s_mutex);
        if (const auto found = s_tables.find(key); found != s_tables.end()) {
            return found->second;
        }
    }
    // Read outside the lock; if two threads race, both read the same file and the first one stored wins.
    auto table = readTable(root / "strings" / language / (module + ".xml"));
    std::unique_lock lock(s_mutex);
    return s_tables.try_emplace(std::move(key), std::move(table)).first->second;
}

std::vector<std::string> languagesUnder(const std::filesystem::path& root)
{
    {
        std::shared_lock lock(s_mutex);
        if (const auto found = s_languages.find(root.string()); found != s_languages.end()) {
            return found->second;
        }
    }
    std::vector<std::string> languages;
    std::error_code error;
    for (std::filesystem::directory_iterator it(root / "strings", error), end; !error && it != end; it.increment(error)) {
        if (it->is_directory(error)) {
            languages.push_back(it->path().filename().string());
        }
    }
    std::sort(languages.begin(), languages.end());
    std::unique_lock lock(s_mutex);
    return s_languages.try_emplace(root.string(), std::move(languages)).first->second;
}

// A language tag names a folder: anything that could leave the strings folder is no language.
bool isLanguageTag(const std::string& language)
{
    return !language.empty() && std::all_of(language.begin(), language.end(), [](unsigned char c) {
        return std::isalnum(c) || c == '-' || c == '_';
    });
}

// The languages to try, in order, for `language`.
std::vector<std::string> fallbackChain(const std::filesystem::path& root, const std::string& language)
{
    std::vector<std::string> chain;
    if (isLanguageTag(language)) {
        chain.push_back(language);
        const std::string primary = primaryOf(language);
        for (const auto& candidate : languagesUnder(root)) {
            if (candidate != language && primaryOf(candidate) == primary) {
                chain.push_back(candidate);
            }
        }
    }
    if (std::find(chain.begin(), chain.end(), "en-US") == chain.end()) {
        chain.emplace_back("en-US");
    }
    return chain;
}

} // namespace

std::wstring StringTable::getLocalizedString(const std::string& module, const std::string& id,
    const std::string& defaultValue)
{
    const auto root = Paths::contentRoot();
    for (const auto& language : fallbackChain(root, BootstrapOptionGroup::get().userLanguage())) {
        const auto table = tableFor(root, language, module);
        if (!table) {
            continue;
        }
        if (const auto found = table->find(id); found != table->end()) {
            return found->second;
        }
    }
    return ToIString(defaultValue);
}

void StringTable::reload()
{
    std::unique_lock lock(s_mutex);
    s_tables.clear();
    s_languages.clear();
}

} // namespace Kx
