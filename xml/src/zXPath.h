#pragma once

class zRecord;

/// Finds records of a document by a path, a small subset of XPath.
///
/// "/a/b[@id='x']" names an element at each level, the first of which may be the start record itself. "*" is
/// any element. A level may have one condition, on an attribute's text; the start record need not meet it.
/// The first match at each level is taken, and there is no way back from it.
class zXPath {
  public:
    /// The record, owned by its tree. Null where nothing matches or a condition is malformed; `start` for a
    /// path that does not begin with "/".
    static const zRecord* Exact(const zRecord* start, const char* path);
};
