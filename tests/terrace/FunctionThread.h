#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "zThread.h"

/// A thread of the library's own that runs a function.
inline std::unique_ptr<zThread> StartThread(std::function<int()> function, char flags = 0,
                                            char priority = zThread::kNormalPriority) {
    class Body : public zThreadMain {
      public:
        explicit Body(std::function<int()> work) : fWork(std::move(work)) {}
        int Main(int, const char**) override { return fWork(); }

      private:
        std::function<int()> fWork;
    };
    return std::unique_ptr<zThread>(zThread::Factory(
        "test", new Body(std::move(function)), static_cast<char>(flags | zThread::kDeleteMain), priority));
}
