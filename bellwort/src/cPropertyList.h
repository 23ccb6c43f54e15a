#pragma once

#include "zRecord.h"

class zString;

/// Reads a property list in its XML form. A value is a record: the element that holds it, owned by the list.
///
/// A value that is null or of another type than asked for is none, so that questions can be chained.
class cPropertyList {
  public:
    /// 0, or -1 when the text is no property list; the list is then empty.
    int Parse(const char* text, int length);

    /// The outermost value; null when there is none.
    const zRecord* Root() const;

    /// The value of a dictionary's key, or null.
    static const zRecord* Find(const zRecord* dictionary, const char* key);

    static bool IsDictionary(const zRecord* value);
    static bool IsArray(const zRecord* value);

    /// The elements of an array and, with their keys between them, the values of a dictionary, for a loop.
    static const zList<zRecord*>& Elements(const zRecord& value) { return value.Children(); }

    // These return false, with the output as it was, for a value of another type.

    /// Also for a number that is no whole one or too large.
    static bool AsInt32(const zRecord* value, int& number);
    static bool AsBool(const zRecord* value, bool& truth);
    static bool AsString(const zRecord* value, zString& text);

  private:
    static bool is(const zRecord* value, const char* tag);

    zRecord fDocument;
};
