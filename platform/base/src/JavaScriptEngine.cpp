#include <base/JavaScriptEngine.h>

#include <base/TextCommandRegistry.h>
#include <base/V8JavaScriptFunctionWrapper.h>

#include <core/Strings.h>

#include <duktape.h>

#include <cstdio>
#include <ostream>
#include <vector>

namespace Kx {

using telvarin::platform::core::toUTF8;
using telvarin::platform::core::toWide;

struct JavaScriptEngine::Context {
    duk_context* duk = nullptr;
    std::ostream* out = nullptr;
    std::vector<V8JavaScriptFunctionWrapper::Function> functions;
};

namespace {

JavaScriptEngine::Context& contextOf(duk_context* duk)
{
    duk_memory_functions memory;
    duk_get_memory_functions(duk, &memory);
    return *static_cast<JavaScriptEngine::Context*>(memory.udata);
}

std::wstring argumentText(duk_context* duk, duk_idx_t index)
{
    if (duk_is_string(duk, index))
        return toWide(duk_get_string(duk, index));
    if (duk_is_number(duk, index)) {
        char text[32];
        std::snprintf(text, sizeof text, "%.17g", duk_get_number(duk, index));
        return toWide(text);
    }
    if (duk_is_boolean(duk, index))
        return duk_get_boolean(duk, index) ? L"1" : L"0";
    duk_dup(duk, index);
    const char* json = duk_json_encode(duk, -1);
    std::wstring text = json ? toWide(json) : std::wstring();
    duk_pop(duk);
    return text;
}

duk_ret_t decodeJSON(duk_context* duk, void*)
{
    duk_json_decode(duk, -1);
    return 1;
}

// The place of the script code that called the running native function, so that a command's
// failure is reported where the script called it rather than inside the engine.
void blameCaller(duk_context* duk)
{
    duk_inspect_callstack_entry(duk, -2);
    if (duk_is_object(duk, -1)) {
        duk_get_prop_string(duk, -1, "lineNumber");
        const duk_int_t line = duk_get_int(duk, -1);
        duk_pop(duk);
        duk_get_prop_string(duk, -1, "function");
        duk_get_prop_string(duk, -1, "fileName");
        duk_dup(duk, -1);
        duk_put_prop_string(duk, -5, "fileName");
        duk_pop_2(duk);
        duk_push_int(duk, line);
        duk_put_prop_string(duk, -3, "lineNumber");
    }
    duk_pop(duk);
}

// Runs the script function's command and leaves its answer on the stack: a value, or an error
// object to throw (answers false). Every C++ object of the call lives only in here, because
// duk_throw leaves by longjmp and would skip their destructors.
bool runCommand(duk_context* duk)
{
    duk_push_current_function(duk);
    duk_get_prop_string(duk, -1, DUK_HIDDEN_SYMBOL("index"));
    const auto index = static_cast<std::size_t>(duk_get_uint(duk, -1));
    duk_pop_2(duk);
    const V8JavaScriptFunctionWrapper::Function& function = contextOf(duk).functions.at(index);

    std::vector<std::wstring> parameters;
    const duk_idx_t count = duk_get_top(duk);
    for (duk_idx_t i = 0; i < count && !duk_is_null_or_undefined(duk, i); ++i)
        parameters.push_back(argumentText(duk, i));
    const TextCommandOutcome outcome = TextCommandRegistry::instance().run(function.command, TextCommandParameters(std::move(parameters), {}));
    const std::string text = toUTF8(outcome.text);
    if (!outcome.ok()) {
        duk_push_error_object(duk, DUK_ERR_ERROR, "%s", text.c_str());
        blameCaller(duk);
        return false;
    }
    duk_push_lstring(duk, text.data(), text.size());
    if (duk_safe_call(duk, decodeJSON, nullptr, 1, 1) != DUK_EXEC_SUCCESS) {
        // Not JSON: the answer is text.
        duk_pop(duk);
        duk_push_lstring(duk, text.data(), text.size());
    }
    return true;
}

duk_ret_t callCommand(duk_context* duk)
{
    if (!runCommand(duk))
        return duk_throw(duk);
    return 1;
}

duk_ret_t print(duk_context* duk)
{
    JavaScriptEngine::Context& context = contextOf(duk);
    const duk_idx_t count = duk_get_top(duk);
    for (duk_idx_t i = 0; i < count; ++i) {
        if (i)
            *context.out << ' ';
        if (duk_is_object(duk, i) && !duk_is_function(duk, i)) {
            duk_dup(duk, i);
            *context.out << duk_json_encode(duk, -1);
            duk_pop(duk);
        } else {
            *context.out << duk_safe_to_string(duk, i);
        }
    }
    *context.out << '\n';
    return 0;
}

void* allocate(void*, duk_size_t size) { return std::malloc(size); }
void* reallocate(void*, void* p, duk_size_t size) { return std::realloc(p, size); }
void release(void*, void* p) { std::free(p); }

// An error the engine cannot recover from: nothing can be done but stop, with a reason.
void fatal(void*, const char* message)
{
    std::fprintf(stderr, "kx: fatal JavaScript error: %s\n", message ? message : "unknown");
    std::abort();
}

duk_ret_t compileAndRun(duk_context* duk, void*)
{
    // [source, fileName]
    duk_compile(duk, 0);
    duk_call(duk, 0);
    return 1;
}

} // namespace

JavaScriptEngine::JavaScriptEngine(std::ostream& printTo)
    : m_context(std::make_unique<Context>())
{
    m_context->out = &printTo;
    m_context->functions = V8JavaScriptFunctionWrapper::functions();
    m_context->duk = duk_create_heap(&allocate, &reallocate, &release, m_context.get(), &fatal);
    duk_context* duk = m_context->duk;
    duk_push_global_object(duk);
    duk_push_c_function(duk, &print, DUK_VARARGS);
    duk_put_prop_string(duk, -2, "print");
    for (const std::string& name : V8JavaScriptFunctionWrapper::namespaces()) {
        duk_push_object(duk);
        for (std::size_t i = 0; i < m_context->functions.size(); ++i) {
            const auto& function = m_context->functions[i];
            if (function.scriptNamespace != name)
                continue;
            duk_push_c_function(duk, &callCommand, DUK_VARARGS);
            duk_push_uint(duk, static_cast<duk_uint_t>(i));
            duk_put_prop_string(duk, -2, DUK_HIDDEN_SYMBOL("index"));
            duk_put_prop_string(duk, -2, function.name.c_str());
        }
        duk_put_prop_string(duk, -2, name.c_str());
    }
    duk_pop(duk);
}

JavaScriptEngine::~JavaScriptEngine()
{
    duk_destroy_heap(m_context->duk);
}

JavaScriptEngine::Result JavaScriptEngine::evaluate(std::string_view source, std::string_view fileName)
{
    duk_context* duk = m_context->duk;
    duk_push_lstring(duk, source.data(), source.size());
    duk_push_lstring(duk, fileName.data(), fileName.size());
    Result result;
    if (duk_safe_call(duk, &compileAndRun, nullptr, 2, 1) == DUK_EXEC_SUCCESS) {
        if (!duk_is_undefined(duk, -1))
            result.text = duk_is_object(duk, -1) && !duk_is_function(duk, -1) ? duk_json_encode(duk, -1) : duk_safe_to_string(duk, -1);
    } else {
        result.ok = false;
        std::string where(fileName);
        if (duk_is_error(duk, -1)) {
            duk_get_prop_string(duk, -1, "fileName");
            if (duk_is_string(duk, -1))
                where = duk_get_string(duk, -1);
            duk_pop(duk);
            duk_get_prop_string(duk, -1, "lineNumber");
            where += ':' + std::to_string(duk_get_int(duk, -1));
            duk_pop(duk);
            duk_get_prop_string(duk, -1, "message");
            result.text = where + ": " + duk_safe_to_string(duk, -1);
            duk_pop(duk);
        } else {
            result.text = where + ": uncaught " + duk_safe_to_string(duk, -1);
        }
    }
    duk_pop(duk);
    return result;
}

} // namespace Kx
