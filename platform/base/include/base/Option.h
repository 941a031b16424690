#pragma once

#include <atomic>
#include <mutex>
#include <string>
#include <vector>

namespace Kx {

class OptionGroup;
class XMLNode;

// One user preference of an OptionGroup: an identifier, a value with a default, and a text form
// used by option files and text commands. An option is dirty from the moment its value changes
// until the group is loaded or saved, which is how a group tells edited values from defaults.
// Values may be read from any thread; the concrete options guard them with mutex().
class Option {
public:
    explicit Option(std::string id);
    virtual ~Option();
    Option(const Option&) = delete;
    Option& operator=(const Option&) = delete;

    [[nodiscard]] const std::string& id() const { return m_id; }
    // Localised texts a preferences dialog shows; not persisted.
    [[nodiscard]] const std::wstring& userName() const { return m_userName; }
    void setUserName(std::wstring text) { m_userName = std::move(text); }
    [[nodiscard]] const std::wstring& toolTip() const { return m_toolTip; }
    void setToolTip(std::wstring text) { m_toolTip = std::move(text); }

    // Puts `child` below this option: a dialog shows it indented under this one, in effect only
    // while this (boolean) option is on. Both stay options of their group and are saved as usual.
    void subGroup(Option& child);
    [[nodiscard]] const std::vector<Option*>& subOptions() const { return m_subOptions; }
    // The option this one was put below, or null.
    [[nodiscard]] const Option* parentOption() const { return m_parent; }

    [[nodiscard]] virtual std::string toText() const = 0;
    // False, with the value unchanged, when `text` is no value of this option.
    virtual bool fromText(const std::string& text) = 0;
    virtual void resetToDefault() = 0;

    [[nodiscard]] bool dirty() const { return m_dirty.load(std::memory_order_relaxed); }
    void clearDirty() { m_dirty.store(false, std::memory_order_relaxed); }

    // The option's element in an option file: by default the text form in the attribute "Value".
    virtual void save(XMLNode element) const;
    // False, with the value unchanged, when the element holds no value of this option.
    virtual bool load(const XMLNode& element);

protected:
    // Concrete options call this, outside their lock, after the value really changed.
    void changed();
    std::mutex& mutex() const { return m_mutex; }

private:
    friend class OptionGroup;

    std::string m_id;
    std::wstring m_userName;
    std::wstring m_toolTip;
    std::atomic<bool> m_dirty{false};
    OptionGroup* m_group = nullptr;
    std::vector<Option*> m_subOptions;
    const Option* m_parent = nullptr;
    mutable std::mutex m_mutex;
};

// The value handling that all simple options share.
template <class T>
class ValueOption : public Option {
public:
    ValueOption(std::string id, T defaultValue)
        : Option(std::move(id))
        , m_default(defaultValue)
        , m_value(std::move(defaultValue))
    {
    }

    [[nodiscard]] T value() const
    {
        std::lock_guard lock(mutex());
        return m_value;
    }
    [[nodiscard]] const T& defaultValue() const { return m_default; }

    // False, with the value unchanged, when the option does not accept `value`.
    bool setValue(T value)
    {
        if (!accepts(value)) {
            return false;
        }
        assign(std::move(value));
        return true;
    }

    // The default is always accepted, even by a choice list that does not (yet) offer it.
    void resetToDefault() override { assign(m_default); }

protected:
    [[nodiscard]] virtual bool accepts(const T&) const { return true; }

private:
    void assign(T value)
    {
        bool differs = false;
        {
            std::lock_guard lock(mutex());
            differs = !(m_value == value);
            m_value = std::move(value);
        }
        if (differs) {
            changed();
        }
    }

    const T m_default;
    T m_value;
};

} // namespace Kx
