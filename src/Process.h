#pragma once

/// What every program of ours does with its process before anything else.
namespace Process {

/// Makes sure that descriptors 0 to 2 are open: a socket must never become descriptor 0, which counts as
/// none, nor receive what is meant for the terminal.
void OpenStandardDescriptors();

/// Lets SIGINT and SIGTERM end the main loop of the installed host, and a broken connection be an error like
/// any other.
void QuitOnSignals();

} // namespace Process
