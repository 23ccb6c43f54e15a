#pragma once

#include <cstdint>
#include <string>

namespace receiver {

/// A picture in a file: .jpg, .jpeg or .png by its name.
namespace PictureFile {

/// Whether there is a kind of file for this name.
bool IsKnown(const std::string& path);

/// Writes upright b, g, r, x pixels, rows without gaps, as a whole file or not at all. "-" is standard
/// output, as JPEG. \p quality, 1 to 100, is that of a JPEG. False with a reason.
bool Write(const std::string& path, const uint8_t* pixels, int width, int height, int quality,
           std::string& reason);

} // namespace PictureFile

} // namespace receiver
