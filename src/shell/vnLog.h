#pragma once

/// Writes a line to the standard error output, where a journal keeps it, as printf does; a newline at the
/// format's end is the line's own. Any thread.
void vnLog(const char* format, ...) __attribute__((format(printf, 1, 2)));
