#pragma once

#include <datamodel/Value.h>
#include <datamodel/ValueMetaType.h>

namespace Kx {

class MemberSet;
template <class T>
class TValueMetaType;

// Base of every value type of this library: gives the type its data-model identity. The meta type
// is generated from the type's ValueTraits (ValueMetaTypeT.h), where the members below are defined
// and, for the library's own types, instantiated.
template <class T>
class ValueType : public Value {
public:
    [[nodiscard]] static ValueMetaType* s_metaType();

    const void* queryMTInterface(const MetaType* metaType) const override
    {
        return metaType == static_cast<const MetaType*>(s_metaType()) ? this : nullptr;
    }

private:
    friend class TValueMetaType<T>;

    // Declares the fields to the data model and attaches the type's callback.
    void initializeMemberSet(unsigned version, MemberSet* memberSet);
    // Builds the member set on the first construction through the meta type, under its lock.
    void initializeMemberSetIfNeeded();
};

} // namespace Kx
