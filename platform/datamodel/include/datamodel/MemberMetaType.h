#pragma once

#include <datamodel/MetaType.h>

#include <cstddef>
#include <string>

namespace Kx {

class IReadStreamBase;
class IWriteStreamBase;
class JSONGetStream;
class JSONRef;
class JSONSetStream;
class ValueMetaType;
class VisitorContext;

// A type that can be a member of an entity or of a value: the data model saves, loads, prints,
// compares, copies and converts members through this interface without knowing their C++ type.
class MemberMetaType : public MetaType {
public:
    using MetaType::MetaType;

    [[nodiscard]] virtual std::size_t sizeInBytes(const VisitorContext& context) const = 0;
    virtual void save(const void* value, IWriteStreamBase* stream, const VisitorContext& context) const = 0;
    // Throws Kx::Exception when the stream holds less than the value needs.
    virtual void load(void* value, unsigned version, const IReadStreamBase* stream, const VisitorContext& context) const = 0;
    [[nodiscard]] virtual std::wstring toString(const void* value, const VisitorContext& context) const = 0;
    // Whether the value takes part in its owner's JSON (types without a JSON form do not).
    [[nodiscard]] virtual bool includedInJSON(const void* value, const VisitorContext& context) const { return true; }
    // Appends the JSON text of the value.
    virtual void getJSON(const void* value, JSONGetStream* stream, const VisitorContext& context) const = 0;
    // Sets the value from the stream's current JSON, recording a change when it differs.
    virtual void setJSON(void* value, JSONSetStream* stream, const VisitorContext& context) const = 0;
    // Reads a complete value from JSON into `value`; on false `value` is unchanged.
    [[nodiscard]] virtual bool readJSON(void* value, const JSONRef& json) const = 0;
    [[nodiscard]] virtual bool equals(const void* first, const void* second) const = 0;
    virtual void copy(void* target, const void* source) const = 0;
    // Scalars are stored as attributes of their owner's XML element; values get an element each.
    [[nodiscard]] virtual bool storedAsXmlAttribute() const noexcept = 0;
    // The value meta type behind this one, or null for scalars and references: the data model
    // walks values (for their lifecycle hooks) without asking the run-time type of every member.
    [[nodiscard]] virtual const ValueMetaType* asValueMetaType() const noexcept { return nullptr; }
    // Drops the references the member holds on entities. A closing document calls it on every
    // member first, so entities that refer to each other do not keep each other alive.
    virtual void clearReferences(void* value) const {}
    // Whether a value of the type may hold references that clearReferences would drop.
    [[nodiscard]] virtual bool holdsReferences() const { return false; }
};

} // namespace Kx
