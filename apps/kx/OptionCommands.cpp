#include "OptionCommands.h"

#include "Table.h"

#include <Types/Appearance/DefaultMaterialOptions.h>

#include <base/ChoiceOption.h>
#include <base/Exception.h>
#include <base/OptionGroup.h>
#include <base/OptionGroupInitializer.h>
#include <base/Strings.h>

#include <CLI/CLI.hpp>

#include <iostream>
#include <ostream>
#include <string>
#include <vector>

namespace Kx::Console {

namespace {

struct OptionArguments {
    CLI::App* options = nullptr;
    CLI::App* set = nullptr;
    std::string group;
    std::string option;
    std::string value;
};

OptionArguments& arguments()
{
    static OptionArguments held;
    return held;
}

// A choice as a user types it, with the text a dialog shows when that differs.
std::string describe(const ChoiceOption::Choice& choice)
{
    const std::string text = ToUTF8(choice.text);
    return text.empty() || text == choice.value ? choice.value : choice.value + " (" + text + ")";
}

std::string joined(const std::vector<std::string>& items)
{
    std::string text;
    for (const std::string& item : items) {
        text += (text.empty() ? "" : ", ") + item;
    }
    return text;
}

std::vector<std::string> choicesOf(const Option& option)
{
    std::vector<std::string> items;
    if (const auto* choice = dynamic_cast<const ChoiceOption*>(&option)) {
        for (const ChoiceOption::Choice& item : choice->choices()) {
            items.push_back(describe(item));
        }
    }
    return items;
}

void printGroup(std::ostream& out, OptionGroup& group, const std::string& path)
{
    const auto& options = group.createOptionsIfNeeded();
    out << path;
    if (!group.userName().empty()) {
        out << "  \"" << ToUTF8(group.userName()) << '"';
    }
    out << '\n';
    Table table({{"option"}, {"value"}, {"choices"}});
    for (const auto& option : options) {
        // An option that only counts while another is on is shown below it.
        const std::string id = option->parentOption() != nullptr ? "  " + option->id() : option->id();
        table.addRow({id, option->toText(), joined(choicesOf(*option))});
    }
    if (table.rowCount() > 0) {
        table.print(out);
    }
    for (const auto& nested : group.subGroups()) {
        printGroup(out, *nested, path + "/" + nested->name());
    }
}

OptionGroup& findGroup(const std::string& name)
{
    std::vector<std::string> known;
    for (OptionGroup* group : OptionGroupInitializer::groups()) {
        if (group->name() == name) {
            return *group;
        }
        known.push_back(group->name());
    }
    throw Exception(L"There is no option group of this name", name + " (the groups are: " + joined(known) + ")");
}

void setOption(std::ostream& out, const OptionArguments& held)
{
    OptionGroup& group = findGroup(held.group);
    const auto& options = group.createOptionsIfNeeded();
    Option* option = group.option(held.option);
    if (option == nullptr) {
        std::vector<std::string> ids;
        for (const auto& candidate : options) {
            ids.push_back(candidate->id());
        }
        throw Exception(L"The option group has no option of this name",
            held.group + "/" + held.option + " (the options are: " + joined(ids) + ")");
    }
    const auto* choice = dynamic_cast<const ChoiceOption*>(option);
    if (choice != nullptr && !choice->hasChoice(held.value)) {
        throw Exception(L"This value is not one of the option's choices",
            held.group + "/" + held.option + " = " + held.value + " (the choices are: " + joined(choicesOf(*option)) + ")");
    }
    std::vector<std::string> before;
    for (const auto& each : options) {
        before.push_back(each->toText());
    }
    if (!option->fromText(held.value)) {
        throw Exception(L"This value cannot be stored in the option", held.group + "/" + held.option + " = " + held.value);
    }
    if (!group.save()) {
        throw Exception(L"The options could not be saved", group.persistFile().string());
    }
    // Other options may follow the one set (a new library brings its first category and material).
    for (std::size_t index = 0; index < options.size(); ++index) {
        if (options[index]->toText() != before[index] || options[index].get() == option) {
            out << held.group << '/' << options[index]->id() << " = " << options[index]->toText() << '\n';
        }
    }
}

} // namespace

void addOptionCommands(CLI::App& app)
{
    OptionArguments& held = arguments();
    held.options = app.add_subcommand("options", "show every option group with its values and choices, or set an option");
    held.options->footer("Example: kx options\n         kx options set DefaultMaterialOptionGroup PhysicalMaterialIDID CorvexMaterial-133");
    held.set = held.options->add_subcommand("set", "set one option to one of its values and save its group");
    held.set->add_option("group", held.group, "option group name, as `kx options` shows it")->required();
    held.set->add_option("option", held.option, "option id")->required();
    held.set->add_option("value", held.value, "the value, as `kx options` shows it (a choice's value, 1/0 for a switch)")
        ->required();
    held.set->footer("Example: kx options set DefaultMaterialOptionGroup VisualNotAsMaterialID 1");
}

bool runOptionCommand(std::ostream& out)
{
    OptionArguments& held = arguments();
    const bool chosen = (held.set != nullptr && held.set->parsed()) || (held.options != nullptr && held.options->parsed());
    if (chosen) {
        // The material preferences read their file when first made, after the start's own groups.
        const std::string& problem = DefaultMaterialOptionGroup::get()->loadProblem();
        if (!problem.empty()) {
            std::cerr << "kx: warning: option file not read: " << problem << "; the defaults are used\n";
        }
    }
    if (held.set != nullptr && held.set->parsed()) {
        setOption(out, held);
        return true;
    }
    if (held.options != nullptr && held.options->parsed()) {
        bool first = true;
        for (OptionGroup* group : OptionGroupInitializer::groups()) {
            if (!first) {
                out << '\n';
            }
            first = false;
            printGroup(out, *group, group->name());
        }
        return true;
    }
    return false;
}

} // namespace Kx::Console
