#pragma once

#include <memory>

#include "AudioConverter.h"

namespace host {

/// A converter on libswresample. What comes in is mixed down at its own level: one channel goes to both
/// sides, three to eight channels are mixed so that they can't overflow, and of any other
/// number the first two are left and right. Null for a rate or a number of channels that no sound has.
std::unique_ptr<AudioConverter> NewSoundConverter(const AudioConverterFormat& format);

} // namespace host
