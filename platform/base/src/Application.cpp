#include "base/Application.h"

#include "base/AmbrelMaterialOptionGroup.h"
#include "base/BootstrapOptionGroup.h"
#include "base/OS.h"

namespace Kx::Application {

std::vector<std::string> initialize()
{
    OS::markUIThread();
    // The bootstrap group first: the language decides every text after it. The material options
    // name the user's own libraries, which the library manager opens with the standard ones.
    std::vector<std::string> problems;
    for (OptionGroup* group : {static_cast<OptionGroup*>(&BootstrapOptionGroup::get()),
             static_cast<OptionGroup*>(&AmbrelMaterialOptionGroup::get())}) {
        std::string problem;
        if (!group->load(&problem)) {
            problems.push_back(problem + "; the defaults are used");
        }
    }
    return problems;
}

} // namespace Kx::Application
