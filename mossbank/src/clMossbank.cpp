#include "clMossbank.h"

#include "z4CCCC.h"
#include "zBoot.h"
#include "zStringID.h"
#include "zTerrace.h"

namespace {

constexpr int kModuleID = z4CCCC("Mosb");

constexpr const char* kAttributeNames[] = {
    "url",          "rect",          "fit",         "font_family",   "font_size",        "title",
    "text",         "timescale",     "duration",    "text_id",       "font_style",       "shadow",
    "shadow_color", "shadow_offset", "shadow_blur", "width",         "height",           "flow",
    "border",       "gap",           "input_count", "justification", "default_position", "font_id",
    "name",         "language",
};

zBootIncludeModule gInclude(clMossbank::boot_Module);

} // namespace

void clMossbank::boot_Module() {
    zBoot registration(startup, nullptr, kModuleID);
}

void clMossbank::startup() {
    zBoot::Depends(z4CCCC("terr"), zTerrace::boot_Module);
    string_defines();
}

void clMossbank::string_defines() {
    for (const char* name : kAttributeNames)
        zStringID::Default()->IDForString(name, false);
}
