#include "DocumentCommands.h"
#include "LibraryCommands.h"
#include "MaterialCommands.h"
#include "OnlineCommands.h"
#include "OptionCommands.h"
#include "DocumentTextCommands.h"
#include "DownloadReport.h"
#include "PythonConsole.h"
#include "TextCommandConsole.h"
#include "Tour.h"

#include <base/Application.h>
#include <base/Exception.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

// The exit statuses of docs/commands.md: a script tells a mistake in its own command line from a
// failure of the work.
constexpr int s_success = 0;
constexpr int s_failure = 1;
constexpr int s_usageError = 2;

// Every failure is one line on standard error, so that a script can show or log it as it is.
int fail(int status, std::string text)
{
    std::replace(text.begin(), text.end(), '\n', ' ');
    std::cerr << "kx: " << text << '\n';
    return status;
}

// The text-command forms; `run` gets the console ready first, as for every other command.
template <class Run>
int runTextCommands(Run run)
{
    try {
        for (const std::string& problem : Kx::Application::initialize())
            std::cerr << "kx: warning: option file not read: " << problem << '\n';
        Kx::Console::registerDocumentTextCommands();
        // The session's documents close before the libraries they hold materials of go away.
        struct CloseDocuments {
            ~CloseDocuments() { Kx::Console::closeAllDocuments(); }
        } closeAtEnd;
        // Downloads the session's commands started are waited for and reported before it ends.
        Kx::Console::DownloadReport downloads(std::cout, std::cerr);
        return downloads.finish(run());
    } catch (const std::exception& error) {
        return fail(s_failure, error.what());
    }
}

} // namespace

int main(int argc, char** argv)
{
    // kx 'Geometry.DotProduct {"x":1,"y":0,"z":0} {"x":0,"y":1,"z":0}': one text command.
    if (argc >= 2 && Kx::Console::isTextCommandLine(argv[1])) {
        const std::string line = Kx::Console::joinCommandArguments(std::vector<std::string>(argv + 1, argv + argc));
        return runTextCommands([&] { return Kx::Console::runTextCommandLine(line, std::cout, std::cerr); });
    }
    // kx alone: a prompt for a person, the commands of standard input for a pipe.
    if (argc == 1) {
        if (isatty(STDIN_FILENO) && isatty(STDOUT_FILENO))
            return runTextCommands([] { return Kx::Console::runInteractivePrompt(std::cout, std::cerr); });
        return runTextCommands([] { return Kx::Console::runTextCommandLines(std::cin, "standard input", false, std::cout, std::cerr); });
    }

    CLI::App app{"kx: the KxTypes console", "kx"};
    app.footer("Exit status: 0 on success, 1 when the work failed, 2 on a usage error.\n"
               "Example: kx materials list --limit 5\n"
               "Text commands: kx 'Geometry.DotProduct {\"x\":1,\"y\":0,\"z\":0} {\"x\":0,\"y\":1,\"z\":0}', kx --script FILE, "
               "or kx alone for a prompt (kx 'help' lists the commands)");
    app.set_version_flag("--version", "kx " KX_VERSION, "print the version and exit");
    bool tour = false;
    bool registry = false;
    app.add_flag("--tour", tour, "list the registered types, walk through the value types and the material libraries");
    app.add_flag("--types", registry, "list the meta types registered with the data model");
    std::string script;
    std::string javaScript;
    std::string python;
    bool keepGoing = false;
    app.add_option("--script", script, "run the text commands of FILE, one per line ('#' starts a comment)")->type_name("FILE");
    app.add_flag("--keep-going", keepGoing, "with --script: run every line, even after a failed one");
    app.add_option("--js", javaScript, "run the JavaScript FILE, with the namespaces trvGeometry and trvModeling")->type_name("FILE");
    app.add_option("--python", python, "run the Python FILE in the embedded interpreter, with trvGeometry, trvModeling and TarvelBasicPythonTypes")->type_name("FILE");
    Kx::Console::addDocumentCommands(app);
    Kx::Console::addMaterialCommands(app);
    Kx::Console::addLibraryCommands(app);
    Kx::Console::addOnlineCommands(app);
    Kx::Console::addOptionCommands(app);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // --help and --version arrive here too, with status 0; CLI11 prints them on standard output.
        if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success))
            return app.exit(error);
        return fail(s_usageError, std::string(error.what()) + " (see kx --help)");
    }

    if (!script.empty())
        return runTextCommands([&] { return Kx::Console::runTextCommandScript(script, keepGoing, std::cout, std::cerr); });
    if (!javaScript.empty())
        return runTextCommands([&] { return Kx::Console::runJavaScriptFile(javaScript, std::cout, std::cerr); });
    if (!python.empty())
        return runTextCommands([&] { return Kx::Console::runPythonFile(python, std::cout, std::cerr); });

    try {
        for (const std::string& problem : Kx::Application::initialize())
            std::cerr << "kx: warning: option file not read: " << problem << '\n';
        if (registry || tour)
            Kx::Console::printRegistry(std::cout);
        if (tour) {
            Kx::Console::runTour(std::cout);
            Kx::Console::printMaterialTour(std::cout);
        }
        const bool command = Kx::Console::runDocumentCommand(std::cout) || Kx::Console::runMaterialCommand(std::cout)
            || Kx::Console::runLibraryCommand(std::cout) || Kx::Console::runOptionCommand(std::cout)
            || Kx::Console::runOnlineCommand(std::cout);
        if (!registry && !tour && !command)
            std::cout << app.help();
    } catch (const std::exception& error) {
        // Kx::Exception's what() is its user text and detail on one line; file system errors of
        // the standard library say what and where in the same way.
        return fail(s_failure, error.what());
    }
    return s_success;
}
