// What the rows of the demo machine show, as JSON.

#include "cli/DiskRowsText.h"

#include "assembly/Assembly.h"
#include "assembly/DemoMachine.h"
#include "base/BlockOn.h"
#include "base/DefaultsKeys.h"
#include "cli/BrindlectlFixture.h"
#include "support/Fixtures.h"
#include "support/LogCapture.h"
#include "support/Patience.h"

#include <vector>

namespace brindle {
namespace {

TEST_F(Brindlectl, TellsTheRowsOfTheDemoMachineAsReviewed)
{
    const Outcome rows = run({"rows", "--demo", "--json"});

    EXPECT_EQ(rows.status, 0);
    EXPECT_EQ(rows.error, "");
    expectGolden("demo-rows.json", rows.output);
}

TEST(DemoRows, TellSpaceAndHealthAsReviewedWhereTheSettingsAreOn)
{
    const LogCapture quiet;
    const DemoMachine demo;
    Assembly assembly(makePlatform(demo.platformChanges()));
    assembly.userDefaults().set(DefaultsKeys::kShowDiskSpaceIndicator, true);
    assembly.userDefaults().set(DefaultsKeys::kShowSMARTStatus, true);
    blockOn(assembly.diskManager().startScan(false), kPatience);

    DiskRowContent row;
    row.readSettings(assembly.userDefaults());
    std::vector<DiskRowContent> rows;
    for (const PhysicalDisk &disk : assembly.diskManager().disks()) {
        row.disk = disk;
        rows.push_back(row);
    }

    expectGolden("demo-rows-with-space-and-health.json", diskRowsJson(rows));
}

} // namespace
} // namespace brindle
