#include "SourceText.h"

#include <nlohmann/json.hpp>

namespace receiver {

const char* KindText(SourceMenu::Item::Kind kind) {
    switch (kind) {
    case SourceMenu::Item::Kind::kScreen:
        return "screen";
    case SourceMenu::Item::Kind::kRegion:
        return "region";
    default:
        return "window";
    }
}

nlohmann::ordered_json SourceJSON(const SourceMenu::Item& item) {
    nlohmann::ordered_json json{
        {"kind", KindText(item.kind)}, {"title", item.title}, {"checked", item.isChecked}};
    if (item.kind == SourceMenu::Item::Kind::kWindow)
        json["application"] = item.application;
    else
        json["screen"] = item.screen;
    return json;
}

} // namespace receiver
