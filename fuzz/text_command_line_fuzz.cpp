// Arbitrary bytes as a command line: the parser answers a message or a command with its
// arguments, never throws, and a command name is never empty when there are arguments. (A quoted
// argument may start with a bracket and not end with one, so brackets say nothing here.) Every
// line that parses is then run, so the registry's answer to any typed line is exercised too.
#include <Types/TextCommands/GeometryTextCommands.h>

#include <base/TextCommandLine.h>
#include <base/TextCommandRegistry.h>

#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // Keeps the geometry commands' library loaded, so that parsed lines reach real commands.
    static const Kx::TextCmdGeometryDotProduct s_loaded(L"Geometry", L"DotProduct", L"");
    const std::string_view line(reinterpret_cast<const char*>(data), size);
    const Kx::TextCommandLine parsed = Kx::parseTextCommandLine(line);
    if (!parsed.error.empty())
        return 0;
    if (parsed.command.empty() && (parsed.parameters.parameters() > 0 || !parsed.parameters.flags().empty()))
        std::abort();
    const Kx::TextCommandOutcome outcome = Kx::TextCommandRegistry::instance().run(parsed.command, parsed.parameters);
    if (!outcome.ok() && outcome.text.empty())
        std::abort(); // a failure always says why
    return 0;
}
