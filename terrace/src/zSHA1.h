#pragma once

#include <cstdint>

/// \file
/// The SHA-1 message digest (RFC 3174), for protocols that ask for it.

/// A digest in the making: Reset, Input as often as need be, Result.
struct SHA1Context {
    uint32_t state[5];
    uint64_t length;         ///< Bytes taken so far.
    unsigned char block[64]; ///< Bytes that wait for a whole block.
    bool done;               ///< The digest has been given out; nothing may follow.
};

/// These return 0; result::kBadArgument for a null argument, result::kFailure for input behind the result.
int SHA1Reset(SHA1Context* context);
int SHA1Input(SHA1Context* context, const unsigned char* data, unsigned int size);
int SHA1Result(SHA1Context* context, unsigned char digest[20]);
