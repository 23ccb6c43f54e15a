#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

/// Text that grows at its end. Its memory comes from `realloc`, which moves large blocks without copying
/// them, so that a text of many megabytes grows without a pause. Always ended by a NUL.
class cHttpText {
  public:
    /// False, with the text as it was, if the machine has no memory for it.
    bool Append(const char* bytes, size_t size);
    /// Empties the text; keeps a small block for the next one.
    void Clear();
    const char* Data() const { return fBlock ? fBlock.get() : ""; }
    size_t Size() const { return fSize; }
    std::string_view View() const { return {Data(), fSize}; }

  private:
    struct Free {
        void operator()(char* block) const { free(block); }
    };
    bool make_room(size_t size);

    std::unique_ptr<char, Free> fBlock;
    size_t fSize = 0;
    size_t fCapacity = 0; ///< Without the NUL.
};

/// One client's request while its bytes come in: text that grows by each read until it is complete. Free of
/// sockets; takes any bytes. However the bytes are cut into reads, each is looked at about once, so that an
/// endless request costs its own bytes and no more.
class cHttpRequest {
  public:
    enum class State {
        kIncomplete, ///< More bytes may complete it.
        kComplete,   ///< Header block and body are there.
        kMalformed,  ///< Neither GET nor POST: no further byte can complete it, and none is kept.
        kTooLarge,   ///< The machine has no memory for more of it.
    };

    /// Appends the bytes of one read up to the first NUL; the rest of that read is lost.
    State Append(const char* bytes, size_t size);
    /// Makes room for the next request. Its memory is given back where it was large.
    void Clear();

    /// The whole text, from the request line on.
    const char* Text() const { return fText.Data(); }

    // The following hold for a complete request.

    /// The method's code, see `cHttpHandler`.
    int Method() const;
    /// What follows the header block, at least as long as Content-Length says.
    const char* Body() const { return fText.Data() + fProgress.body; }

    /// The pieces of the request line: the URL up to a "?", what follows its last dot, and what follows the
    /// "?".
    struct Target {
        std::string url;
        std::string extension;
        std::string query;
    };
    Target ParseTarget() const;

  private:
    bool is_malformed() const;
    void find_content_length();
    void find_body();
    State state();
    void read_content_length();

    static constexpr size_t kNotFound = std::string_view::npos;

    /// What is known about the text so far.
    struct Progress {
        size_t searchedForLength = 0;  ///< Up to here no Content-Length header has been found.
        size_t searchedForBody = 0;    ///< Up to here no end of the header block has been found.
        size_t lengthText = kNotFound; ///< Where the text of the Content-Length value starts.
        bool lengthIsFinal = false;    ///< No further byte can change `contentLength`.
        long contentLength = 0;
        size_t body = kNotFound; ///< Where the body starts.
        bool malformed = false;
    };

    cHttpText fText;
    Progress fProgress;
};
