#pragma once

#include <cstdlib>
#include <memory>

namespace host {

struct X11ReplyDeleter {
    void operator()(void* reply) const { std::free(reply); }
};

/// A reply, error or event of the X library, which allocates them with malloc.
template <class T>
using X11Reply = std::unique_ptr<T, X11ReplyDeleter>;

} // namespace host
