#include "vnLog.h"

#include <cstdarg>
#include <cstdio>
#include <string>

void vnLog(const char* format, ...) {
    char text[1024]; // A longer line is cut.
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    std::string line(text);
    if (line.empty() || line.back() != '\n')
        line += '\n';
    fprintf(stderr, "glasspane: %s", line.c_str());
}
