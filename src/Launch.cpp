#include "Launch.h"

#include <cstdio>

#include "Process.h"

std::unique_ptr<host::Host> Launch::Begin(const Options::Program& program, int argc, char** argv,
                                          Options& options, int& status) {
    Process::OpenStandardDescriptors();
    if (const auto parsed = options.Parse(program, argc, argv)) {
        status = *parsed;
        return nullptr;
    }
    std::string reason;
    auto host = HostLoader::Load(options.host, options.display, reason);
    if (!host) {
        fprintf(stderr, "%s: %s\n", program.name, reason.c_str());
        status = 1;
    }
    return host;
}
