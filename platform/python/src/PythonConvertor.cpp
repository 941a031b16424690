#include <python/PythonConvertor.h>

#include <base/Assert.h>

#include <algorithm>
#include <mutex>

namespace Kx {

namespace {

std::mutex s_mutex;

std::vector<const PythonConvertor*>& registered()
{
    static std::vector<const PythonConvertor*> s_convertors;
    return s_convertors;
}

} // namespace

PythonConvertor::PythonConvertor(std::string typeCode)
    : m_typeCode(std::move(typeCode))
{
    const std::lock_guard lock(s_mutex);
    auto& convertors = registered();
    const bool unique = std::none_of(convertors.begin(), convertors.end(),
        [&](const PythonConvertor* c) { return c->typeCode() == m_typeCode; });
    KX_ASSERT(unique);
    convertors.push_back(this);
}

PythonConvertor::~PythonConvertor()
{
    const std::lock_guard lock(s_mutex);
    auto& convertors = registered();
    convertors.erase(std::remove(convertors.begin(), convertors.end(), this), convertors.end());
}

const PythonConvertor* PythonConvertor::find(std::string_view typeCode)
{
    const std::lock_guard lock(s_mutex);
    // The first registered wins, so that a second convertor of a code cannot take over the first's.
    for (const PythonConvertor* convertor : registered())
        if (convertor->typeCode() == typeCode)
            return convertor;
    return nullptr;
}

std::vector<std::string> PythonConvertor::typeCodes()
{
    const std::lock_guard lock(s_mutex);
    std::vector<std::string> codes;
    for (const PythonConvertor* convertor : registered())
        codes.push_back(convertor->typeCode());
    return codes;
}

} // namespace Kx
