#pragma once

#include <Types/Geometry/ValueType.h>

#include <string>
#include <tuple>

namespace Kx {

template <class T>
struct ValueTraits;

// A user-visible text: either a literal, or a reference (module, id, default text) into the
// application's string tables that is resolved into the user's language on first read. When the
// bootstrap options ask for pseudo-localisation, every text that enters the value gets a leading
// U+00F9, so texts that bypass the tables stand out on screen.
class GlobalizedString : public ValueType<GlobalizedString> {
public:
    using Reference = std::tuple<std::string, std::string, std::string>;

    GlobalizedString() = default;
    explicit GlobalizedString(const std::wstring& text);
    // (module, id, defaultValue).
    explicit GlobalizedString(const Reference& reference);

    // Makes this a literal. The reference is kept (see wasGlobalized()).
    void set(const std::wstring& text);
    // Makes this a reference that is resolved again on the next read.
    void set(const Reference& reference);
    // Turns a literal that was a reference back into that reference, and makes a reference resolve
    // again on the next read (after the language or the tables changed).
    void resetToGlobalized();

    // The text to show. A reference is looked up first: the table entry, else the text held
    // already, else the default text.
    [[nodiscard]] const std::wstring& value() const;
    [[nodiscard]] bool isGlobalized() const noexcept { return m_globalized; }
    // True once the text has ever been a reference, even if it was set to a literal since.
    [[nodiscard]] bool wasGlobalized() const noexcept { return !m_module.empty(); }

    [[nodiscard]] const std::string& module() const noexcept { return m_module; }
    [[nodiscard]] const std::string& id() const noexcept { return m_id; }
    [[nodiscard]] const std::string& defaultValue() const noexcept { return m_defaultValue; }

    // "(module: m, id: i defaultValue: d, value: v, globalized: g, globalizedValueInitialize: r)",
    // the fields as stored (nothing is resolved for printing).
    [[nodiscard]] std::wstring toString() const;

private:
    void initializeGlobalizedValueIfRequired() const;

    // Resolution fills in the value on first read, behind a const accessor.
    mutable std::wstring m_value;
    std::string m_module;
    std::string m_id;
    std::string m_defaultValue;
    bool m_globalized = false;
    mutable bool m_globalizedValueInitialize = false;

    friend struct ValueTraits<GlobalizedString>;
};

} // namespace Kx

namespace Kx {
// Instantiated once, in the library, where the type's description is known.
extern template class ValueType<GlobalizedString>;
} // namespace Kx
