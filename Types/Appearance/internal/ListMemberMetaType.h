#pragma once

#include <base/Strings.h>
#include <datamodel/IntrinsicMetaType.h>
#include <datamodel/MemberSet.h>

#include <cstdint>
#include <string>
#include <typeinfo>
#include <vector>

namespace Kx {

// A list member stored as one grouped text, "(0, 3, 7)" (Strings::groupStrings), in every
// encoding: the registry's persisted references and use counts are short lists of short items, and
// as a text they read the same in binary, XML and JSON. Items of unsigned lists are decimal.
template <class E>
class ListMemberMetaType final : public MemberMetaType {
public:
    [[nodiscard]] static const ListMemberMetaType* get()
    {
        static const ListMemberMetaType instance;
        return &instance;
    }

    [[nodiscard]] std::size_t sizeInBytes(const VisitorContext& context) const override
    {
        return text()->sizeInBytes(context);
    }
    void save(const void* value, IWriteStreamBase* stream, const VisitorContext& context) const override
    {
        const std::wstring grouped = toText(*static_cast<const std::vector<E>*>(value));
        text()->save(&grouped, stream, context);
    }
    void load(void* value, unsigned version, const IReadStreamBase* stream, const VisitorContext& context) const override
    {
        std::wstring grouped;
        text()->load(&grouped, version, stream, context);
        std::vector<E> items;
        if (fromText(grouped, items)) {
            *static_cast<std::vector<E>*>(value) = std::move(items);
        } else {
            static_cast<std::vector<E>*>(value)->clear();
        }
    }
    [[nodiscard]] std::wstring toString(const void* value, const VisitorContext&) const override
    {
        return toText(*static_cast<const std::vector<E>*>(value));
    }
    void getJSON(const void* value, JSONGetStream* stream, const VisitorContext& context) const override
    {
        const std::wstring grouped = toText(*static_cast<const std::vector<E>*>(value));
        text()->getJSON(&grouped, stream, context);
    }
    void setJSON(void* value, JSONSetStream* stream, const VisitorContext& context) const override
    {
        std::wstring grouped = toText(*static_cast<const std::vector<E>*>(value));
        text()->setJSON(&grouped, stream, context);
        std::vector<E> items;
        if (fromText(grouped, items)) {
            *static_cast<std::vector<E>*>(value) = std::move(items);
        }
    }
    [[nodiscard]] bool readJSON(void* value, const JSONRef& json) const override
    {
        std::wstring grouped;
        std::vector<E> items;
        if (!text()->readJSON(&grouped, json) || !fromText(grouped, items)) {
            return false;
        }
        *static_cast<std::vector<E>*>(value) = std::move(items);
        return true;
    }
    [[nodiscard]] bool equals(const void* first, const void* second) const override
    {
        return *static_cast<const std::vector<E>*>(first) == *static_cast<const std::vector<E>*>(second);
    }
    void copy(void* target, const void* source) const override
    {
        *static_cast<std::vector<E>*>(target) = *static_cast<const std::vector<E>*>(source);
    }
    [[nodiscard]] bool storedAsXmlAttribute() const noexcept override { return true; }

    static std::wstring toText(const std::vector<E>& items)
    {
        if constexpr (std::is_same_v<E, std::wstring>) {
            return Strings::groupStrings(items);
        } else {
            std::vector<std::wstring> texts;
            texts.reserve(items.size());
            for (const E item : items) {
                texts.push_back(std::to_wstring(item));
            }
            return Strings::groupStrings(texts);
        }
    }
    static bool fromText(const std::wstring& grouped, std::vector<E>& items)
    {
        std::vector<std::wstring> texts;
        if (!Strings::ungroupStrings(grouped, texts)) {
            return false;
        }
        if constexpr (std::is_same_v<E, std::wstring>) {
            items = std::move(texts);
        } else {
            items.clear();
            for (const std::wstring& item : texts) {
                if (item.empty() || item.size() > 10 || item.find_first_not_of(L"0123456789") != std::wstring::npos) {
                    return false;
                }
                const unsigned long long number = std::stoull(item);
                if (number > 0xFFFFFFFFull) {
                    return false;
                }
                items.push_back(static_cast<E>(number));
            }
        }
        return true;
    }

private:
    ListMemberMetaType()
        : MemberMetaType(std::string("Kx.List.") + (std::is_same_v<E, std::wstring> ? "wstring" : "uint32"),
              "ListMemberMetaType", 0, std::is_same_v<E, std::wstring> ? "list<wstring>" : "list<uint32>")
    {
    }
    static const IntrinsicMetaType<std::wstring>* text() { return IntrinsicMetaType<std::wstring>::get(); }
};

template <class E>
void addListMember(MemberSet* memberSet, const std::string& name, std::vector<E>& field)
{
    memberSet->addNewMember(name, &field, typeid(std::vector<E>).name(), ListMemberMetaType<E>::get());
}

} // namespace Kx
