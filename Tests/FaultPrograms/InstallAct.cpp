// What a tracer lets go wrong, or a benchmark measures: one source is installed on a machine in a folder, by an option
// that allows everything.
//
//     install-act ROOT HOME DRIVE SOURCE
#include "Installers/Install/SourceInstaller.h"
#include "Platform/Machine/Host.h"

#include <cstdio>
#include <exception>
#include <span>
#include <string>

int main(int count, char** words) {
    using namespace tarvik;
    const std::span<char*> arguments(words, static_cast<std::size_t>(count));
    if (arguments.size() != 5) return 2;
    try {
        const Host host = Host::rootedAt(arguments[1], arguments[2]);
        host.guideTools();
        InstallTerms terms{.option = {}, .drive = TargetDrive(host, arguments[3])};
        terms.option.id = "everything";
        terms.option.allowUntrustedPackages = true;
        terms.option.allowUntrustedScripts = true;
        terms.option.externalRootName = "ExternalTarvik";
        terms.option.applicationLinkRoot = "/Applications";
        terms.reporter.sink = [](const std::string& line) { std::printf("%s\n", line.c_str()); };
        SourceInstaller::install(host, arguments[4], terms);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
