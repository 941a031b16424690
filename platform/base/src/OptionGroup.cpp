#include "base/OptionGroup.h"

#include "base/AppLogMgr.h"
#include "base/Assert.h"
#include "base/Paths.h"
#include "base/Strings.h"
#include "base/XMLNode.h"

#include <algorithm>
#include <cctype>
#include <optional>

namespace Kx {

namespace {

constexpr const char* s_groupElement = "OptionGroup";
// Bumped when the layout of option files changes in a way older readers cannot follow.
constexpr std::uint32_t s_fileVersion = 1;

bool isElementName(const std::string& name)
{
    if (name.empty() || name == s_groupElement) {
        return false;
    }
    const auto first = static_cast<unsigned char>(name.front());
    if (!std::isalpha(first) && first != '_') {
        return false;
    }
    return std::all_of(name.begin(), name.end(), [](unsigned char c) {
        return std::isalnum(c) || c == '_' || c == '-' || c == '.';
    });
}

void logProblem(const std::string& text)
{
    AppLogMgr::appLogEx(ELogLevel::eWarning, ToIString(text));
}

// An option file that cannot be read is moved aside (<file>.unreadable, numbered when that is
// taken) before anything saves the group again: the next save would otherwise replace what the
// user may still want to repair or send in. Answers where it went, or empty when it could not move.
std::filesystem::path keepAside(const std::filesystem::path& file)
{
    std::error_code error;
    for (int attempt = 1; attempt < 1000; ++attempt) {
        std::filesystem::path aside = file;
        aside += attempt == 1 ? ".unreadable" : ".unreadable-" + std::to_string(attempt);
        if (std::filesystem::exists(aside, error)) {
            continue;
        }
        std::filesystem::rename(file, aside, error);
        return error ? std::filesystem::path() : aside;
    }
    return {};
}

} // namespace

OptionGroup::OptionGroup(std::string name)
    : m_name(std::move(name))
{
}

OptionGroup::~OptionGroup() = default;

Option& OptionGroup::addOption(std::unique_ptr<Option> option)
{
    KX_ASSERT(isElementName(option->id()));
    KX_ASSERT(this->option(option->id()) == nullptr);
    option->m_group = this;
    m_options.push_back(std::move(option));
    return *m_options.back();
}

Option* OptionGroup::option(std::string_view id)
{
    const auto found = std::find_if(m_options.begin(), m_options.end(), [&](const auto& option) { return option->id() == id; });
    return found != m_options.end() ? found->get() : nullptr;
}

const Option* OptionGroup::option(std::string_view id) const
{
    return const_cast<OptionGroup*>(this)->option(id);
}

OptionGroup& OptionGroup::subGroup(const std::string& name)
{
    for (const auto& group : m_subGroups) {
        if (group->name() == name) {
            return *group;
        }
    }
    m_subGroups.push_back(std::make_unique<OptionGroup>(name));
    return *m_subGroups.back();
}

bool OptionGroup::dirty() const
{
    return std::any_of(m_options.begin(), m_options.end(), [](const auto& option) { return option->dirty(); })
        || std::any_of(m_subGroups.begin(), m_subGroups.end(), [](const auto& group) { return group->dirty(); });
}

void OptionGroup::clearDirty()
{
    for (const auto& option : m_options) {
        option->clearDirty();
    }
    for (const auto& group : m_subGroups) {
        group->clearDirty();
    }
}

void OptionGroup::resetToDefaults()
{
    for (const auto& option : m_options) {
        option->resetToDefault();
    }
    for (const auto& group : m_subGroups) {
        group->resetToDefaults();
    }
}

std::filesystem::path OptionGroup::persistFile() const
{
    return Paths::optionsDirectory() / (m_name + ".xml");
}

void OptionGroup::notifyChanged(Option& option)
{
    if (!m_loading) {
        onOptionChanged(option);
    }
}

void OptionGroup::setLoading(bool loading)
{
    m_loading = loading;
    for (const auto& group : m_subGroups) {
        group->setLoading(loading);
    }
}

void OptionGroup::write(XMLNode element) const
{
    element["Name"] = m_name;
    for (const auto& option : m_options) {
        option->save(element.appendChild(option->id()));
    }
    for (const auto& group : m_subGroups) {
        group->write(element.appendChild(s_groupElement));
    }
}

void OptionGroup::read(const XMLNode& element, const std::string& file)
{
    for (XMLNode child = element.firstChild(); child; child = child.nextSibling()) {
        const std::string name = child.name();
        if (name == s_groupElement) {
            const std::string groupName = child["Name"].asString();
            const auto group = std::find_if(m_subGroups.begin(), m_subGroups.end(),
                [&](const auto& candidate) { return candidate->name() == groupName; });
            if (group != m_subGroups.end()) {
                (*group)->read(child, file);
            }
            continue;
        }
        // Elements of options this version does not know are skipped: a newer version wrote them.
        if (Option* target = option(name); target != nullptr && !target->load(child)) {
            logProblem(file + ": option " + m_name + "/" + name + " refused its stored value; default kept");
            target->resetToDefault();
        }
    }
}

bool OptionGroup::load(std::string* problem)
{
    return loadFrom(persistFile(), problem);
}

bool OptionGroup::loadFrom(const std::filesystem::path& file, std::string* problem)
{
    const auto refuse = [&](const std::string& why) {
        logProblem("Option file ignored: " + why);
        if (problem != nullptr) {
            *problem = why;
        }
        return false;
    };
    std::error_code error;
    std::optional<XMLDocument> document;
    if (std::filesystem::exists(file, error)) {
        std::string why;
        document = XMLDocument::loadFile(file, &why);
        const XMLNode root = document ? document->documentElement() : XMLNode();
        if (document && (root.name() != s_groupElement || root["Name"].asString() != m_name)) {
            why = file.string() + ": not the option file of " + m_name;
        } else if (document && root["Version"].exists() && root["Version"].asString() != std::to_string(s_fileVersion)) {
            // A later version may have changed what the values mean: reading them could be wrong.
            why = file.string() + ": written by another version of the option file format (" +
                root["Version"].asString() + "; this program reads " + std::to_string(s_fileVersion) + ")";
        }
        if (!why.empty()) {
            const std::filesystem::path aside = keepAside(file);
            return refuse(aside.empty() ? why : why + "; the file is kept as " + aside.string());
        }
    } else if (error) {
        return refuse(file.string() + ": " + error.message());
    }

    setLoading(true);
    resetToDefaults();
    if (document) {
        read(document->documentElement(), file.string());
    }
    setLoading(false);
    clearDirty();
    onLoaded();
    return true;
}

bool OptionGroup::save()
{
    return saveTo(persistFile());
}

bool OptionGroup::saveTo(const std::filesystem::path& file)
{
    XMLDocument document;
    XMLNode root = document.appendChild(s_groupElement);
    write(root);
    root["Version"] = s_fileVersion;

    std::error_code ignored;
    std::filesystem::create_directories(file.parent_path(), ignored);
    if (!document.saveFile(file)) {
        logProblem("Option file not saved: " + file.string());
        return false;
    }
    clearDirty();
    return true;
}

} // namespace Kx
