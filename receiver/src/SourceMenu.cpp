#include "SourceMenu.h"

#include <strings.h>

#include "Connection.h"
#include "zXMLRPC.h"

namespace receiver {

namespace {

constexpr const char* kScreenID = "net.merrowfield.glasspane.screendevice";

bool contains(const std::string& text, const std::string& part) {
    return strcasestr(text.c_str(), part.c_str()) != nullptr;
}

std::string text_of(const zRecord& record, const char* name) {
    char number[64];
    return record.AsCString(name, "", &number);
}

} // namespace

bool SourceMenu::Fetch(Connection& connection, std::string& reason) {
    Reply reply;
    if (!connection.Call("GetMenus", reply, reason))
        return false;
    if (Read(reply))
        return true;
    reason = connection.Server().Text() + " offers no choice of sources";
    return false;
}

bool SourceMenu::Read(const Reply& reply) {
    fItems.clear();
    fTree.MakeEmpty();
    if (zXMLRPC(reply.Element()).GetZRecordParam(0, fTree) != 0)
        return false;
    int group = 0;
    for (const zRecord* menu : fTree.Children())
        add_items(*menu, group++);
    return true;
}

void SourceMenu::add_items(const zRecord& menu, int group) {
    const bool isScreen = text_of(menu, "id") == kScreenID;
    int index = 0;
    for (const zRecord* child : menu.Children()) {
        Item item;
        item.kind = !isScreen                            ? Item::Kind::kWindow
                    : child->AsBool("fullScreen", false) ? Item::Kind::kScreen
                                                         : Item::Kind::kRegion;
        if (isScreen)
            item.screen = menu.AsInt32("device_index", -1);
        else
            item.application = text_of(menu, "title");
        item.title = text_of(isScreen ? menu : *child, "title");
        item.isChecked = child->AsBool("checked", false);
        item.group = group;
        item.index = index++;
        fItems.push_back(std::move(item));
    }
}

const SourceMenu::Item* SourceMenu::FindScreen(int screen, bool region) const {
    const auto kind = region ? Item::Kind::kRegion : Item::Kind::kScreen;
    for (const Item& item : fItems)
        if (item.kind == kind && item.screen == screen)
            return &item;
    return nullptr;
}

const SourceMenu::Item* SourceMenu::FindWindow(const std::string& text, std::string& reason) const {
    const Item* found = nullptr;
    int count = 0;
    for (const Item& item : fItems) {
        if (item.kind != Item::Kind::kWindow)
            continue;
        if (item.title == text)
            return &item;
        if (contains(item.title, text) || contains(item.application, text)) {
            found = &item;
            ++count;
        }
    }
    if (count == 1)
        return found;
    reason = count == 0
                 ? "no window is called '" + text + "'; the command menus lists them"
                 : "'" + text + "' fits several windows; give the whole title, as the command menus lists it";
    return nullptr;
}

bool SourceMenu::Choose(Connection& connection, const Item& item, std::string& reason) const {
    const zRecord* menu = fTree.Child(static_cast<unsigned int>(item.group));
    const zRecord* child = menu ? menu->Child(static_cast<unsigned int>(item.index)) : nullptr;
    if (!child) {
        reason = "the menu has changed";
        return false;
    }
    zRecord chosen;
    chosen.Copy(*menu, false, false);
    chosen.AddChild(new zRecord(*child));
    zRecord call;
    zXMLRPC view(call);
    view.SetMethod("SetSourceFromMenuItem");
    view.AppendZRecordParam(chosen);
    Reply reply;
    return connection.Call(call, reply, reason);
}

} // namespace receiver
