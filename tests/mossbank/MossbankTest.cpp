#include "clMossbank.h"

#include <gtest/gtest.h>

#include "zBoot.h"
#include "zStringID.h"

namespace {

zBootIncludeModule gIncludeMossbank(clMossbank::boot_Module);

TEST(MossbankTest, PictureAttributesHaveIdsFromTheStart) {
    for (const char* name :
         {"url", "rect", "font_family", "shadow_offset", "input_count", "default_position", "language"})
        EXPECT_NE(zStringID::Default()->IDForString(name, true), 0) << name;
    EXPECT_EQ(zStringID::Default()->IDForString("not_a_picture_attribute", true), 0);
}

} // namespace
