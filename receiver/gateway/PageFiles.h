#pragma once

#include <array>
#include <string_view>

namespace receiver {

/// A file of the gateway's page.
struct PageFile {
    const char* path; ///< As it is asked for.
    const char* type;
    std::string_view text;
};

const std::array<PageFile, 4>& PageFiles();

} // namespace receiver
