#include <base/V8JavaScriptFunctionWrapper.h>

#include <algorithm>
#include <mutex>

namespace Kx {

namespace {
std::mutex s_mutex;
std::vector<V8JavaScriptFunctionWrapper::Function>& table()
{
    static std::vector<V8JavaScriptFunctionWrapper::Function> s_functions;
    return s_functions;
}
} // namespace

bool V8JavaScriptFunctionWrapper::registerFunction(std::string scriptNamespace, std::string name, std::wstring command, std::string argumentFormat)
{
    const std::lock_guard lock(s_mutex);
    auto& functions = table();
    if (std::any_of(functions.begin(), functions.end(),
            [&](const Function& f) { return f.scriptNamespace == scriptNamespace && f.name == name; }))
        return false;
    functions.push_back({std::move(scriptNamespace), std::move(name), std::move(command), std::move(argumentFormat)});
    return true;
}

std::vector<V8JavaScriptFunctionWrapper::Function> V8JavaScriptFunctionWrapper::functions()
{
    const std::lock_guard lock(s_mutex);
    return table();
}

std::vector<std::string> V8JavaScriptFunctionWrapper::namespaces()
{
    std::vector<std::string> names{"trvGeometry", "trvModeling"};
    for (const Function& f : functions())
        if (std::find(names.begin(), names.end(), f.scriptNamespace) == names.end())
            names.push_back(f.scriptNamespace);
    return names;
}

} // namespace Kx
