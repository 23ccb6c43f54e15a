#pragma once

#include <cstdint>

class zString;

/// \file
/// The MD5 message digest (RFC 1321), for protocols that ask for it; it protects nothing.

/// A digest in the making: Init, Update as often as need be, Final.
struct zMD5Context {
    uint32_t state[4];
    uint64_t length;         ///< Bytes taken so far.
    unsigned char block[64]; ///< Bytes that wait for a whole block.
};

void zMD5Init(zMD5Context* context);
void zMD5Update(zMD5Context* context, const void* data, unsigned int size);
void zMD5Final(unsigned char digest[16], zMD5Context* context);

/// The digest of a text as 32 lower-case hexadecimal digits.
void zMD5String(zString& out, const char* text);
/// The same into at least 33 bytes. result::kBadArgument for a null argument, else 0.
int md5_make_hash_return_hex(const char* in, unsigned int length, char* out);
