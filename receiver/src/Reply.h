#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "zBuffer.h"
#include "zRecord.h"

namespace receiver {

/// The body of a server's reply, taken apart: an XML document, and in a multipart message binary sections
/// behind it. Takes any bytes.
class Reply {
  public:
    /// A section's data, which lie in the body, and its type as far as ";".
    struct Section {
        std::string type;
        std::span<const uint8_t> data;
    };

    /// Reads the body of a reply of this content type. The bytes stay the caller's and must outlive the
    /// sections. False with one line of reason for what is no reply of a server.
    bool Parse(std::string_view contentType, std::span<const char> body, std::string& reason);

    /// The document's root element's parent: its first child is the element.
    const zRecord& Document() const { return fDocument; }
    /// The root element.
    const zRecord& Element() const;
    /// By the numbers that the document's attributes use; the first, number 0, is the document itself.
    const std::vector<Section>& Sections() const { return fSections; }

  private:
    bool parse_multipart(std::string_view contentType, std::span<const char> body);
    bool parse_document(std::span<const uint8_t> text);

    zRecord fDocument;
    std::vector<Section> fSections;
};

} // namespace receiver
