#pragma once

// The geometry kernel's types as data-model values, each described once: name, identifier, version
// and how its fields reach the streams. Points and vectors are plain fields (binary doubles, XML
// attributes "x", "y", "z", the JSON object of the same keys); matrices carry an "Identity" key;
// every other type goes through the kernel's own field layouts (KxGeFiler). JSON and text forms
// are the Kx::Types conversions; NURBS curves, polylines, bounded planes and curve lists have no
// JSON form and travel only through the streams.

#include <Types/GeLib/GeDataModelCallback.h>
#include <Types/GeLib/GeJSONCurves.h>
#include <Types/GeLib/GeJSONMatrices.h>
#include <Types/GeLib/GeJSONPlane.h>
#include <Types/GeLib/GeText.h>

#include <geometry/TmGe.h>

#include <string_view>
#include <tuple>

namespace Kx {

template <>
struct ValueTraits<TmGePoint2d> {
    static constexpr std::string_view name = "TmGePoint2d";
    static constexpr std::string_view id = "C9898782-7161-4519-8F36-6F7C317AEA29";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = true;
    static constexpr auto fields = std::tuple{field(L"x", &TmGePoint2d::x), field(L"y", &TmGePoint2d::y)};
    static constexpr auto toText = &Types::Point2dToString;
};

template <>
struct ValueTraits<TmGePoint3d> {
    static constexpr std::string_view name = "TmGePoint3d";
    static constexpr std::string_view id = "8EB02C29-F2C0-477A-8FAF-1B764DCFA9E8";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = true;
    static constexpr auto fields = std::tuple{field(L"x", &TmGePoint3d::x), field(L"y", &TmGePoint3d::y), field(L"z", &TmGePoint3d::z)};
    static constexpr auto toText = &Types::Point3dToString;
};

template <>
struct ValueTraits<TmGeVector2d> {
    static constexpr std::string_view name = "TmGeVector2d";
    static constexpr std::string_view id = "654CD68C-DA9A-4900-8491-112456F288DF";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = true;
    static constexpr auto fields = std::tuple{field(L"x", &TmGeVector2d::x), field(L"y", &TmGeVector2d::y)};
    static constexpr auto toText = &Types::Vector2dToString;
};

template <>
struct ValueTraits<TmGeVector3d> {
    static constexpr std::string_view name = "TmGeVector3d";
    static constexpr std::string_view id = "B728301A-AB43-43A5-A612-8A1F6D5014E4";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = true;
    static constexpr auto fields = std::tuple{field(L"x", &TmGeVector3d::x), field(L"y", &TmGeVector3d::y), field(L"z", &TmGeVector3d::z)};
    static constexpr auto toText = &Types::Vector3dToString;
};

template <>
struct ValueTraits<TmGeMatrix2d> {
    static constexpr std::string_view name = "TmGeMatrix2d";
    static constexpr std::string_view id = "DCA70779-B008-42A6-A85F-9C5E70D2AFA5";
    static constexpr unsigned version = 1;
    static constexpr bool hasCallback = true;
    using Callback = GeDataModelCallback<TmGeMatrix2d>;
    using Codec = GeMatrixCodec<TmGeMatrix2d>;
    static constexpr auto toJSON = &Types::Matrix2dToJSON;
    static constexpr auto fromJSON = &Types::JSONToMatrix2d;
};

template <>
struct ValueTraits<TmGeMatrix3d> {
    static constexpr std::string_view name = "TmGeMatrix3d";
    static constexpr std::string_view id = "FCFA11CB-9D87-41D6-9FD8-92E23427386D";
    static constexpr unsigned version = 1;
    static constexpr bool hasCallback = true;
    using Callback = GeDataModelCallback<TmGeMatrix3d>;
    using Codec = GeMatrixCodec<TmGeMatrix3d>;
    static constexpr auto toJSON = &Types::Matrix3dToJSON;
    static constexpr auto fromJSON = &Types::JSONToMatrix3d;
    static constexpr auto toText = &Types::Matrix3dToString;
};

template <>
struct ValueTraits<TmGeLine3d> {
    static constexpr std::string_view name = "TmGeLine3d";
    static constexpr std::string_view id = "5852F708-9AA6-47F7-BD5A-2A5A6B56B327";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = true;
    using Callback = GeDataModelCallback<TmGeLine3d>;
    using Codec = GeFilerCodec<TmGeLine3d>;
    static constexpr auto toJSON = &Types::Line3dToJSON;
    static constexpr auto fromJSON = &Types::JSONToLine3d;
};

template <>
struct ValueTraits<TmGeLineSeg3d> {
    static constexpr std::string_view name = "TmGeLineSeg3d";
    static constexpr std::string_view id = "0F97B226-5384-46FD-8A4D-FE418E735F8E";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = true;
    using Callback = GeDataModelCallback<TmGeLineSeg3d>;
    using Codec = GeFilerCodec<TmGeLineSeg3d>;
    static constexpr auto toJSON = &Types::LineSeg3dToJSON;
    static constexpr auto fromJSON = &Types::JSONToLineSeg3d;
};

template <>
struct ValueTraits<TmGePlane> {
    static constexpr std::string_view name = "TmGePlane";
    static constexpr std::string_view id = "45BC3A57-B585-4245-A04C-130090F875CA";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = true;
    using Callback = GeDataModelCallback<TmGePlane>;
    using Codec = GeFilerCodec<TmGePlane>;
    static constexpr auto toJSON = &Types::PlaneToJSON;
    static constexpr auto fromJSON = &Types::JSONToPlane;
};

template <>
struct ValueTraits<TmGeBoundedPlane> {
    static constexpr std::string_view name = "TmGeBoundedPlane";
    static constexpr std::string_view id = "41E0A992-93D8-42E3-8DD5-E6331E93449D";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = true;
    using Callback = GeDataModelCallback<TmGeBoundedPlane>;
    using Codec = GeFilerCodec<TmGeBoundedPlane>;
};

template <>
struct ValueTraits<TmGeCircArc2d> {
    static constexpr std::string_view name = "TmGeCircArc2d";
    static constexpr std::string_view id = "DA2F321B-05A4-4B17-8784-DC60D1120305";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = true;
    using Callback = GeDataModelCallback<TmGeCircArc2d>;
    using Codec = GeFilerCodec<TmGeCircArc2d>;
    static constexpr auto toJSON = &Types::CircArc2dToJSON;
    static constexpr auto fromJSON = &Types::JSONToCircArc2d;
};

template <>
struct ValueTraits<TmGeCircArc3d> {
    static constexpr std::string_view name = "TmGeCircArc3d";
    static constexpr std::string_view id = "AFA00E8E-2FE6-4C9E-A494-4131BE3BF8A4";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = true;
    using Callback = GeDataModelCallback<TmGeCircArc3d>;
    using Codec = GeFilerCodec<TmGeCircArc3d>;
    static constexpr auto toJSON = &Types::CircArc3dToJSON;
    static constexpr auto fromJSON = &Types::JSONToCircArc3d;
};

template <>
struct ValueTraits<TmGeEllipArc2d> {
    static constexpr std::string_view name = "TmGeEllipArc2d";
    static constexpr std::string_view id = "BAF259EA-282D-4248-825F-19A9109A5739";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = true;
    using Callback = GeDataModelCallback<TmGeEllipArc2d>;
    using Codec = GeFilerCodec<TmGeEllipArc2d>;
    static constexpr auto toJSON = &Types::EllipArc2dToJSON;
    static constexpr auto fromJSON = &Types::JSONToEllipArc2d;
};

template <>
struct ValueTraits<TmGeEllipArc3d> {
    static constexpr std::string_view name = "TmGeEllipArc3d";
    static constexpr std::string_view id = "AD96048D-3F96-4C03-A8AA-D7639F672447";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = true;
    using Callback = GeDataModelCallback<TmGeEllipArc3d>;
    using Codec = GeFilerCodec<TmGeEllipArc3d>;
    static constexpr auto toJSON = &Types::EllipArc3dToJSON;
    static constexpr auto fromJSON = &Types::JSONToEllipArc3d;
};

template <>
struct ValueTraits<TmGeNurbCurve2d> {
    static constexpr std::string_view name = "TmGeNurbCurve2d";
    static constexpr std::string_view id = "84ECEFC9-39E6-46DC-AEF6-1CB7795E83E1";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = true;
    using Callback = GeDataModelCallback<TmGeNurbCurve2d>;
    using Codec = GeFilerCodec<TmGeNurbCurve2d>;
};

template <>
struct ValueTraits<TmGeNurbCurve3d> {
    static constexpr std::string_view name = "TmGeNurbCurve3d";
    static constexpr std::string_view id = "CA4D1989-5940-421E-9472-6EC13C9655A9";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = true;
    using Callback = GeDataModelCallback<TmGeNurbCurve3d>;
    using Codec = GeFilerCodec<TmGeNurbCurve3d>;
};

template <>
struct ValueTraits<TmGePolyline3d> {
    static constexpr std::string_view name = "TmGePolyline3d";
    static constexpr std::string_view id = "12CB28AE-C804-468D-AB79-27F530E76351";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = true;
    using Callback = GeDataModelCallback<TmGePolyline3d>;
    using Codec = GeFilerCodec<TmGePolyline3d>;
};

template <>
struct ValueTraits<TmGeCurve3dVec> {
    static constexpr std::string_view name = "TmGeCurve3dVec";
    static constexpr std::string_view id = "2F0A00F3-7621-46CB-81FB-6F9582AE22DB";
    static constexpr unsigned version = 0;
    static constexpr bool hasCallback = true;
    using Callback = GeDataModelCallback<TmGeCurve3dVec>;
    using Codec = GeCurveListCodec;
};

} // namespace Kx
