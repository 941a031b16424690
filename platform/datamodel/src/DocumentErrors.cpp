#include "internal/DocumentErrors.h"

namespace Kx::DocumentErrors {

Exception corrupt(std::string detail)
{
    return Exception(L"The file you are trying to open is corrupt! The current operation will be aborted!", std::move(detail));
}

Exception tooNew(std::string detail)
{
    return Exception(L"The document was written by a newer version of the application and cannot be opened.", std::move(detail));
}

Exception unknownType(std::string detail)
{
    return Exception(L"The document contains objects this application does not know and cannot be opened.", std::move(detail));
}

Exception cannotOpen(std::string detail)
{
    return Exception(L"The document cannot be opened: the file does not exist or cannot be read.", std::move(detail));
}

namespace {

constexpr const wchar_t* s_saveFailed = L"The document could not be saved.";

} // namespace

Exception saveFailed(std::string detail)
{
    return Exception(s_saveFailed, std::move(detail));
}

Exception saveFailed(const Exception& failure, bool previousFileKept)
{
    if (!previousFileKept || failure.userText() != s_saveFailed)
        return failure;
    return Exception(std::wstring(s_saveFailed) + L" The previous version of the file is unchanged.", failure.detail());
}

} // namespace Kx::DocumentErrors
