#include "cli/BrindlectlFixture.h"

#include <gmock/gmock.h>

namespace brindle {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class InfoCommand : public Brindlectl {};

TEST_F(InfoCommand, PrintsTheDetailsOfADiskAndNothingElse)
{
    machine.addDisk("disk0").named("APPLE SSD").sized("500.3 GB").onBus("PCI-Express");
    machine.addDisk("disk2").named("Stick").sized("30.8 GB").onBus("USB");

    const Outcome info = run({"info", "disk2"});

    EXPECT_EQ(info.status, 0);
    EXPECT_THAT(info.error, IsEmpty());
    EXPECT_THAT(info.output, StartsWith("SMART Status: Verified (Healthy)\n"));
    EXPECT_THAT(info.output, HasSubstr("\nBus / Protocol: USB\nSize: 30.8 GB\n"));
    EXPECT_TRUE(info.output.ends_with("\nIdentifier: disk2\n"));
}

struct UnknownCase {
    const char *name;
    const char *disk;
};

class InfoOfAnUnknownDisk : public InfoCommand, public testing::WithParamInterface<UnknownCase> {};

TEST_P(InfoOfAnUnknownDisk, EndsWithThreeAndPrintsNothing)
{
    machine.addDisk("disk0").withEFI("EFI");
    machine.addDisk("disk4").diskImage();

    const Outcome info = run({"info", GetParam().disk});

    EXPECT_EQ(info.status, 3);
    EXPECT_THAT(info.output, IsEmpty());
    EXPECT_THAT(info.error, HasSubstr(GetParam().disk));
}

INSTANTIATE_TEST_SUITE_P(InfoCommand, InfoOfAnUnknownDisk,
                         testing::Values(UnknownCase{"NotThere", "disk9"}, UnknownCase{"OnlyABeginning", "disk"},
                                         UnknownCase{"APartition", "disk0s1"}, UnknownCase{"AHiddenDisk", "disk4"},
                                         UnknownCase{"Nothing", ""}),
                         [](const auto &row) { return row.param.name; });

TEST_F(InfoCommand, NeverLetsATextOfTheDiskReachTheTerminalAsACommand)
{
    machine.addDisk("disk0").onBus("\x1b[2J\u202EBSU");

    const Outcome info = run({"info", "disk0"});

    EXPECT_THAT(info.output, Not(HasSubstr("\x1b")));
    EXPECT_THAT(info.output, HasSubstr("<U+001B>[2J<U+202E>BSU\n"));
}

TEST_F(InfoCommand, EndsWithTwoWithoutADisk)
{
    const Outcome wrong = run({"info"});

    EXPECT_EQ(wrong.status, 2);
    EXPECT_THAT(wrong.output, IsEmpty());
}

} // namespace
} // namespace brindle
