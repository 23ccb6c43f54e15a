#pragma once

#include <memory>

#include "Options.h"

/// The beginning of a program that serves.
namespace Launch {

/// Sees to descriptors, command line and machine. Null with the exit status when the program has nothing more
/// to do; what was wrong has been said then.
std::unique_ptr<host::Host> Begin(const Options::Program& program, int argc, char** argv, Options& options,
                                  int& status);

} // namespace Launch
