#pragma once
// Text commands: small named operations that a console user or a script runs with a line of text
// ("Geometry.DotProduct {"x":1,"y":0,"z":0} {"x":0,"y":1,"z":0}") and that answer one line of
// text. Every command belongs to a subject area; its full name is "<area>.<name>".
//
// A command answers every problem as text; nothing is thrown out of execute. An answer that
// reports a problem is made with TextCommand::failure(), so that a console or a script runner
// can tell it from a result (exit status, stop at the first error) without parsing messages.
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Kx {

// The arguments of one command line: positional parameters in order, and switches written with a
// leading slash (/ById) held apart from them.
class TextCommandParameters {
public:
    TextCommandParameters() = default;
    TextCommandParameters(std::vector<std::wstring> parameters, std::vector<std::wstring> flags);

    // Number of positional parameters.
    [[nodiscard]] std::size_t parameters() const noexcept { return m_parameters.size(); }
    // The i-th positional parameter; an empty text past the end.
    [[nodiscard]] const std::wstring& parameter(std::size_t i) const noexcept;
    [[nodiscard]] const std::wstring& operator[](std::size_t i) const noexcept { return parameter(i); }
    // Whether the switch /name was given; names compare without regard to case (/raw is /Raw).
    [[nodiscard]] bool hasFlag(std::wstring_view name) const noexcept;
    [[nodiscard]] const std::vector<std::wstring>& flags() const noexcept { return m_flags; }
    // The i-th parameter read wholly as a decimal number (as "1.5", "-2e3", "inf"); empty when the
    // parameter is missing or is not a number.
    [[nodiscard]] std::optional<double> parameterAsDouble(std::size_t i) const;

private:
    std::vector<std::wstring> m_parameters;
    std::vector<std::wstring> m_flags;
};

class TextCommand {
public:
    TextCommand(std::wstring subjectArea, std::wstring name, std::wstring description);
    virtual ~TextCommand();
    TextCommand(const TextCommand&) = delete;
    TextCommand& operator=(const TextCommand&) = delete;

    [[nodiscard]] const std::wstring& subjectArea() const noexcept { return m_subjectArea; }
    [[nodiscard]] const std::wstring& name() const noexcept { return m_name; }
    [[nodiscard]] const std::wstring& description() const noexcept { return m_description; }
    // "<subject area>.<name>", the name typed at the console.
    [[nodiscard]] std::wstring fullName() const;

    // The answer shown to the user. Never throws: errors are answers made with failure().
    [[nodiscard]] virtual std::wstring execute(const TextCommandParameters& parameters) const = 0;

    // Marks the answer being made on this thread as a failure and returns `message`, so that a
    // command writes `return failure(L"No parameter for the vector");`.
    static std::wstring failure(std::wstring message);
    // Whether failure() was called on this thread since the last clearFailure(); the registry
    // clears it before each command it runs.
    [[nodiscard]] static bool failed() noexcept;
    static void clearFailure() noexcept;

private:
    std::wstring m_subjectArea;
    std::wstring m_name;
    std::wstring m_description;
};

// Declares a command class of a library's table: its behaviour is its execute(), its texts come
// from the table that constructs it.
#define KX_TEXT_COMMAND_CLASS(Class)                                                                   \
    class Class final : public ::Kx::TextCommand {                                                     \
    public:                                                                                            \
        using TextCommand::TextCommand;                                                                \
        [[nodiscard]] std::wstring execute(const ::Kx::TextCommandParameters& parameters) const override; \
    }

} // namespace Kx
