#pragma once

// The one template behind every value meta type and callback of this library. A type is described
// once by its ValueTraits (name, identifier, version, fields, whether it has a callback); everything
// the data model needs is generated from that description.

#include <Types/Geometry/ValueField.h>
#include <Types/Geometry/ValueType.h>

#include <base/JSONNode.h>
#include <base/XMLNode.h>
#include <datamodel/BinaryStreams.h>
#include <datamodel/DataModelCallback.h>
#include <datamodel/EntityChange.h>
#include <datamodel/IntrinsicMetaType.h>
#include <datamodel/JSONStreams.h>
#include <datamodel/MemberSet.h>
#include <datamodel/ValueMetaType.h>
#include <datamodel/VisitorContext.h>
#include <datamodel/XmlBulkStream.h>

#include <array>
#include <charconv>
#include <cmath>
#include <atomic>
#include <new>
#include <string>
#include <tuple>
#include <typeinfo>

namespace Kx {

template <class T>
struct ValueTraits;

template <class T>
class TValueMetaType;

// The meta type that describes members of type F.
template <class F>
[[nodiscard]] const MemberMetaType* memberMetaTypeOf()
{
    if constexpr (isIntrinsic<F>)
        return IntrinsicMetaType<F>::get();
    else
        return TValueMetaType<F>::get();
}

// Declares `field` of the object being described as member `name`, with the meta type of its type.
template <class F>
void addMember(MemberSet* memberSet, const std::string& name, F& field)
{
    memberSet->addNewMember(name, &field, typeid(F).name(), memberMetaTypeOf<F>());
}

namespace ValueCodec {

template <class F>
F attributeAs(const XMLAttributeProxy& attribute)
{
    if constexpr (std::is_same_v<F, std::int32_t>)
        return attribute.asInt32();
    else if constexpr (std::is_same_v<F, float>)
        return attribute.asFloat();
    else if constexpr (std::is_same_v<F, double>)
        return attribute.asDouble();
    else if constexpr (std::is_same_v<F, bool>)
        return attribute.asBool();
    else
        static_assert(sizeof(F) == 0, "no XML conversion for this field type");
}

// The XML keys of a type, made once from the traits' wide literals.
template <class T>
const auto& keys()
{
    static const auto made = std::apply(
        [](const auto&... fields) { return std::array<XMLString, sizeof...(fields)>{XMLString(fields.key)...}; },
        ValueTraits<T>::fields);
    return made;
}

// The JSON keys of a type with their quotes and colon, made once: `"red":`.
template <class T>
const auto& jsonKeys()
{
    static const auto made = [] {
        std::array<std::string, std::tuple_size_v<decltype(ValueTraits<T>::fields)>> quoted;
        for (std::size_t i = 0; i < quoted.size(); ++i)
            quoted[i] = '"' + keys<T>()[i].utf8() + "\":";
        return quoted;
    }();
    return made;
}

// A field as JSON text, exactly as JSONNode writes it: integers in decimal, floats and doubles in
// their shortest round-trip form (a float's own shortest form, which is also the shortest form of
// the double JSONNode stores for it), and null for what JSON cannot hold.
template <class F>
void appendJSON(std::string& text, F field)
{
    if constexpr (std::is_same_v<F, bool>) {
        text += field ? "true" : "false";
    } else {
        if constexpr (std::is_floating_point_v<F>) {
            if (!std::isfinite(field)) {
                text += "null";
                return;
            }
            if (field == 0 && std::signbit(field)) {
                text += "-0.0"; // "-0" would read back as the integer 0
                return;
            }
        }
        char buffer[32];
        const auto written = std::to_chars(buffer, buffer + sizeof buffer, field);
        text.append(buffer, written.ptr);
    }
}

// Reads every field from a JSON object into `value`, stopping at the first key that is missing or
// of the wrong kind. `value` is the caller's scratch copy.
template <class T>
bool readFields(const JSONRef& json, T& value)
{
    const auto& names = keys<T>();
    return allFields(ValueTraits<T>::fields,
        [&](const auto& field, auto index) { return json[names[index].utf8()].get(value.*field.pointer); });
}

} // namespace ValueCodec

// Sets a value from the stream's current JSON: all of it or nothing (JSON it cannot read is
// reported to the stream as refused); an equal value records no change and counts nothing; a
// different one is assigned inside an EntityChange and counted.
template <class T, class Read>
void setValueFromJSON(T& value, JSONSetStream* stream, Read&& read)
{
    T candidate = value;
    if (!read(stream->currentJSONRef(), candidate)) {
        stream->refuseValue();
        return;
    }
    if (!(candidate != value))
        return;
    stream->recordChange([&] { value = candidate; });
}

// The callback of a value type: its binary, XML and JSON encodings, field by field in declaration
// order. Binary: the fields with the stream's typed writes and nothing between them. XML: one
// attribute per field on the member's element. JSON: one object member per field.
template <class T>
class ValueDataModelCallback final : public DataModelCallback {
public:
    [[nodiscard]] static ValueDataModelCallback* get()
    {
        static ValueDataModelCallback instance;
        return &instance;
    }

    void onSave(const void* value, IWriteStreamBase* stream, const VisitorContext& context) override
    {
        const T& typed = *static_cast<const T*>(value);
        if (BinaryWriteStream* binary = asBinary(stream)) {
            std::apply([&](const auto&... fields) { binary->writeAll(typed.*fields.pointer...); }, ValueTraits<T>::fields);
            return;
        }
        XMLNode node = XmlBulkStream::nodeFromVisitorContext(stream, context);
        const auto& names = ValueCodec::keys<T>();
        forEachField(ValueTraits<T>::fields,
            [&](const auto& field, auto index) { node[names[index]] = typed.*field.pointer; });
    }

    void onLoad(void* value, unsigned, const IReadStreamBase* stream, const VisitorContext& context) override
    {
        T& typed = *static_cast<T*>(value);
        if (const BinaryReadStream* binary = asBinary(stream)) {
            std::apply([&](const auto&... fields) { binary->readAll(typed.*fields.pointer...); }, ValueTraits<T>::fields);
            return;
        }
        XMLAttributeCursor attributes(XmlBulkStream::nodeFromVisitorContext(stream, context).raw());
        const auto& names = ValueCodec::keys<T>();
        forEachField(ValueTraits<T>::fields, [&](const auto& field, auto index) {
            using F = typename std::decay_t<decltype(field)>::FieldType;
            typed.*field.pointer = ValueCodec::attributeAs<F>(attributes[names[index].c_str()]);
        });
    }

    [[nodiscard]] bool doIncludeJSON(void* value, JSONGetStream*, const VisitorContext&) override { return value != nullptr; }

    // The compact text of the object {key: field, ...}, written directly: it is the text a JSONNode
    // of the fields would stringify to (a test holds the two together), without building a node
    // per value, which costs more than the value itself; and into the stream's own text, without a
    // string per value.
    void doGetJSON(void* value, JSONGetStream* stream, const VisitorContext&) override
    {
        const T& typed = *static_cast<const T*>(value);
        const auto& keys = ValueCodec::jsonKeys<T>();
        std::string& text = stream->textToAppendTo();
        text += '{';
        forEachField(ValueTraits<T>::fields, [&](const auto& field, auto index) {
            if (index != 0)
                text += ',';
            text += keys[index];
            ValueCodec::appendJSON(text, typed.*field.pointer);
        });
        text += '}';
    }

    void doSetJSON(void* value, JSONSetStream* stream, const VisitorContext&) override
    {
        setValueFromJSON(*static_cast<T*>(value), stream, &readJSON);
    }

    // Reads all fields from a JSON object, stopping at the first key missing or of the wrong kind.
    [[nodiscard]] static bool readJSON(const JSONRef& json, T& value) { return ValueCodec::readFields(json, value); }

private:
    ValueDataModelCallback() : DataModelCallback(true) {}
};

// The callback class of T: the traits may name one (the geometry types do); otherwise the
// field-by-field callback.
template <class T>
struct CallbackOf {
    using type = ValueDataModelCallback<T>;
};
template <class T>
    requires requires { typename ValueTraits<T>::Callback; }
struct CallbackOf<T> {
    using type = typename ValueTraits<T>::Callback;
};

// Types of this library carry the data model's value header; the geometry kernel's types do not,
// and their meta types answer the header queries with the base behaviour (no helper, version 0).
template <class T>
inline constexpr bool hasValueHeader = std::is_base_of_v<Value, T>;

template <class T>
concept HasFields = requires { ValueTraits<T>::fields; };

// The meta type of value type T: one process-wide instance, made at library start-up.
template <class T>
class TValueMetaType final : public ValueMetaType {
public:
    using Traits = ValueTraits<T>;
    using Callback = typename CallbackOf<T>::type;

    [[nodiscard]] static TValueMetaType* get()
    {
        TValueMetaType* instance = c_pTheOnlyOne.load(std::memory_order_acquire);
        return instance != nullptr ? instance : init();
    }
    [[nodiscard]] static std::string s_metaTypeId() { return std::string(Traits::id); }

    // Constructs the single instance once (thread-safe); it lives until the library unloads.
    static TValueMetaType* init()
    {
        static TValueMetaType instance;
        c_pTheOnlyOne.store(&instance, std::memory_order_release);
        return &instance;
    }

protected:
    [[nodiscard]] std::size_t doSizeInBytes(const VisitorContext&) const override { return sizeof(T); }

    [[nodiscard]] void* doConstruct() override
    {
        T* value = new (std::nothrow) T();
        if (value != nullptr)
            ensureMembersOf(*value);
        return value;
    }

    void* doConstruct(void* memory, const VisitorContext&) override
    {
        ensureMembersOf(*new (memory) T());
        return memory;
    }

    void doDestruct(void* value) override { delete static_cast<T*>(value); }

    [[nodiscard]] std::wstring doToString(const void* value, const VisitorContext& context) const override
    {
        const T& typed = *static_cast<const T*>(value);
        if constexpr (requires { typed.toString(); })
            return typed.toString();
        else if constexpr (requires { Traits::toText(typed); })
            return Traits::toText(typed);
        else
            return ValueMetaType::doToString(value, context);
    }

    [[nodiscard]] const void* doQueryMTInterface(void* value) override
    {
        if constexpr (hasValueHeader<T>)
            return static_cast<T*>(value)->queryMTInterface(this);
        else
            return value;
    }
    [[nodiscard]] MigrationHelper* doCreateMigrationHelper(void* value, const VisitorContext&) override
    {
        if constexpr (hasValueHeader<T>)
            return static_cast<T*>(value)->createMigrationHelper();
        else
            return nullptr;
    }
    bool doDeleteMigrationHelper(void* value, const VisitorContext&) override
    {
        if constexpr (hasValueHeader<T>)
            return static_cast<T*>(value)->deleteMigrationHelper();
        else
            return false;
    }
    [[nodiscard]] MigrationHelper* doMigrationHelper(void* value) override
    {
        if constexpr (hasValueHeader<T>)
            return static_cast<T*>(value)->migrationHelper();
        else
            return nullptr;
    }
    void doMigratingVersion(void* value, unsigned version, const VisitorContext&) override
    {
        if constexpr (hasValueHeader<T>)
            static_cast<T*>(value)->migratingVersion(version);
    }
    [[nodiscard]] unsigned doMigratingVersion(void* value, const VisitorContext&) override
    {
        if constexpr (hasValueHeader<T>)
            return static_cast<T*>(value)->migratingVersion();
        else
            return 0;
    }
    EMigrationStatus onPostMigrate(void*, unsigned, const VisitorContext&) override { return eMigrationDone; }

    void onMigratingMemberSet(void* value, unsigned version, MemberSet* memberSet, const VisitorContext&) override
    {
        MemberSet::initialize(memberSet, value, std::string(Traits::name));
        declareMembersOf(*static_cast<T*>(value), version, memberSet);
    }

    void initializeMemberSet(unsigned version, MemberSet* memberSet) override
    {
        declareMembersOf(*static_cast<T*>(const_cast<void*>(memberSet->owner())), version, memberSet);
    }

    [[nodiscard]] bool doEquals(const void* first, const void* second) const override
    {
        const T& a = *static_cast<const T*>(first);
        const T& b = *static_cast<const T*>(second);
        if constexpr (requires { a == b; })
            return a == b;
        else
            return allFields(Traits::fields, [&](const auto& field, auto) { return a.*field.pointer == b.*field.pointer; });
    }
    void doCopy(void* target, const void* source) const override
    {
        *static_cast<T*>(target) = *static_cast<const T*>(source);
    }
    [[nodiscard]] bool doReadJSON(void* value, const JSONRef& json) const override
    {
        if constexpr (!Traits::hasCallback) {
            return ValueMetaType::doReadJSON(value, json);
        } else {
            T read = *static_cast<const T*>(value);
            if (!Callback::readJSON(json, read))
                return false;
            *static_cast<T*>(value) = read;
            return true;
        }
    }

public:
    // Declares the fields of `value` to the data model and attaches the type's callback.
    static void declareMembers(T& value, unsigned, MemberSet* memberSet)
    {
        if constexpr (HasFields<T>) {
            const auto& names = ValueCodec::keys<T>();
            forEachField(Traits::fields,
                [&](const auto& field, auto index) { addMember(memberSet, names[index].utf8(), value.*field.pointer); });
        }
        if constexpr (Traits::hasCallback)
            get()->dataModelCallback(Callback::get());
    }

    // Builds the member set at the first construction through the meta type, under its lock.
    static void ensureMemberSet(T& value)
    {
        MemberSet* memberSet = get()->memberSet(~0u);
        if (memberSet->isComplete())
            return;
        MemberSet::Mutex::scoped_lock lock(memberSet->mutex(), /*write=*/true);
        if (!memberSet->isInitialized()) {
            MemberSet::initialize(memberSet, &value, std::string(Traits::name));
            declareMembersOf(value, ~0u, memberSet);
        }
        memberSet->markComplete();
    }

private:
    // The library's value classes declare and build their member sets themselves (their private
    // initializeMemberSet and initializeMemberSetIfNeeded, which come back here); the kernel's
    // types, which have no value header, through the meta type alone.
    static void declareMembersOf(T& value, unsigned version, MemberSet* memberSet)
    {
        if constexpr (hasValueHeader<T>)
            value.initializeMemberSet(version, memberSet);
        else
            declareMembers(value, version, memberSet);
    }
    static void ensureMembersOf(T& value)
    {
        if constexpr (hasValueHeader<T>)
            value.initializeMemberSetIfNeeded();
        else
            ensureMemberSet(value);
    }

    TValueMetaType()
        : ValueMetaType(std::string(Traits::id), std::string(Traits::name) + "ValueMetaType", Traits::version,
              std::string(Traits::name), std::string())
    {
        if constexpr (Traits::hasCallback)
            directCodec({Callback::get(), &saveDirect, &loadDirect, hasDocumentHooks});
    }

    // A hook the callback does not declare itself is the data model's empty one.
    template <class Owner>
    static constexpr bool declaredBy(void (Owner::*)(void*, const VisitorContext&))
    {
        return !std::is_same_v<Owner, DataModelCallback>;
    }
    static constexpr bool hasDocumentHooks = declaredBy(&Callback::onPostAssetLoad)
        || declaredBy(&Callback::onPreCloneCopy) || declaredBy(&Callback::onPostClonePaste);

    // The type's own callback is a final class: its hooks are called without dispatch and the
    // empty ones vanish.
    static void saveDirect(DataModelCallback* callback, const void* value, IWriteStreamBase* stream,
        const VisitorContext& context)
    {
        auto* own = static_cast<Callback*>(callback);
        own->onPreSave(const_cast<void*>(value), context);
        own->onSave(value, stream, context);
        own->onPostSave(const_cast<void*>(value), context);
    }

    static void loadDirect(DataModelCallback* callback, void* value, unsigned version, const IReadStreamBase* stream,
        const VisitorContext& context)
    {
        auto* own = static_cast<Callback*>(callback);
        own->onPreLoad(value, context);
        own->onLoad(value, version, stream, context);
        own->onPostLoad(value, context);
    }

    static inline std::atomic<TValueMetaType*> c_pTheOnlyOne{nullptr};
};

template <class T>
ValueMetaType* ValueType<T>::s_metaType()
{
    return TValueMetaType<T>::get();
}

template <class T>
void ValueType<T>::initializeMemberSet(unsigned version, MemberSet* memberSet)
{
    TValueMetaType<T>::declareMembers(static_cast<T&>(*this), version, memberSet);
}

template <class T>
void ValueType<T>::initializeMemberSetIfNeeded()
{
    TValueMetaType<T>::ensureMemberSet(static_cast<T&>(*this));
}

// Makes the XML keys, the callback and the meta type of T, in that order, as the library starts.
template <class T>
void registerValueType()
{
    if constexpr (HasFields<T>)
        (void)ValueCodec::keys<T>();
    if constexpr (ValueTraits<T>::hasCallback)
        (void)CallbackOf<T>::type::get();
    TValueMetaType<T>::init();
}

} // namespace Kx
