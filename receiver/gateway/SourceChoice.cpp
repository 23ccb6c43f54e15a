#include "SourceChoice.h"

#include <nlohmann/json.hpp>

#include "Connection.h"
#include "SourceMenu.h"
#include "SourceText.h"

namespace receiver {

namespace {

using nlohmann::ordered_json;

enum Status { kFine = 200, kBadRequest = 400, kNotFound = 404, kBadGateway = 502, kBusy = 503 };

constexpr double kCallSeconds = 3; ///< A server that offers no choice may say nothing at all.

SourceChoice::Answer answer(Status status, const ordered_json& json) {
    return {status, json.dump(-1, ' ', false, ordered_json::error_handler_t::replace)};
}

SourceChoice::Answer failure(Status status, const std::string& reason) {
    return answer(status, {{"error", reason}});
}

/// The item that is asked for; null with a reason.
const SourceMenu::Item* find(const SourceMenu& menu, const ordered_json& wish, std::string& reason) {
    if (wish.contains("window"))
        return menu.FindWindow(wish["window"].get<std::string>(), reason);
    const int screen = wish["screen"].get<int>();
    const auto* item = menu.FindScreen(screen, wish.value("region", false));
    if (!item)
        reason = "there is no screen " + std::to_string(screen);
    return item;
}

bool is_wish(const ordered_json& json) {
    if (!json.is_object())
        return false;
    if (json.contains("window"))
        return json["window"].is_string();
    return json.contains("screen") && json["screen"].is_number_integer() &&
           (!json.contains("region") || json["region"].is_boolean());
}

} // namespace

SourceChoice::Answer SourceChoice::List() {
    const std::unique_lock lock(fMutex, std::try_to_lock);
    if (!lock)
        return failure(kBusy, "the server is being asked already; try again");
    Connection connection(fServer, &fInterruption, {.seconds = kCallSeconds});
    SourceMenu menu;
    std::string reason;
    if (!menu.Fetch(connection, reason))
        return failure(kBadGateway, reason);
    ordered_json list = ordered_json::array();
    for (const SourceMenu::Item& item : menu.Items())
        list.push_back(SourceJSON(item));
    return answer(kFine, {{"sources", list}});
}

SourceChoice::Answer SourceChoice::Choose(const std::string& json) {
    const ordered_json wish = ordered_json::parse(json, nullptr, false);
    if (!is_wish(wish))
        return failure(kBadRequest, R"(ask with {"screen": 0, "region": false} or {"window": "its title"})");
    const std::unique_lock lock(fMutex, std::try_to_lock);
    if (!lock)
        return failure(kBusy, "the server is being asked already; try again");
    Connection connection(fServer, &fInterruption, {.seconds = kCallSeconds});
    SourceMenu menu;
    std::string reason;
    if (!menu.Fetch(connection, reason))
        return failure(kBadGateway, reason);
    const SourceMenu::Item* item = find(menu, wish, reason);
    if (!item)
        return failure(kNotFound, reason);
    if (!menu.Choose(connection, *item, reason))
        return failure(kBadGateway, reason);
    return answer(kFine, {{"chosen", SourceJSON(*item)}});
}

} // namespace receiver
