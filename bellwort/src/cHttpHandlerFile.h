#pragma once

#include "cHttpHandler.h"

/// Serves the files below a folder over GET.
///
/// It does not confine paths: a URL with parent steps leads out of the folder, to every file that the program
/// may read. So it is for clients that are trusted with all of them; no program installs it as it is.
class cHttpHandlerFile : public cHttpHandler {
  public:
    /// The URL, which starts with "/", is appended to `root`.
    explicit cHttpHandlerFile(const char* root) : fRoot(root) {}

    /// True for GET alone.
    bool CanHandle(int method, const zString& url, const zString& extension, const zString& query,
                   const char* text) override;
    /// 0, or -1 after the not-found page.
    int Handle(zSocket* socket, int method, const zString& url, const zString& extension,
               const zString& query, const char* body) override;

  private:
    const zString fRoot;
};
