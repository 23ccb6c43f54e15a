#pragma once

#include <string>
#include <vector>

#include "zRecord.h"

namespace receiver {

class Connection;
class Reply;

/// The sources that a server offers, and the choice of one.
class SourceMenu {
  public:
    /// One thing that can be chosen.
    struct Item {
        enum class Kind { kScreen, kRegion, kWindow };
        Kind kind;
        int screen = -1;         ///< From 0, in the server's order; -1 for a window.
        std::string title;       ///< Of the screen or the window.
        std::string application; ///< Of a window.
        bool isChecked = false;
        int group = 0; ///< Which menu of the tree, and which of its items.
        int index = 0;
    };

    /// Asks the server. False with a reason.
    bool Fetch(Connection& connection, std::string& reason);
    /// Reads the tree out of the reply to "GetMenus". False for what is none.
    bool Read(const Reply& reply);

    const std::vector<Item>& Items() const { return fItems; }
    /// The whole of a screen, or its region; null if there is no such screen.
    const Item* FindScreen(int screen, bool region) const;
    /// The window of that title, else the only one whose title or application contains the text, case
    /// ignored. Null with a reason if there is none or more than one.
    const Item* FindWindow(const std::string& text, std::string& reason) const;

    /// Makes the server show it. False with a reason when the call failed; the server doesn't say whether it
    /// could.
    bool Choose(Connection& connection, const Item& item, std::string& reason) const;

  private:
    void add_items(const zRecord& menu, int group);

    zRecord fTree;
    std::vector<Item> fItems;
};

} // namespace receiver
