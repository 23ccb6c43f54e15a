#pragma once

/// \file
/// The named result codes. An operation returns 0 for success and a negative number for failure.

namespace result {

inline constexpr int kOk = 0;
/// The general failure, where there is nothing more to say.
inline constexpr int kFailure = -1;
/// A stream has nothing more to read.
inline constexpr int kEndOfStream = -12;
/// A device has no room for what was to be written.
inline constexpr int kOutOfRoom = -13;
inline constexpr int kBadArgument = -22;

} // namespace result
