#pragma once
// The parser of command lines, in UTF-8 as typed or read from a file:
//
//   <Area.Name> <argument> ...
//
// Arguments are separated by blanks and are one of:
//   - a bare word, up to the next blank:            1.5   -physical   Steel
//   - a double-quoted text; inside it \" is a quote and \\ a backslash, any other backslash is
//     kept as typed (so Windows paths need no doubling):   "Steel (generic)"
//   - a JSON value written bare, from its opening { or [ to the bracket that balances it, with
//     brackets inside JSON strings ignored:       {"x":1,"y":2,"z":3}   [[1,0,0,0],...]
//   - a switch: a slash and a name of letters, digits and underscores:   /ById
//     (a word such as /tmp/a.txt, with a second slash or a dot, is a positional argument).
//
// Every malformed line is answered with a message, never an exception: unbalanced quotes or
// brackets, a NUL character, text that is not UTF-8.
#include <base/TextCommand.h>

#include <string>
#include <string_view>

namespace Kx {

struct TextCommandLine {
    // The command's full name as typed; empty for a blank line.
    std::wstring command;
    TextCommandParameters parameters;
    // Why the line could not be read; empty when it could.
    std::wstring error;
};

[[nodiscard]] TextCommandLine parseTextCommandLine(std::string_view line);

} // namespace Kx
