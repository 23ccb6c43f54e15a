#include <gtest/gtest.h>

#include <string>

#include "z4CCCC.h"
#include "zBoot.h"
#include "zTerrace.h"

namespace {

std::string gCalls;

template <char Name>
void start() {
    gCalls += Name;
}

template <char Name>
void stop() {
    gCalls += static_cast<char>(Name - 'A' + 'a');
}

void nothing() {}

void start_a_on_b() {
    zBoot::Depends(z4CCCC("tstB"), nothing);
    start<'A'>();
}

} // namespace

// The shutdown that the tests' main program runs in the end cannot be seen from here, so this test runs the
// registry through lives of its own and boots the library again afterwards.
TEST(Boot, ModulesStartByDependencyAndStopInReverse) {
    gCalls.clear();
    zBoot::Shutdown();
    zBoot(start<'N'>, stop<'N'>, z4CCCC("tstN"));
    zBoot::Shutdown();
    EXPECT_EQ(gCalls, "") << "what never started is not stopped";
    zBoot(start_a_on_b, stop<'A'>, z4CCCC("tstA"));
    zBoot(start<'B'>, stop<'B'>, z4CCCC("tstB"));
    zBoot(start<'X'>, stop<'X'>, z4CCCC("tstB"));
    zBoot(nullptr, nullptr, z4CCCC("tstC"));
    zBoot::Startup();
    EXPECT_EQ(gCalls, "BA") << "a second registration of an id counts for nothing";
    zBoot::Depends(z4CCCC("none"), nothing);
    zBoot(start<'L'>, stop<'L'>, z4CCCC("tstL"));
    EXPECT_EQ(gCalls, "BAL") << "a late module starts at once";
    zBoot::Startup();
    zBoot::Shutdown();
    EXPECT_EQ(gCalls, "BALlab");

    zBoot(zTerrace::Startup, zTerrace::Shutdown, zTerrace::kModuleID);
    zBoot::Startup();
}
