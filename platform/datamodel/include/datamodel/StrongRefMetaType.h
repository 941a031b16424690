#pragma once

#include <datamodel/MemberMetaType.h>
#include <datamodel/MemberSet.h>
#include <datamodel/StrongRef.h>

#include <string>
#include <type_traits>
#include <typeinfo>

namespace Kx {

// The meta type of StrongRef members: a reference is saved as the id of the entity it refers to.
// Binary: a u64 id, 0 for an empty reference. XML: an attribute of the owner's element, named
// after the member, holding the id in decimal. JSON: the id as a number, null when empty.
// Loading finds the entity through the context's resolver (the segment or document being read, or
// the cloning context of a paste, which maps the ids of copied entities to their copies). An id
// that names no entity, or an entity of another class, loads as an empty reference: a reference
// into a segment that was not saved (a transient one) ends this way, and damaged data must not
// produce a reference of the wrong type.
class StrongRefMetaTypeBase : public MemberMetaType {
public:
    [[nodiscard]] std::size_t sizeInBytes(const VisitorContext&) const override { return sizeof(StrongRefBase); }
    void save(const void* value, IWriteStreamBase* stream, const VisitorContext& context) const override;
    void load(void* value, unsigned version, const IReadStreamBase* stream, const VisitorContext& context) const override;
    [[nodiscard]] std::wstring toString(const void* value, const VisitorContext& context) const override;
    void getJSON(const void* value, JSONGetStream* stream, const VisitorContext& context) const override;
    // Resolves the id through the segment of the entity being set; an unknown id changes nothing.
    void setJSON(void* value, JSONSetStream* stream, const VisitorContext& context) const override;
    // Without a document to look in, only null (empty) and the id already held can be read.
    [[nodiscard]] bool readJSON(void* value, const JSONRef& json) const override;
    [[nodiscard]] bool equals(const void* first, const void* second) const override;
    void copy(void* target, const void* source) const override;
    [[nodiscard]] bool storedAsXmlAttribute() const noexcept override { return true; }
    void clearReferences(void* value) const override;
    [[nodiscard]] bool holdsReferences() const override { return true; }

    // Whether `entity` may be held by a reference of this type.
    [[nodiscard]] virtual bool accepts(Entity& entity) const = 0;

protected:
    // The identifier is "Kx.StrongRef<" followed by the referenced class's name and ">".
    explicit StrongRefMetaTypeBase(const std::type_info& referenced);

private:
    [[nodiscard]] Entity* resolve(EntityId id, const IEntityResolver* resolver) const;
    static void set(void* value, Entity* entity);
};

template <class T>
class StrongRefMetaType final : public StrongRefMetaTypeBase {
public:
    [[nodiscard]] static const StrongRefMetaType* get()
    {
        static const StrongRefMetaType instance;
        return &instance;
    }
    [[nodiscard]] bool accepts(Entity& entity) const override
    {
        if constexpr (std::is_same_v<T, Entity>)
            return true; // a reference to any entity (a component's definition)
        else
            return dynamic_cast<T*>(&entity) != nullptr;
    }

private:
    StrongRefMetaType() : StrongRefMetaTypeBase(typeid(T)) {}
};

// Declares a StrongRef field as member `name`.
template <class T>
void addMember(MemberSet* memberSet, const std::string& name, StrongRef<T>& field)
{
    memberSet->addNewMember(name, &field, typeid(StrongRef<T>).name(), StrongRefMetaType<T>::get());
}

} // namespace Kx
