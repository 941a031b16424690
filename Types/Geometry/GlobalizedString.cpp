#include <Types/Geometry/GlobalizedString.h>

#include <base/BootstrapOptionGroup.h>
#include <base/StringTable.h>
#include <base/Strings.h>

#include <boost/format.hpp>

namespace Kx {

namespace {

constexpr wchar_t s_pseudoLocalizationMark = L'\u00F9';

std::wstring pseudoLocalized(std::wstring text)
{
    if (BootstrapOptionGroup::get().pseudoLocalize()) {
        text.insert(text.begin(), s_pseudoLocalizationMark);
    }
    return text;
}

} // namespace

GlobalizedString::GlobalizedString(const std::wstring& text) : m_value(pseudoLocalized(text)) {}

GlobalizedString::GlobalizedString(const Reference& reference)
    : m_module(std::get<0>(reference))
    , m_id(std::get<1>(reference))
    , m_defaultValue(std::get<2>(reference))
    , m_globalized(true)
{
}

void GlobalizedString::set(const std::wstring& text)
{
    m_value = pseudoLocalized(text);
    m_globalized = false;
}

void GlobalizedString::set(const Reference& reference)
{
    m_value.clear();
    std::tie(m_module, m_id, m_defaultValue) = reference;
    m_globalized = true;
    m_globalizedValueInitialize = false;
}

void GlobalizedString::resetToGlobalized()
{
    m_value.clear();
    m_globalized = true;
    m_globalizedValueInitialize = false;
}

const std::wstring& GlobalizedString::value() const
{
    if (m_globalized) {
        initializeGlobalizedValueIfRequired();
    }
    return m_value;
}

void GlobalizedString::initializeGlobalizedValueIfRequired() const
{
    if (m_globalizedValueInitialize) {
        return;
    }
    std::wstring text = StringTable::getLocalizedString(m_module, m_id, m_defaultValue);
    if (text.empty()) {
        text = m_value.empty() ? ToIString(m_defaultValue) : m_value;
    }
    m_value = pseudoLocalized(std::move(text));
    m_globalizedValueInitialize = true;
}

std::wstring GlobalizedString::toString() const
{
    return (boost::wformat(L"(module: %1%, id: %2% defaultValue: %3%, value: %4%, globalized: %5%, "
                           L"globalizedValueInitialize: %6%)")
        % ToIString(m_module) % ToIString(m_id) % ToIString(m_defaultValue) % m_value % m_globalized
        % m_globalizedValueInitialize)
        .str();
}

} // namespace Kx
