#pragma once

/// Whether the machine's own firewall stops what comes in on a TCP port, by the system's preference files. It
/// asks no service and changes nothing. What can't be read counts as no firewall.
namespace cFirewall {

/// True if the port counts as blocked. Main thread.
bool IsTCPPortFirewalled(int port);

/// Called by the boot of the network library; there is nothing to do.
void Startup();
void Shutdown();

} // namespace cFirewall
