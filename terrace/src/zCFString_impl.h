#pragma once

#include <string>

/// The inside of the string object, for the text conversions only.
struct __CFString {
    std::u16string units;
};
