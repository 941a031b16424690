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

} // namespace Kx
