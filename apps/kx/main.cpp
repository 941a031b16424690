#include "DocumentCommands.h"
#include "MaterialCommands.h"
#include "Tour.h"

#include <base/Application.h>
#include <base/Exception.h>

#include <CLI/CLI.hpp>

#include <iostream>

int main(int argc, char** argv)
{
    CLI::App app{"kx: the KxTypes console"};
    bool tour = false;
    bool registry = false;
    app.add_flag("--tour", tour, "list the registered types, walk through the value types and the material libraries");
    app.add_flag("--types", registry, "list the meta types registered with the data model");
    Kx::Console::addDocumentCommands(app);
    Kx::Console::addMaterialCommands(app);
    CLI11_PARSE(app, argc, argv);

    try {
        Kx::Application::initialize();
        if (registry || tour)
            Kx::Console::printRegistry(std::cout);
        if (tour) {
            Kx::Console::runTour(std::cout);
            Kx::Console::printMaterialTour(std::cout);
        }
        const bool command = Kx::Console::runDocumentCommand(std::cout) || Kx::Console::runMaterialCommand(std::cout);
        if (!registry && !tour && !command)
            std::cout << app.help();
    } catch (const Kx::Exception& error) {
        std::cerr << "kx: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
