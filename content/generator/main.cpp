// kx_content_generator --data <content/data> --out <folder>
//
// Writes the standard material libraries from the data files, after linting every value; prints
// the lint report (and keeps it as lint-report.txt beside the libraries). Fails, writing nothing,
// when the data cannot be read or a documented correction no longer matches the data.

#include "Lint.h"
#include "MaterialData.h"
#include "StandardLibraries.h"

#include <assets/IAssetLibraryManager.h>

#include <cstring>
#include <exception>
#include <iostream>

int main(int argc, char** argv)
{
    std::filesystem::path data;
    std::filesystem::path out;
    for (int index = 1; index + 1 < argc; index += 2) {
        if (std::strcmp(argv[index], "--data") == 0) {
            data = argv[index + 1];
        } else if (std::strcmp(argv[index], "--out") == 0) {
            out = argv[index + 1];
        }
    }
    if (data.empty() || out.empty() || argc != 5) {
        std::cerr << "usage: kx_content_generator --data <folder of the CSV files> --out <library folder>\n";
        return 2;
    }
    try {
        auto physical = Kx::Content::readPhysical(data / "physical.csv");
        auto appearance = Kx::Content::readAppearance(data / "appearance.csv");
        Kx::Content::LintResult lint;
        Kx::Content::lintPhysical(physical, Kx::Content::readCorrections(data / "corrections.csv"),
            Kx::Content::readFamilyValues(data / "family-values.csv"), lint);
        Kx::Content::lintAppearance(appearance, lint);
        const std::string report = Kx::Content::formatReport(lint);
        std::cout << report;
        if (!lint.errors.empty()) {
            std::cerr << "kx_content_generator: the data needs review (lint errors above)\n";
            return 1;
        }
        auto manager = telvarin::platform::assets::CreateAssetLibraryManager();
        Kx::Content::writeStandardLibraries(*manager, physical, appearance, report, out);
        std::cout << "kx_content_generator: " << Kx::Content::standardLibraries().size() << " libraries written to "
                  << out.string() << '\n';
        return 0;
    } catch (const std::exception& failure) {
        std::cerr << "kx_content_generator: " << failure.what() << '\n';
        return 1;
    }
}
