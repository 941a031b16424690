#pragma once

// The callback shared by the geometry kernel's types: binary and XML through KxGeFiler and the
// kernel's own field layouts, JSON through the Kx::Types conversions where a type has a JSON form.
// Each type's ValueTraits names its codec (how its fields reach the filer) and, when it has one,
// its JSON conversions (toJSON/fromJSON).

#include <Types/GeLib/KxGeFiler.h>
#include <Types/Geometry/ValueMetaTypeT.h>

#include <base/Exception.h>
#include <base/Strings.h>

#include <geometry/TmGeFileIO.h>
#include <geometry/TmGeCurve3dVec.h>
#include <geometry/TmGeLibVersion.h>

#include <string>
#include <vector>

namespace Kx {

// The kernel layout a stored meta type version was written in. Values are always written in the
// 3.2 layout, whatever the meta type's version; a version older than the type's current one
// predates it and was written in the 3.0 layout.
[[nodiscard]] TmGeLibVersion metaTypeVersionToGeLibVersion(unsigned storedVersion, unsigned currentVersion);

// Turns a failed kernel read into the loading error of the data model.
void throwIfDamaged(Tmk::ErrorStatus status, const char* typeName);

// A type whose fields TmGeFileIO writes and reads.
template <class T>
struct GeFilerCodec {
    static void save(const T& value, IWriteStreamBase* stream, const VisitorContext& context)
    {
        KxGeFiler filer(stream, context);
        (void)TmGeFileIO::outFields(&filer, value, TmGeLibVersion::kTmGeLibVersion3_2);
    }
    static void load(T& value, const TmGeLibVersion& layout, const IReadStreamBase* stream, const VisitorContext& context)
    {
        KxGeFiler filer(stream, context);
        throwIfDamaged(TmGeFileIO::inFields(&filer, value, layout), ValueTraits<T>::name.data());
    }
};

// A curve list through the filer's own list operations: the count, then each curve with its kind.
struct GeCurveListCodec {
    static void save(const TmGeCurve3dVec& value, IWriteStreamBase* stream, const VisitorContext& context)
    {
        KxGeFiler filer(stream, context);
        (void)filer.writeCurve3dVec(value.curves());
    }
    static void load(TmGeCurve3dVec& value, const TmGeLibVersion& layout, const IReadStreamBase* stream,
        const VisitorContext& context)
    {
        KxGeFiler filer(stream, context, layout);
        std::vector<TmGeCurve3d*> curves;
        throwIfDamaged(filer.readCurve3dVec(&curves), "TmGeCurve3dVec");
        value.clear();
        value.adopt(curves);
    }
};

// A matrix: the key "Identity" first (a flag in binary, an attribute of the member's element in
// XML); the entries follow only when the matrix is not the identity.
template <class T>
struct GeMatrixCodec {
    static void save(const T& value, IWriteStreamBase* stream, const VisitorContext& context)
    {
        const bool identity = value.isIdentity();
        if (BinaryWriteStream* binary = asBinary(stream)) {
            binary->write(identity);
        } else {
            XMLNode node = XmlBulkStream::nodeFromVisitorContext(stream, context);
            node["Identity"] = identity;
        }
        if (!identity)
            GeFilerCodec<T>::save(value, stream, context);
    }
    static void load(T& value, const TmGeLibVersion& layout, const IReadStreamBase* stream, const VisitorContext& context)
    {
        bool identity = false;
        if (const BinaryReadStream* binary = asBinary(stream)) {
            binary->read(identity);
        } else {
            XMLNode node = XmlBulkStream::nodeFromVisitorContext(stream, context);
            identity = node["Identity"].asBool();
        }
        if (identity)
            value = T::kIdentity;
        else
            GeFilerCodec<T>::load(value, layout, stream, context);
    }
};

template <class T>
concept HasJSONForm = requires(const T& value, T& out, JSONNode& node) {
    ValueTraits<T>::toJSON(value, node, nullptr);
    ValueTraits<T>::fromJSON(node, out, nullptr);
};

template <class T>
class GeDataModelCallback final : public DataModelCallback {
public:
    using Traits = ValueTraits<T>;

    [[nodiscard]] static GeDataModelCallback* get()
    {
        static GeDataModelCallback instance;
        return &instance;
    }

    void onSave(const void* value, IWriteStreamBase* stream, const VisitorContext& context) override
    {
        Traits::Codec::save(*static_cast<const T*>(value), stream, context);
    }

    void onLoad(void* value, unsigned version, const IReadStreamBase* stream, const VisitorContext& context) override
    {
        Traits::Codec::load(*static_cast<T*>(value), metaTypeVersionToGeLibVersion(version, Traits::version), stream,
            context);
    }

    // Types without a JSON form (NURBS curves, polylines, bounded planes, curve lists) are left
    // out of an entity's JSON.
    [[nodiscard]] bool doIncludeJSON(void* value, JSONGetStream*, const VisitorContext&) override
    {
        return value != nullptr && HasJSONForm<T>;
    }

    void doGetJSON(void* value, JSONGetStream* stream, const VisitorContext&) override
    {
        if constexpr (HasJSONForm<T>) {
            JSONNode node;
            Traits::toJSON(*static_cast<const T*>(value), node, nullptr);
            stream->addText(node.stringify(false));
        }
    }

    void doSetJSON(void* value, JSONSetStream* stream, const VisitorContext&) override
    {
        setValueFromJSON(*static_cast<T*>(value), stream, &readJSON);
    }

    [[nodiscard]] static bool readJSON(const JSONRef& json, T& value)
    {
        if constexpr (HasJSONForm<T>) {
            if (!json.exists())
                return false;
            const JSONNode node = JSONNode::fromValue(*json.raw());
            return Traits::fromJSON(node, value, nullptr);
        } else {
            return false;
        }
    }

private:
    GeDataModelCallback() : DataModelCallback(HasJSONForm<T>) {}
};

} // namespace Kx
