#pragma once

#include <string>

namespace host {

/// The `Desktop` operation of this name: writes a file, readable to this user alone, with a line for each
/// socket that listens on exactly this TCP port, IPv4 and IPv6. A line is what the BSD netstat prints:
/// address and port with a dot between them, and "LISTEN" at its end. A link at that path is not followed. 0,
/// or -1 without a file. Any thread.
int WriteTCPListeners(int port, const std::string& path);

} // namespace host
