#pragma once

#include "zString.h"

class zRecord;

/// A multipart message held in a record: a view that owns nothing. The record's variables are the message's
/// own headers, and each child is a section: its data's place and size, then one text variable for each
/// header.
class cMultipartRecord {
  public:
    static constexpr const char* kContentTypeName = "Content-Type";
    static constexpr const char* kContentType = "multipart/related";
    static constexpr const char* kBoundaryName =
        "__quillon_mime_boundry"; ///< Part of the record's format as it is.
    static constexpr const char* kDefaultBoundary = "MimeBoundary_8923gr836bidfb3i";

    /// One section of the message: a view of a child, or empty.
    class Section {
      public:
        Section() = default;
        explicit Section(zRecord* record) : fRecord(record) {}

        /// Sets a header. 0, or -1 if the section is empty.
        int AddHeader(const char* name, const char* value);
        void SetDataSize(int size);
        void SetDataOffset(int offset);
        /// The data's length in bytes; 0 if the section is empty.
        int GetDataSize() const;
        /// Where the data starts, in bytes from the message's start; 0 if the section is empty.
        int GetDataOffset() const;
        /// How many headers there are; -1 if the section is empty.
        int HeaderCount() const;
        /// A header in order of insertion. 0, or -1 with both texts empty.
        int HeaderByIndex(int index, zString& name, zString& value) const;
        /// The lengths in bytes of a header's name and value; either pointer may be null. 0 or -1.
        int HeaderSizeByIndex(int index, int* nameLength, int* valueLength) const;
        /// The value of a header, or `missing` when there is none by that name.
        zString HeaderByName(const char* name, const char* missing) const;
        /// True if the section has a header by that name and with exactly that value.
        bool HasHeader(const char* name, const char* value) const;

      private:
        zRecord* fRecord = nullptr;
    };

    explicit cMultipartRecord(zRecord& record) : fRecord(&record) {}

    /// Appends a section whose data will have `size` bytes; `type` becomes its Content-Type unless it is
    /// null. Returns its index.
    int AddSection(int size, const char* type);
    /// Appends a section as above and returns its record.
    zRecord& AppendSectionRecord(int size, const char* type);
    /// What separates the sections.
    zString GetBoundary() const;
    /// Section by index. 0, or -1 with `section` empty.
    int GetSection(Section& section, int index) const;
    /// The record of a section, or null.
    zRecord* GetSectionRecord(int index) const;
    /// The first section whose header `name` has exactly this value. 0, or -1 with `section` empty.
    int FindSectionBySectionHeaderValue(Section& section, const char* name, const char* value) const;
    /// Sets a header of a section; nothing if there is no such section.
    void AddSectionHeader(int index, const char* name, const char* value);

  private:
    zRecord* fRecord;
};
