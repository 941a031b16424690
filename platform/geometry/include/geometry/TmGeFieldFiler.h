#pragma once

#include <geometry/TmGeFiler.h>

#include <cstdint>

// Every typed field of TmGeFiler, raw bytes aside: X(name, read parameter, write parameter).
#define TMGE_FILER_FIELDS(X)                                              \
    X(Bool, bool*, bool)                                                  \
    X(Boolean, Tmk::Boolean*, Tmk::Boolean)                               \
    X(Char, char*, char)                                                  \
    X(Short, std::int16_t*, std::int16_t)                                 \
    X(Long, std::int32_t*, std::int32_t)                                  \
    X(UChar, std::uint8_t*, std::uint8_t)                                 \
    X(UShort, std::uint16_t*, std::uint16_t)                              \
    X(ULong, std::uint32_t*, std::uint32_t)                               \
    X(Double, double*, double)                                            \
    X(Point2d, TmGePoint2d*, const TmGePoint2d&)                          \
    X(Point3d, TmGePoint3d*, const TmGePoint3d&)                          \
    X(Vector2d, TmGeVector2d*, const TmGeVector2d&)                       \
    X(Vector3d, TmGeVector3d*, const TmGeVector3d&)

// The fields, in the order of the list above.
enum class TmGeField : std::uint8_t {
#define TMGE_FIELD_ENUMERATOR(Name, ReadParameter, WriteParameter) e##Name,
    TMGE_FILER_FIELDS(TMGE_FIELD_ENUMERATOR)
#undef TMGE_FIELD_ENUMERATOR
};

// A TmGeFiler whose typed fields all go through two member templates of the host, told which
// field it is (Boolean and Long share a C++ type, so the type alone does not say):
//   template <TmGeField field, class T> Tmk::ErrorStatus readField(T* value);
//   template <TmGeField field, class T> Tmk::ErrorStatus writeField(const T& value);
// The host still implements readBytes and writeBytes itself. The members are defined in
// TmGeFieldFilerImpl.h, which the host's source includes to instantiate TmGeFieldFiler<Host> once.
template <class Host>
class TmGeFieldFiler : public TmGeFiler {
public:
#define TMGE_FIELD_DECLARATIONS(Name, ReadParameter, WriteParameter) \
    Tmk::ErrorStatus read##Name(ReadParameter value) override;      \
    Tmk::ErrorStatus write##Name(WriteParameter value) override;
    TMGE_FILER_FIELDS(TMGE_FIELD_DECLARATIONS)
#undef TMGE_FIELD_DECLARATIONS

protected:
    TmGeFieldFiler() = default;
};
