#pragma once

#include "zString.h"

class zRecord;

/// Makes the texts of a multipart message from its record (see `cMultipartRecord`). The sections' data stays
/// where it is: whoever sends puts each section's header, its data and a line end between sections on the
/// wire, then the footer. Nothing is owned; each text replaces what the string held, and its characters are
/// returned.
class cMultipartWriter {
  public:
    explicit cMultipartWriter(zRecord& record) : fRecord(&record) {}

    /// The message's own headers, with the blank line behind them if `blankLine`.
    const char* GetHttpHeader(zString& text, bool blankLine);
    /// A section's boundary line, headers and blank line.
    const char* GetSectionHeader(zString& text, int index);
    /// The closing delimiter. No line end stands behind it.
    const char* GetMessageFooter(zString& text);
    /// The exact size in bytes of the message from the first boundary line on, by the sizes that the sections
    /// declare.
    long ContentLength();

  private:
    void set_content_type();

    zRecord* fRecord;
};
