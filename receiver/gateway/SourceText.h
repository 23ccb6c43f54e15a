#pragma once

#include <nlohmann/json_fwd.hpp>

#include "SourceMenu.h"

namespace receiver {

/// "screen", "region" or "window".
const char* KindText(SourceMenu::Item::Kind kind);

/// "kind", "title" and "checked", and the number of its "screen" or its "application".
nlohmann::ordered_json SourceJSON(const SourceMenu::Item& item);

} // namespace receiver
