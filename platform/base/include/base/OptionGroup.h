#pragma once

#include "base/Option.h"

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Kx {

class XMLNode;

// A named set of options (and nested groups) persisted together in one option file,
// Paths::optionsDirectory()/<name>.xml (format in docs/formats.md). Options are added while the
// group is built; their values may then be read from any thread, and are changed, loaded and saved
// on the UI thread.
class OptionGroup {
public:
    explicit OptionGroup(std::string name);
    virtual ~OptionGroup();
    OptionGroup(const OptionGroup&) = delete;
    OptionGroup& operator=(const OptionGroup&) = delete;

    [[nodiscard]] const std::string& name() const { return m_name; }
    [[nodiscard]] const std::wstring& userName() const { return m_userName; }
    void setUserName(std::wstring text) { m_userName = std::move(text); }
    [[nodiscard]] const std::wstring& toolTip() const { return m_toolTip; }
    void setToolTip(std::wstring text) { m_toolTip = std::move(text); }

    // Ids are element names of the option file: letters, digits, '_', '-', '.', starting with a
    // letter or '_', unique within the group, and not "OptionGroup".
    Option& addOption(std::unique_ptr<Option> option);
    template <class T, class... Args>
    T& add(Args&&... args)
    {
        auto option = std::make_unique<T>(std::forward<Args>(args)...);
        T& added = *option;
        addOption(std::move(option));
        return added;
    }

    [[nodiscard]] Option* option(std::string_view id);
    [[nodiscard]] const Option* option(std::string_view id) const;
    template <class T>
    [[nodiscard]] T* optionAs(std::string_view id)
    {
        return dynamic_cast<T*>(option(id));
    }
    [[nodiscard]] const std::vector<std::unique_ptr<Option>>& options() const { return m_options; }

    // The nested group `name`, created on first use; saved inside this group's file.
    OptionGroup& subGroup(const std::string& name);
    [[nodiscard]] const std::vector<std::unique_ptr<OptionGroup>>& subGroups() const { return m_subGroups; }

    // The options with their choices filled. A group whose choices come from elsewhere (libraries
    // that open late) fills them here, each time a dialog or a command is about to show them.
    virtual const std::vector<std::unique_ptr<Option>>& createOptionsIfNeeded() { return m_options; }
    // A dialog is choosing `value` for `option` without committing it yet: a group whose other
    // choices depend on that option fills them for the value. Answers the options.
    virtual const std::vector<std::unique_ptr<Option>>& onChoiceChanged(Option& option, const std::string& value)
    {
        (void)option;
        (void)value;
        return m_options;
    }

    // Some option here or in a sub-group changed since the last load or save.
    [[nodiscard]] bool dirty() const;
    void clearDirty();
    void resetToDefaults();

    // The file load() and save() use.
    [[nodiscard]] virtual std::filesystem::path persistFile() const;
    // Sets every option to its default, then to the value the file holds for it, and clears dirty.
    // A missing file is no error (defaults). A file that cannot be read or is not this group's option
    // file is logged and answers false, with the reason in `problem` when given; the values are
    // then left as they were. A value that an option refuses is logged and leaves that option at
    // its default.
    bool load(std::string* problem = nullptr);
    bool loadFrom(const std::filesystem::path& file, std::string* problem = nullptr);
    // Writes the whole group atomically (creating the folder) and clears dirty; false, logged, when
    // the file could not be written, which leaves the previous file as it was.
    bool save();
    bool saveTo(const std::filesystem::path& file);

protected:
    // After an option of this group changed value, except while loading.
    virtual void onOptionChanged(Option& option) {}
    // After load() or loadFrom() answered true.
    virtual void onLoaded() {}

private:
    friend class Option;

    void notifyChanged(Option& option);
    void write(XMLNode element) const;
    void read(const XMLNode& element, const std::string& file);
    void setLoading(bool loading);

    std::string m_name;
    std::wstring m_userName;
    std::wstring m_toolTip;
    std::vector<std::unique_ptr<Option>> m_options;
    std::vector<std::unique_ptr<OptionGroup>> m_subGroups;
    bool m_loading = false;
};

} // namespace Kx
