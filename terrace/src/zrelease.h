#pragma once

/// \file
/// What a released program does about its crashes. Main thread.

/// Hands crashes over to "Crash Reporter.app" among the program's resources, if there is one, on systems that
/// have no crash reporter of their own ("leop" and later have one). The reporter is started with the path of
/// the program that crashed. The argument plays no part.
void zrelease_startup(const char* name);
void zrelease_shutdown();

/// Microseconds since zrelease_startup.
long long zrelease_uptime();
