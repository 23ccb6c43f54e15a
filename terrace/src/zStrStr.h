#pragma once

#include <memory>

#include "zBonsai.h"

class zCritical;

/// A locked map from text to text. It holds copies; any thread may use it.
class zStrStr {
  public:
    zStrStr();
    ~zStrStr();
    zStrStr(const zStrStr&) = delete;
    zStrStr& operator=(const zStrStr&) = delete;

    /// 0, or -1 when the key exists; its value then stays.
    int Add(const char* key, const char* value);

    /// The stored value, valid for the life of this object, or `defaultValue`.
    const char* Lookup(const char* key, const char* defaultValue);

    void DEBUG_Print();

  private:
    zBonsai fTree;
    std::unique_ptr<zCritical> fCritical;
};
