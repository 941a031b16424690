#pragma once

#include <geometry/TmGeLibVersion.h>
#include <geometry/TmkErrorStatus.h>

#include <cstdint>
#include <memory>

class TmGeFiler;
class TmGePoint2d;
class TmGePoint3d;
class TmGeVector2d;
class TmGeVector3d;
class TmGeMatrix2d;
class TmGeMatrix3d;
class TmGeLine3d;
class TmGeLineSeg3d;
class TmGePlane;
class TmGeBoundedPlane;
class TmGeCircArc2d;
class TmGeCircArc3d;
class TmGeEllipArc2d;
class TmGeEllipArc3d;
class TmGeNurbCurve2d;
class TmGeNurbCurve3d;
class TmGePolyline3d;
class TmGeCurve2d;
class TmGeCurve3d;
class TmGeCurve3dVec;

// Field-by-field persistence of the kernel's classes through a TmGeFiler, in the layout of the
// given kernel version (docs/geometry-fields.md lists each layout).
//
// Every call returns the first failure of the filer, eNullFiler for a null filer, or
// eUnsupportedVersion for a version outside TmGeLibVersion::isSupported() (checked before
// anything is read or written). inFields reads into temporaries and assigns the value only when
// everything was read and the data describe a valid object (eCorruptData otherwise), so a failed
// read leaves the value as it was. Counts above kMaxCount are refused as corrupt before anything
// is allocated; outFields refuses (eInvalidInput) a list that long before writing its count.
class TmGeFileIO {
public:
    static constexpr std::uint32_t kMaxCount = 1u << 24;

    static Tmk::ErrorStatus outFields(TmGeFiler* filer, const TmGePoint2d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus outFields(TmGeFiler* filer, const TmGePoint3d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus outFields(TmGeFiler* filer, const TmGeVector2d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus outFields(TmGeFiler* filer, const TmGeVector3d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus outFields(TmGeFiler* filer, const TmGeMatrix2d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus outFields(TmGeFiler* filer, const TmGeMatrix3d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus outFields(TmGeFiler* filer, const TmGeLine3d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus outFields(TmGeFiler* filer, const TmGeLineSeg3d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus outFields(TmGeFiler* filer, const TmGePlane& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus outFields(TmGeFiler* filer, const TmGeBoundedPlane& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus outFields(TmGeFiler* filer, const TmGeCircArc2d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus outFields(TmGeFiler* filer, const TmGeCircArc3d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus outFields(TmGeFiler* filer, const TmGeEllipArc2d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus outFields(TmGeFiler* filer, const TmGeEllipArc3d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus outFields(TmGeFiler* filer, const TmGeNurbCurve2d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus outFields(TmGeFiler* filer, const TmGeNurbCurve3d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus outFields(TmGeFiler* filer, const TmGePolyline3d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus outFields(TmGeFiler* filer, const TmGeCurve3dVec& value, const TmGeLibVersion& version = {});

    static Tmk::ErrorStatus inFields(TmGeFiler* filer, TmGePoint2d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus inFields(TmGeFiler* filer, TmGePoint3d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus inFields(TmGeFiler* filer, TmGeVector2d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus inFields(TmGeFiler* filer, TmGeVector3d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus inFields(TmGeFiler* filer, TmGeMatrix2d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus inFields(TmGeFiler* filer, TmGeMatrix3d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus inFields(TmGeFiler* filer, TmGeLine3d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus inFields(TmGeFiler* filer, TmGeLineSeg3d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus inFields(TmGeFiler* filer, TmGePlane& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus inFields(TmGeFiler* filer, TmGeBoundedPlane& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus inFields(TmGeFiler* filer, TmGeCircArc2d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus inFields(TmGeFiler* filer, TmGeCircArc3d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus inFields(TmGeFiler* filer, TmGeEllipArc2d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus inFields(TmGeFiler* filer, TmGeEllipArc3d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus inFields(TmGeFiler* filer, TmGeNurbCurve2d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus inFields(TmGeFiler* filer, TmGeNurbCurve3d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus inFields(TmGeFiler* filer, TmGePolyline3d& value, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus inFields(TmGeFiler* filer, TmGeCurve3dVec& value, const TmGeLibVersion& version = {});

    // A curve of any kind behind its base class: its Tmk::EEntityKind as a UShort tag, then the
    // fields of that kind. inCurve replaces `curve` only on success; an unknown tag is eCorruptData.
    static Tmk::ErrorStatus outCurve3d(TmGeFiler* filer, const TmGeCurve3d& curve, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus inCurve3d(TmGeFiler* filer, std::unique_ptr<TmGeCurve3d>& curve, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus outCurve2d(TmGeFiler* filer, const TmGeCurve2d& curve, const TmGeLibVersion& version = {});
    static Tmk::ErrorStatus inCurve2d(TmGeFiler* filer, std::unique_ptr<TmGeCurve2d>& curve, const TmGeLibVersion& version = {});
};
