#include "datamodel/IntrinsicMetaType.h"

#include "datamodel/BinaryStreams.h"
#include "datamodel/EntityChange.h"
#include "datamodel/JSONStreams.h"
#include "datamodel/MemberSet.h"
#include "datamodel/VisitorContext.h"

#include <base/NumberText.h>
#include <base/Strings.h>

#include <boost/json.hpp>

#include <cmath>

namespace Kx {

namespace {

template <class T>
struct IntrinsicName;
template <> struct IntrinsicName<bool> { static constexpr const char* value = "bool"; };
template <> struct IntrinsicName<std::int32_t> { static constexpr const char* value = "int32"; };
template <> struct IntrinsicName<std::uint32_t> { static constexpr const char* value = "uint32"; };
template <> struct IntrinsicName<std::int64_t> { static constexpr const char* value = "int64"; };
template <> struct IntrinsicName<std::uint64_t> { static constexpr const char* value = "uint64"; };
template <> struct IntrinsicName<float> { static constexpr const char* value = "float"; };
template <> struct IntrinsicName<double> { static constexpr const char* value = "double"; };
template <> struct IntrinsicName<std::string> { static constexpr const char* value = "string"; };
template <> struct IntrinsicName<std::wstring> { static constexpr const char* value = "wstring"; };

template <class T>
std::string jsonText(const T& value)
{
    if constexpr (std::is_same_v<T, bool>) {
        return value ? "true" : "false";
    } else if constexpr (std::is_floating_point_v<T>) {
        // JSON has no NaN or infinity; they are written as null, which reads back as "no value".
        return std::isfinite(value) ? shortestText(value) : "null";
    } else if constexpr (std::is_arithmetic_v<T>) {
        return shortestText(value);
    } else if constexpr (std::is_same_v<T, std::string>) {
        return boost::json::serialize(boost::json::string_view(value));
    } else {
        const std::string utf8 = ToUTF8(value);
        return boost::json::serialize(boost::json::string_view(utf8));
    }
}

template <class T>
std::wstring displayText(const T& value)
{
    if constexpr (std::is_same_v<T, bool>)
        return value ? L"true" : L"false";
    else if constexpr (std::is_arithmetic_v<T>)
        return ToIString(shortestText(value));
    else if constexpr (std::is_same_v<T, std::string>)
        return ToIString(value);
    else
        return value;
}

template <class T>
T attributeValue(const XMLAttributeProxy& attribute, const T& fallback)
{
    if constexpr (std::is_same_v<T, bool>)
        return attribute.asBool(fallback);
    else if constexpr (std::is_same_v<T, std::int32_t>)
        return attribute.asInt32(fallback);
    else if constexpr (std::is_same_v<T, std::uint32_t>)
        return attribute.asUInt32(fallback);
    else if constexpr (std::is_same_v<T, std::int64_t>)
        return attribute.asInt64(fallback);
    else if constexpr (std::is_same_v<T, std::uint64_t>)
        return attribute.asUInt64(fallback);
    else if constexpr (std::is_same_v<T, float>)
        return attribute.asFloat(fallback);
    else if constexpr (std::is_same_v<T, double>)
        return attribute.asDouble(fallback);
    else if constexpr (std::is_same_v<T, std::string>)
        return attribute.exists() ? attribute.asString() : fallback;
    else
        return attribute.exists() ? attribute.asWString() : fallback;
}

} // namespace

template <class T>
IntrinsicMetaType<T>::IntrinsicMetaType()
    : MemberMetaType(std::string("Kx.Intrinsic.") + IntrinsicName<T>::value,
          std::string(IntrinsicName<T>::value) + "IntrinsicMetaType", 0, IntrinsicName<T>::value)
{
}

template <class T>
const IntrinsicMetaType<T>* IntrinsicMetaType<T>::get()
{
    static const IntrinsicMetaType instance;
    return &instance;
}

template <class T>
void IntrinsicMetaType<T>::save(const void* value, IWriteStreamBase* stream, const VisitorContext& context) const
{
    const T& field = *static_cast<const T*>(value);
    if (BinaryWriteStream* binary = asBinary(stream)) {
        binary->write(field);
        return;
    }
    // The member's name lives as long as its member set: the attribute is named without a copy.
    XMLAttributeProxy(context.xmlNode().raw(), context.member()->name.c_str()) = field;
}

template <class T>
void IntrinsicMetaType<T>::load(void* value, unsigned, const IReadStreamBase* stream, const VisitorContext& context) const
{
    T& field = *static_cast<T*>(value);
    if (const BinaryReadStream* binary = asBinary(stream)) {
        binary->read(field);
        return;
    }
    const char* name = context.member()->name.c_str();
    XMLAttributeCursor* attributes = context.xmlAttributes();
    field = attributeValue<T>(attributes != nullptr ? (*attributes)[name] : XMLAttributeProxy(context.xmlNode().raw(), name), field);
}

template <class T>
std::wstring IntrinsicMetaType<T>::toString(const void* value, const VisitorContext&) const
{
    return displayText(*static_cast<const T*>(value));
}

template <class T>
void IntrinsicMetaType<T>::getJSON(const void* value, JSONGetStream* stream, const VisitorContext&) const
{
    stream->addText(jsonText(*static_cast<const T*>(value)));
}

template <class T>
void IntrinsicMetaType<T>::setJSON(void* value, JSONSetStream* stream, const VisitorContext&) const
{
    T& field = *static_cast<T*>(value);
    T read = field;
    if (!stream->currentJSONRef().get(read)) {
        stream->refuseValue();
        return;
    }
    if (read == field)
        return;
    stream->recordChange([&] { field = std::move(read); });
}

template <class T>
bool IntrinsicMetaType<T>::readJSON(void* value, const JSONRef& json) const
{
    return json.get(*static_cast<T*>(value));
}

template <class T>
bool IntrinsicMetaType<T>::equals(const void* first, const void* second) const
{
    return *static_cast<const T*>(first) == *static_cast<const T*>(second);
}

template <class T>
void IntrinsicMetaType<T>::copy(void* target, const void* source) const
{
    *static_cast<T*>(target) = *static_cast<const T*>(source);
}

template class IntrinsicMetaType<bool>;
template class IntrinsicMetaType<std::int32_t>;
template class IntrinsicMetaType<std::uint32_t>;
template class IntrinsicMetaType<std::int64_t>;
template class IntrinsicMetaType<std::uint64_t>;
template class IntrinsicMetaType<float>;
template class IntrinsicMetaType<double>;
template class IntrinsicMetaType<std::string>;
template class IntrinsicMetaType<std::wstring>;

namespace {
// The intrinsic types are registered when the data model loads, so that the registry lists them
// before any document asks for them.
template <class... T>
bool registerIntrinsics()
{
    ((void)IntrinsicMetaType<T>::get(), ...);
    return true;
}
const bool s_intrinsicsRegistered = registerIntrinsics<bool, std::int32_t, std::uint32_t, std::int64_t, std::uint64_t,
    float, double, std::string, std::wstring>();
} // namespace

} // namespace Kx
