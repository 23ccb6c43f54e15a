#include "Client.h"

namespace receiver {

void AddMediaCommands(CLI::App&, Client&) {}

} // namespace receiver
