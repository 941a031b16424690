// Random JSON to every geometry and matrix command: the input is cut at newlines into up to three
// arguments and each registered command runs with them. A command never throws, answers a failure
// with a message, and answers on one line.
#include <Types/TextCommands/GeometryTextCommands.h>

#include <base/Strings.h>
#include <base/TextCommandRegistry.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

bool isGeometryArea(const std::wstring& area)
{
    for (const wchar_t* geometry : {L"Geometry", L"LocalToWorld", L"WorldToLocal", L"Matrix"}) {
        if (area == geometry)
            return true;
    }
    return false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Kx::TextCmdGeometryDotProduct s_loaded(L"Geometry", L"DotProduct", L"");
    std::string_view input(reinterpret_cast<const char*>(data), size);
    std::vector<std::wstring> arguments;
    while (arguments.size() < 3 && !input.empty()) {
        const std::size_t end = input.find('\n');
        arguments.push_back(Kx::ToIString(input.substr(0, end)));
        input = end == std::string_view::npos ? std::string_view() : input.substr(end + 1);
    }
    const Kx::TextCommandParameters parameters(arguments, {});
    for (const Kx::TextCommand* command : Kx::TextCommandRegistry::instance().commands()) {
        // The material commands read libraries, documents and the network: not this target's.
        if (!isGeometryArea(command->subjectArea()))
            continue;
        const Kx::TextCommandOutcome outcome = Kx::TextCommandRegistry::instance().run(command->fullName(), parameters);
        if (outcome.text.empty() || outcome.text.find(L'\n') != std::wstring::npos)
            std::abort();
    }
    return 0;
}
