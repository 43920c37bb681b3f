#include "hardware/PciNames.h"
#include "hardware/UdevProperties.h"

#include <gtest/gtest.h>

namespace brindle::tools {
namespace {

constexpr std::string_view kDatabase = "# a comment\n"
                                       "1002  Advanced Micro Devices, Inc. [AMD/ATI]\n"
                                       "\t67df  Ellesmere [Radeon RX 470/480/570/580]\n"
                                       "\t\t1002 0b37  Radeon RX 480\n"
                                       "# a comment between devices\n"
                                       "\t67ef  Baffin [Radeon RX 460]\n"
                                       "10de  NVIDIA Corporation\n"
                                       "\t1b80  GP104 [GeForce GTX 1080]\n"
                                       "\t67d0  Another maker's\n"
                                       "8086  Intel Corporation\n"
                                       "\t3e92  CoffeeLake-S GT2 [UHD Graphics 630]";

TEST(PciNames, FindsVendorAndDevice)
{
    const PciNames names = findPciNames(kDatabase, 0x1002, 0x67df);

    EXPECT_EQ(names.vendor, "Advanced Micro Devices, Inc. [AMD/ATI]");
    EXPECT_EQ(names.device, "Ellesmere [Radeon RX 470/480/570/580]");
}

TEST(PciNames, FindsADeviceBehindACommentAndOneInTheLastLine)
{
    EXPECT_EQ(findPciNames(kDatabase, 0x1002, 0x67ef).device, "Baffin [Radeon RX 460]");
    EXPECT_EQ(findPciNames(kDatabase, 0x8086, 0x3e92).device, "CoffeeLake-S GT2 [UHD Graphics 630]");
}

TEST(PciNames, GivesNoDeviceOfAnotherVendor)
{
    const PciNames names = findPciNames(kDatabase, 0x1002, 0x67d0);

    EXPECT_EQ(names.vendor, "Advanced Micro Devices, Inc. [AMD/ATI]");
    EXPECT_EQ(names.device, "");
}

TEST(PciNames, TakesNoSubsystemForADevice)
{
    EXPECT_EQ(findPciNames(kDatabase, 0x1002, 0x1002).device, "");
}

TEST(PciNames, FindsNothingInAnEmptyDatabase)
{
    EXPECT_EQ(findPciNames("", 0x1002, 0x67df).vendor, "");
}

TEST(PciNames, ReadsTheNamesThatUdevKeeps)
{
    const PciNames names =
        pciNames(UdevProperties("I:12\nE:ID_VENDOR_FROM_DATABASE=Intel Corporation\n"
                                "E:ID_MODEL_FROM_DATABASE=Alder Lake-P GT2 [Iris Xe Graphics]\nQ:seat\n"));

    EXPECT_EQ(names.vendor, "Intel Corporation");
    EXPECT_EQ(names.device, "Alder Lake-P GT2 [Iris Xe Graphics]");
}

struct CardCase {
    const char *name;
    PciNames names;
    std::uint16_t vendorId;
    const char *card;
};

class NamesTheCard : public testing::TestWithParam<CardCase> {};

TEST_P(NamesTheCard, AsItsBoxDoes)
{
    EXPECT_EQ(cardName(GetParam().names, GetParam().vendorId, 0x0a1b), GetParam().card);
}

INSTANTIATE_TEST_SUITE_P(PciNames, NamesTheCard,
                         testing::Values(CardCase{"inBrackets",
                                                  {"NVIDIA Corporation", "GP104 [GeForce GTX 1080]"},
                                                  0x10de,
                                                  "NVIDIA GeForce GTX 1080"},
                                         CardCase{"vendorInName", {"x", "G1 [Intel UHD]"}, 0x8086, "Intel UHD"},
                                         CardCase{"withoutBrackets",
                                                  {"Red Hat, Inc.", "QXL paravirtual graphic card"},
                                                  0x1b36,
                                                  "Red Hat QXL paravirtual graphic card"},
                                         CardCase{"brokenBrackets", {"x", "G1 ]["}, 0x8086, "Intel G1 ]["},
                                         CardCase{"unknownDevice", {}, 0x1002, "AMD Graphics (0x0a1b)"},
                                         CardCase{"otherVendor", {"Matsu, Ltd.", "Chip"}, 0x9999, "Matsu Chip"},
                                         CardCase{"unknownVendor", {}, 0x9999, "Graphics (0x9999 0x0a1b)"}),
                         [](const auto &info) { return info.param.name; });

} // namespace
} // namespace brindle::tools
