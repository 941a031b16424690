#pragma once
// An embedded JavaScript engine (ECMAScript 5.1) with the script functions of
// V8JavaScriptFunctionWrapper installed in their namespaces, and print() writing to a stream.
//
// Script functions take each argument as a JS value: objects and arrays are passed to the command
// as their JSON text, strings as they are, numbers with 17 significant digits, booleans as 1 or 0.
// A result that is JSON text comes back as the JS value it denotes (a number, an object, an
// array); a command's failure is thrown as an Error carrying the command's message.
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

namespace Kx {

class JavaScriptEngine {
public:
    struct Result {
        bool ok = true;
        // The value of the last statement as text, or "<file>:<line>: <message>" for an error.
        std::string text;
    };

    explicit JavaScriptEngine(std::ostream& printTo);
    ~JavaScriptEngine();
    JavaScriptEngine(const JavaScriptEngine&) = delete;
    JavaScriptEngine& operator=(const JavaScriptEngine&) = delete;

    // Runs a script; `fileName` names it in error messages. Values and functions a script defines
    // stay for the next one.
    [[nodiscard]] Result evaluate(std::string_view source, std::string_view fileName);

    // The engine's state, reached by the native functions through the engine's allocator data.
    struct Context;

private:
    std::unique_ptr<Context> m_context;
};

} // namespace Kx
