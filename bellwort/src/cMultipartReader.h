#pragma once

#include "cMultipartRecord.h"

class zRecord;

/// Parses a received multipart message into a record (see `cMultipartRecord`): sections keep offsets into the
/// caller's bytes, nothing is copied. Takes any bytes. All operations return 0, or -1 for a message that is
/// broken or cut short; the sections found before the break stay in the record. Nothing escapes a boundary
/// within a section's data, which ends there.
class cMultipartReader {
  public:
    /// Sections that a message may have; one with more counts as broken.
    static constexpr int kMaxSections = 8192;

    explicit cMultipartReader(zRecord& record) : fRecord(&record) {}

    /// Parses a message that begins with its own headers.
    int Parse_WithHeaders(const char* data, int size);
    /// Parses a message whose headers the caller has read: the body starts at `offset` in `data`.
    int Parse_BodyOnly(const char* data, int size, const char* boundary, int boundaryLength, int offset);
    /// Points `out` at a section's data within the message that was parsed last. On -1 for a section that
    /// does not lie in the message the outputs are cleared; a `size` other than the parsed one leaves them
    /// alone.
    int GetSectionData(const cMultipartRecord::Section& section, const char* data, int size, const char** out,
                       int* outSize) const;

  private:
    int fSize = 0;
    zRecord* fRecord;
};
