#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "zBuffer.h"
#include "zRecord.h"

namespace receiver {

/// A server's reply: its body, taken apart into an XML document, and in a multipart message binary sections
/// behind it.
class Reply {
  public:
    /// A section's data, which lie in the body, and its type as far as ";".
    struct Section {
        std::string type;
        std::span<const uint8_t> data;
    };

    /// The XML of a reply has some hundred bytes, that of menus some thousand. More is refused: a record
    /// takes many times what its element does.
    static constexpr size_t kMaxDocument = size_t{1} << 20;

    /// What came, for the one who receives it. The sections point into it.
    zBuffer& Body() { return fBody; }

    /// Takes the body, any bytes, apart by its content type. False with one line of reason for what is no
    /// reply of a server.
    bool Parse(std::string_view contentType, std::string& reason);

    /// The document's root element.
    const zRecord& Element() const { return fDocument; }
    /// By the numbers that the document's attributes use; the first, number 0, is the document itself.
    const std::vector<Section>& Sections() const { return fSections; }

  private:
    bool parse_multipart(const std::string& contentType);
    bool parse_document(std::span<const uint8_t> text);

    zBuffer fBody;
    zRecord fDocument;
    std::vector<Section> fSections;
};

} // namespace receiver
