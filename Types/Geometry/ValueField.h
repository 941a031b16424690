#pragma once

#include <cstddef>
#include <tuple>
#include <utility>

namespace Kx {

// One field of a value type as every encoding sees it: the key (member name, XML attribute and
// JSON key, written as the wide literal the XML keys are made from) and the field's address in
// the class.
template <class Owner, class Field>
struct ValueField {
    using FieldType = Field;

    const wchar_t* key;
    Field Owner::*pointer;
};

template <class Owner, class Field>
[[nodiscard]] constexpr ValueField<Owner, Field> field(const wchar_t* key, Field Owner::*pointer) noexcept
{
    return {key, pointer};
}

// Calls `visit(field, index)` for each field of a traits' tuple, in declaration order.
template <class Fields, class Visit>
constexpr void forEachField(const Fields& fields, Visit&& visit)
{
    [&]<std::size_t... I>(std::index_sequence<I...>) {
        (visit(std::get<I>(fields), std::integral_constant<std::size_t, I>{}), ...);
    }(std::make_index_sequence<std::tuple_size_v<Fields>>{});
}

// Like forEachField, but stops at the first visit that answers false; answers whether all passed.
template <class Fields, class Visit>
constexpr bool allFields(const Fields& fields, Visit&& visit)
{
    return [&]<std::size_t... I>(std::index_sequence<I...>) {
        return (visit(std::get<I>(fields), std::integral_constant<std::size_t, I>{}) && ...);
    }(std::make_index_sequence<std::tuple_size_v<Fields>>{});
}

} // namespace Kx
