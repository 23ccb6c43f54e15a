#include "Client.h"

namespace receiver {

void AddMediaCommands(CLI::App&, Client&) {}
void AddServeCommand(CLI::App&, Client&) {}
void AddLookCommands(CLI::App&, Client&) {}
void AddSnapshotCommand(CLI::App&, Client&) {}
void AddMeasureCommands(CLI::App&, Client&) {}

} // namespace receiver
