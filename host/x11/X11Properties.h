#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "X11Connection.h"

namespace host {

/// Names of properties and of values of theirs, in the order of kX11AtomNames.
enum class X11Atom {
    kActiveWindow,
    kClientList,
    kClientListStacking,
    kSupportingCheck,
    kName,
    kPid,
    kWindowType,
    kTypeDesktop,
    kTypeDock,
    kTypeNotification,
    kTypeDragged,
    kFrameExtents,
    kShadowExtents,
    kGtkApplication,
    kDesktopFile,
    kClientLeader,
    kClass,
    kClientMachine,
    kHints,
    kLegacyName,
    kCount
};

/// The properties of windows. A question is sent at once and its answer fetched later, so that many share a
/// round trip; each question's answer has to be fetched. A window that is gone has no properties. Any thread.
class X11Properties {
  public:
    /// Asks the server for the atoms.
    explicit X11Properties(const X11Connection& connection);

    /// 0 with a server that went away.
    uint32_t Atom(X11Atom atom) const { return fAtoms[static_cast<size_t>(atom)]; }

    /// What Ask gave.
    struct Question {
        unsigned int sequence;
    };
    Question Ask(uint32_t window, X11Atom name) const;

    /// The answer as bytes, cut at a length that no honest text reaches; nothing without such a property.
    std::optional<std::string> Bytes(Question question) const;
    /// The answer as a line of UTF-8.
    std::optional<std::string> Text(Question question) const;
    /// The answer as 32-bit numbers; nothing when it is anything else.
    std::optional<std::vector<uint32_t>> Numbers(Question question) const;
    /// The answer's number at \p index, or 0.
    uint32_t Number(Question question, size_t index = 0) const;

    /// Asks and waits.
    uint32_t NumberOf(uint32_t window, X11Atom name) const { return Number(Ask(window, name)); }

  private:
    xcb_connection_t* fXcb;
    std::array<uint32_t, static_cast<size_t>(X11Atom::kCount)> fAtoms{};
};

} // namespace host
