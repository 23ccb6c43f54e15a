#include "Client.h"

namespace receiver {

void AddServeCommand(CLI::App&, Client&) {}

} // namespace receiver
