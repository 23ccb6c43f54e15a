#include "Client.h"

namespace receiver {

void AddMediaCommands(CLI::App&, Client&) {}
void AddServeCommand(CLI::App&, Client&) {}

} // namespace receiver
