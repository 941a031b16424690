#include "DocumentCommands.h"
#include "LibraryCommands.h"
#include "MaterialCommands.h"
#include "OptionCommands.h"
#include "Tour.h"

#include <base/Application.h>
#include <base/Exception.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <exception>
#include <iostream>
#include <string>

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

} // namespace

int main(int argc, char** argv)
{
    CLI::App app{"kx: the KxTypes console", "kx"};
    app.footer("Exit status: 0 on success, 1 when the work failed, 2 on a usage error.\n"
               "Example: kx materials list --limit 5");
    app.set_version_flag("--version", "kx " KX_VERSION, "print the version and exit");
    bool tour = false;
    bool registry = false;
    app.add_flag("--tour", tour, "list the registered types, walk through the value types and the material libraries");
    app.add_flag("--types", registry, "list the meta types registered with the data model");
    Kx::Console::addDocumentCommands(app);
    Kx::Console::addMaterialCommands(app);
    Kx::Console::addLibraryCommands(app);
    Kx::Console::addOptionCommands(app);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // --help and --version arrive here too, with status 0; CLI11 prints them on standard output.
        if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success))
            return app.exit(error);
        return fail(s_usageError, std::string(error.what()) + " (see kx --help)");
    }

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
            || Kx::Console::runLibraryCommand(std::cout) || Kx::Console::runOptionCommand(std::cout);
        if (!registry && !tour && !command)
            std::cout << app.help();
    } catch (const std::exception& error) {
        // Kx::Exception's what() is its user text and detail on one line; file system errors of
        // the standard library say what and where in the same way.
        return fail(s_failure, error.what());
    }
    return s_success;
}
