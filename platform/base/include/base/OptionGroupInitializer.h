#pragma once

#include <functional>
#include <string>
#include <vector>

namespace Kx {

class OptionGroup;

// Makes an option group known to the application at start-up: a library defines one of these at
// namespace scope (its name says what it registers, e.g. "DefaultMaterialOptionGroupInitializer")
// with the factory that makes or finds the group. Groups are made only when asked for, so a
// group whose choices need other services costs nothing until preferences are shown.
class OptionGroupInitializer {
public:
    using Factory = std::function<OptionGroup*()>;

    OptionGroupInitializer(std::string name, Factory factory);

    struct Entry {
        std::string name;
        Factory factory;
    };
    // In the order of registration (the start-up order of the libraries).
    [[nodiscard]] static const std::vector<Entry>& initializers();
    // Every registered group, made through its factory; groups a factory cannot make are left out.
    [[nodiscard]] static std::vector<OptionGroup*> groups();
};

} // namespace Kx
