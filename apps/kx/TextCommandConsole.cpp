#include "TextCommandConsole.h"

#include "DocumentTextCommands.h"
#include "DownloadReport.h"
#include "PythonConsole.h"

#include <base/JavaScriptEngine.h>
#include <base/Paths.h>
#include <base/Strings.h>
#include <base/TextCommandLine.h>
#include <base/TextCommandRegistry.h>

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>

#include <editline/readline.h>

namespace Kx::Console {

namespace {

constexpr int s_success = 0;
constexpr int s_failure = 1;
constexpr int s_usageError = 2;

// One line on standard error, whatever the message holds.
void report(std::ostream& err, const std::string& where, std::string text)
{
    for (char& c : text)
        if (c == '\n' || c == '\r')
            c = ' ';
    err << "kx: " << where << text << '\n';
}

std::string firstWord(const std::string& line)
{
    const std::size_t start = line.find_first_not_of(" \t");
    if (start == std::string::npos)
        return {};
    const std::size_t end = line.find_first_of(" \t", start);
    return line.substr(start, end == std::string::npos ? std::string::npos : end - start);
}

// The answer to one line and the exit status it stands for. Help is the console's own.
int runLine(const std::string& typed, std::ostream& out, std::string& failure)
{
    const TextCommandRegistry& registry = TextCommandRegistry::instance();
    const std::string line = documentLineAsTextCommand(typed);
    const TextCommandLine parsed = parseTextCommandLine(line);
    if (!parsed.error.empty()) {
        failure = ToUTF8(parsed.error);
        return s_usageError;
    }
    if (parsed.command.empty())
        return s_success;
    if (parsed.command == L"help") {
        if (parsed.parameters.parameters() == 0) {
            out << ToUTF8(registry.help());
            return s_success;
        }
        const std::wstring text = registry.help(parsed.parameters[0]);
        if (text.empty()) {
            failure = ToUTF8(registry.run(parsed.parameters[0], {}).text);
            return s_usageError;
        }
        out << ToUTF8(text);
        return s_success;
    }
    if (!registry.find(parsed.command)) {
        failure = ToUTF8(registry.run(parsed.command, {}).text);
        return s_usageError;
    }
    const TextCommandOutcome outcome = registry.run(parsed.command, parsed.parameters);
    if (!outcome.ok()) {
        failure = ToUTF8(outcome.text);
        return s_failure;
    }
    out << ToUTF8(outcome.text) << '\n';
    return s_success;
}

bool isComment(const std::string& line)
{
    const std::size_t start = line.find_first_not_of(" \t\r");
    return start != std::string::npos && line[start] == '#';
}

// Completion of subject areas ("Geo" -> "Geometry.") and command names, and "help".
std::vector<std::string> s_candidates;

char* nextCandidate(const char* text, int state)
{
    static std::size_t s_next = 0;
    if (state == 0)
        s_next = 0;
    const std::size_t length = std::strlen(text);
    while (s_next < s_candidates.size()) {
        const std::string& candidate = s_candidates[s_next++];
        if (strncasecmp(candidate.c_str(), text, length) == 0)
            return strdup(candidate.c_str());
    }
    return nullptr;
}

char** complete(const char* text, int, int)
{
    rl_attempted_completion_over = 1;
    return rl_completion_matches(text, &nextCandidate);
}

} // namespace

// Checked by hand rather than with std::regex, whose matcher recurses once per character and
// would overflow the stack on a megabyte argument.
bool isTextCommandLine(const std::string& firstArgument)
{
    const std::string word = firstWord(firstArgument);
    if (word == "help")
        return true;
    auto isNameCharacter = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; };
    const std::size_t dot = word.find('.');
    if (dot == 0 || dot == std::string::npos || dot + 1 == word.size() || firstArgument.find_first_not_of(" \t") != 0)
        return false;
    for (std::size_t i = 0; i < word.size(); ++i)
        if (i != dot && !isNameCharacter(word[i]))
            return false;
    return !std::isdigit(static_cast<unsigned char>(word[0])) && !std::isdigit(static_cast<unsigned char>(word[dot + 1]));
}

std::string joinCommandArguments(const std::vector<std::string>& arguments)
{
    std::string line;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (i == 0 || (!argument.empty() && (argument[0] == '{' || argument[0] == '[' || argument[0] == '/'))
            || (!argument.empty() && argument.find_first_of(" \t\"\\") == std::string::npos)) {
            line += (i ? " " : "") + argument;
            continue;
        }
        line += " \"";
        for (char c : argument) {
            if (c == '"' || c == '\\')
                line += '\\';
            line += c;
        }
        line += '"';
    }
    return line;
}

int runTextCommandLine(const std::string& line, std::ostream& out, std::ostream& err)
{
    std::string failure;
    const int status = runLine(line, out, failure);
    if (status != s_success)
        report(err, "", failure);
    return status;
}

int runTextCommandLines(std::istream& in, const std::string& name, bool keepGoing, std::ostream& out, std::ostream& err)
{
    int worst = s_success;
    std::string line;
    for (std::size_t number = 1; std::getline(in, line); ++number) {
        if (isComment(line))
            continue;
        std::string failure;
        const int status = runLine(line, out, failure);
        DownloadReport::pump();
        if (status == s_success)
            continue;
        report(err, name + ':' + std::to_string(number) + ": ", failure);
        worst = std::max(worst, status);
        if (!keepGoing)
            return status;
    }
    return worst;
}

int runTextCommandScript(const std::string& path, bool keepGoing, std::ostream& out, std::ostream& err)
{
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        report(err, "", "The script could not be read: " + path);
        return s_failure;
    }
    return runTextCommandLines(in, path, keepGoing, out, err);
}

int runJavaScriptFile(const std::string& path, std::ostream& out, std::ostream& err)
{
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        report(err, "", "The script could not be read: " + path);
        return s_failure;
    }
    std::ostringstream source;
    source << in.rdbuf();
    JavaScriptEngine engine(out);
    const JavaScriptEngine::Result result = engine.evaluate(source.str(), path);
    if (!result.ok) {
        report(err, "", result.text);
        return s_failure;
    }
    return s_success;
}

int runInteractivePrompt(std::ostream& out, std::ostream& err)
{
    const TextCommandRegistry& registry = TextCommandRegistry::instance();
    s_candidates = {"help", "exit", "python"};
    for (const std::wstring& area : registry.subjectAreas())
        s_candidates.push_back(ToUTF8(area) + '.');
    for (const TextCommand* command : registry.commands())
        s_candidates.push_back(ToUTF8(command->fullName()));

    const std::string history = (Paths::userDirectory() / "kx_history").string();
    using_history();
    read_history(history.c_str());
    rl_attempted_completion_function = &complete;
    // A dot is part of a command's name, not a word break.
    static char s_breaks[] = " \t";
    rl_completer_word_break_characters = s_breaks;

    out << "kx: type help for the commands, exit or Ctrl-D to leave\n";
    while (char* typed = readline("kx> ")) {
        const std::string line(typed);
        std::free(typed);
        const std::string word = firstWord(line);
        if (word.empty())
            continue;
        add_history(line.c_str());
        if (word == "exit" || word == "quit")
            break;
        if (word == "python") {
            runPythonPrompt(out, err);
            continue;
        }
        (void)runTextCommandLine(line, out, err);
        out.flush();
    }
    write_history(history.c_str());
    history_truncate_file(history.c_str(), 1000);
    return s_success;
}

} // namespace Kx::Console
