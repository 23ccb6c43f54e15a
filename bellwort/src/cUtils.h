#pragma once

#include "zString.h"

class zRecord;

/// What multipart messages need beside their records: parsing of header blocks and header values, and the two
/// texts by which an XML document points at a section.
class cUtils {
  public:
    /// A header's name must be shorter than this, in bytes; a longer one drops its header.
    static constexpr int kMaxHeaderName = 255;
    /// Variables of a record that takes headers; from then on headers are dropped, as each is looked for
    /// among the others.
    static constexpr unsigned int kMaxHeaders = 512;

    /// Reads a header block into text variables of `record`, named as the headers. A line that is no header
    /// is skipped. Returns the offset of the empty line that ends the block, or `size` where there is none.
    static int HeaderParse(const char* data, int size, zRecord& record);
    /// Takes one line: returns how many bytes it has with its line end, and its length without. `colon` is
    /// set to its first ":" if it was null.
    static int HeaderParse_ToNextLine(const char* data, int size, int* length, const char** colon);

    /// Takes the first entry of a header value such as `type; name=value`: its name (null without "=") and
    /// value, white space around either left out. Returns the start of the next entry, or null behind the
    /// last.
    static const char* HeaderEntry_ParseToNextEntry(const char* text, const char** name, int* nameLength,
                                                    const char** value, int* valueLength);
    /// The value of the entry by this name, case ignored, in place and without any treatment of quotes. 0 or
    /// -1.
    static int HeaderEntry_FindByName(const char* text, const char* name, const char** value,
                                      int* valueLength);

    /// The text by which a document refers to the section with this id.
    static void XOP_MakeReference(zString& reference, const char* id);
    /// The value of that section's Content-ID header.
    static void XOP_MakeContentIDHeaderString(zString& header, const char* id);
};
