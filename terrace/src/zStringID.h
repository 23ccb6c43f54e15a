#pragma once

#include <cstddef>
#include <memory>

#include "zBonsai.h"

class zCritical;

/// The dictionary of the process between the names of variables and their numeric ids.
///
/// A name and an id are tied for the life of the process. Any thread may use it; every call takes its lock,
/// so hot code keeps ids instead of names.
class zStringID {
  public:
    /// Bytes of names that the dictionary takes, far more than programs and documents have. Names also come
    /// from clients, and none is ever forgotten.
    static constexpr size_t kMaxBytes = size_t{64} << 20;
    /// Of these, what names from documents may fill: the rest is the program's own.
    static constexpr size_t kMaxDocumentBytes = size_t{32} << 20;

    zStringID();
    ~zStringID();
    zStringID(const zStringID&) = delete;
    zStringID& operator=(const zStringID&) = delete;

    /// The one instance. Startup makes it, so that no two threads meet at its first use.
    static zStringID* Default();
    static void Startup();
    static void Shutdown();

    /// The id of a name in the default instance; a name not seen before gets one.
    static int ID(const char* text);

    /// Ties `id` to a copy of `text`. 0, also for a pair that is tied already; -1 when either is tied to
    /// something else or the dictionary is full. The last argument has no effect.
    int Add(int id, const char* text, bool unused);

    /// The id of a text. An unknown one gives 0 with `findOnly`, otherwise a new id. A null one gives 0, and
    /// so does every new one when the dictionary is full.
    int IDForString(const char* text, bool findOnly);

    /// The id of a name that a document brought, which may come from anyone. 0 for a null one, and for a new
    /// one when documents have filled their share.
    int IDForDocumentString(const char* text);

    /// The text of an id, owned by this object, or `defaultText` for an unknown id.
    const char* StringForID(int id, const char* defaultText);

    /// An id that is not in use, from the series of made-up ids. The text has no influence on it.
    int generate_unique_id(const char* text);

  private:
    int find_by_text(const char* text);
    bool has_id(int id);
    int find_or_make(const char* text, size_t maxBytes);
    bool has_room_for(const char* text, size_t maxBytes) const;
    void add_pair(int id, const char* text);

    zBonsai fByText;
    zBonsai fByID; // both trees point at one copy of each text
    std::unique_ptr<zCritical> fCritical;
    size_t fBytes = 0;
    int fNextUnique = 1;
};
