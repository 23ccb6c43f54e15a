#pragma once

/// \file
/// Base64 with the standard alphabet and padding (RFC 4648, section 4).

/// Room that the text of so many bytes needs, its zero included.
int Base64encode_len(int size);
/// Writes the text and a zero; returns its length with the zero.
int Base64encode(char* out, const char* in, int size);
/// Room that decoding needs: the bytes that the leading characters of the alphabet give, and one for a zero.
int Base64decode_len(const char* in);
/// Decodes up to the first character outside the alphabet and writes a zero behind; returns the
/// bytes without it.
int Base64decode(char* out, const char* in);
