#pragma once
// The registration of text commands as script functions: a command registered here is callable
// from every JavaScript engine made afterwards as <namespace>.<function>(arguments...), and runs
// the same text command as the console. The platform's namespaces are "trvGeometry" (geometry and
// matrices) and "trvModeling" (materials); both exist in every engine, even while empty.
#include <string>
#include <string_view>
#include <vector>

namespace Kx {

class V8JavaScriptFunctionWrapper {
public:
    struct Function {
        std::string scriptNamespace;
        std::string name;
        std::wstring command; // the text command's full name
        // One entry per argument: %j a JSON value (an object, array or JSON text), %f a number.
        std::string argumentFormat;
    };

    // False when the namespace already has a function of that name.
    static bool registerFunction(std::string scriptNamespace, std::string name, std::wstring command, std::string argumentFormat);
    [[nodiscard]] static std::vector<Function> functions();
    [[nodiscard]] static std::vector<std::string> namespaces();
};

} // namespace Kx
