#include "Types/GeLib/GeDataModelCallback.h"

namespace Kx {

TmGeLibVersion metaTypeVersionToGeLibVersion(unsigned storedVersion, unsigned currentVersion)
{
    return storedVersion < currentVersion ? TmGeLibVersion::kTmGeLibVersion3_0 : TmGeLibVersion::kTmGeLibVersion3_2;
}

void throwIfDamaged(Tmk::ErrorStatus status, const char* typeName)
{
    if (status == Tmk::ErrorStatus::eOk)
        return;
    throw Exception(L"The data is damaged: a geometry value cannot be read.",
        std::string(typeName) + ": kernel status " + std::to_string(static_cast<int>(status)));
}

void GeCurveVecCodec::save(const TmGeCurve3dVec& value, IWriteStreamBase* stream, const VisitorContext& context)
{
    KxGeFiler filer(stream, context);
    (void)filer.writeCurve3dVec(value.curves());
}

void GeCurveVecCodec::load(TmGeCurve3dVec& value, const TmGeLibVersion&, const IReadStreamBase* stream,
    const VisitorContext& context)
{
    KxGeFiler filer(stream, context);
    std::vector<TmGeCurve3d*> curves;
    const Tmk::ErrorStatus status = filer.readCurve3dVec(&curves);
    TmGeCurve3dVec read;
    read.adopt(curves);
    throwIfDamaged(status, "TmGeCurve3dVec");
    value = std::move(read);
}

} // namespace Kx
