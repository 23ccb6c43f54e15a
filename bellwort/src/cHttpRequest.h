#pragma once

#include <cstddef>
#include <string>

/// One client's request while its bytes come in: text that grows by each read until it is complete. Free of
/// sockets; takes any bytes. However the bytes are cut into reads, each is looked at about once, so that an
/// endless request costs its own bytes and no more.
class cHttpRequest {
  public:
    enum class State {
        kIncomplete, ///< More bytes may complete it.
        kComplete,   ///< Header block and body are there.
        kMalformed,  ///< Neither GET nor POST: no further byte can complete it, and none is kept.
    };

    /// Appends the bytes of one read up to the first NUL; the rest of that read is lost.
    State Append(const char* bytes, size_t size);
    /// Makes room for the next request. Its memory is given back where it was large.
    void Clear();

    /// The whole text, from the request line on.
    const char* Text() const { return fText.c_str(); }

    // The following hold for a complete request.

    /// The method's code, see `cHttpHandler`.
    int Method() const;
    /// What follows the header block, at least as long as Content-Length says.
    const char* Body() const { return fText.c_str() + fBody; }

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

    static constexpr size_t kNotFound = std::string::npos;

    std::string fText;
    size_t fSearchedForLength = 0;  ///< Up to here no Content-Length header has been found.
    size_t fSearchedForBody = 0;    ///< Up to here no end of the header block has been found.
    size_t fLengthText = kNotFound; ///< Where the text of the Content-Length value starts.
    bool fLengthIsFinal = false;    ///< No further byte can change `fContentLength`.
    long fContentLength = 0;
    size_t fBody = kNotFound; ///< Where the body starts.
    bool fMalformed = false;
};
