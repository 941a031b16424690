#pragma once
// The process-wide table of text commands. Libraries fill it from static initialisers when they
// are loaded; consoles, script engines and tests look commands up and run them through it.
#include <base/TextCommand.h>

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Kx {

// The answer to one line run through the registry.
struct TextCommandOutcome {
    enum class EStatus { eDone, eFailed, eNoCommand };
    std::wstring text;
    EStatus status = EStatus::eDone;
    [[nodiscard]] bool ok() const noexcept { return status != EStatus::eFailed; }
};

class TextCommandRegistry {
public:
    [[nodiscard]] static TextCommandRegistry& instance();

    // False (and the command dropped) when a command of the same full name is registered already.
    bool add(std::unique_ptr<TextCommand> command);
    // By full name, without regard to case; null when unknown.
    [[nodiscard]] const TextCommand* find(std::wstring_view fullName) const;
    // Every command, ordered by subject area and name.
    [[nodiscard]] std::vector<const TextCommand*> commands() const;
    [[nodiscard]] std::vector<std::wstring> subjectAreas() const;
    // Up to `count` full names nearest to `typed` (edit distance, without regard to case), nearest
    // first; only names near enough to be a plausible slip.
    [[nodiscard]] std::vector<std::wstring> closestNames(std::wstring_view typed, std::size_t count = 3) const;

    // Runs one command: the answer, or the message of an unknown command.
    [[nodiscard]] TextCommandOutcome run(std::wstring_view fullName, const TextCommandParameters& parameters) const;
    // Parses and runs one line; a blank line is eNoCommand with no text.
    [[nodiscard]] TextCommandOutcome runLine(std::string_view line) const;

    // The help text: every command with its description grouped by subject area, or one command's.
    [[nodiscard]] std::wstring help() const;
    [[nodiscard]] std::wstring help(std::wstring_view fullName) const;

private:
    TextCommandRegistry() = default;
    std::map<std::wstring, std::unique_ptr<TextCommand>> m_commands; // keyed by lower-case full name
};

} // namespace Kx
