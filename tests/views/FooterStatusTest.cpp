#include "views/FooterStatus.h"

#include <gtest/gtest.h>

#include <ostream>

namespace brindle {
namespace {

struct FooterCase {
    const char *name;
    FooterInput input;
    FooterStatus status;

    friend std::ostream &operator<<(std::ostream &out, const FooterCase &row) { return out << row.name; }
};

class FooterStatusTest : public testing::TestWithParam<FooterCase> {};

TEST_P(FooterStatusTest, TellsTheFirstThatApplies)
{
    EXPECT_EQ(footerStatus(GetParam().input), GetParam().status);
}

const FooterCase kCases[] = {
    {"ReadyInTheWindow", {}, {.text = "Ready"}},
    {"NothingInThePopover", {.isWindow = false}, {}},
    {"ScanBeforeReady", {.isLoadingDisks = true}, {.spinnerScale = 0.45, .text = "Scanning disks..."}},
    {"CopyBeforeScan",
     {.efiCopyStatus = "Copying", .efiCopyInProgress = true, .isLoadingDisks = true},
     {.spinnerScale = 0.55, .text = "Copying"}},
    {"OperationBeforeCopy",
     {.isPerformingOperation = true,
      .statusMessage = "Mounting",
      .efiCopyStatus = "Copying",
      .efiCopyInProgress = true},
     {.spinnerScale = 0.45, .text = "Mounting"}},
    {"OperationWithoutAMessage",
     {.isPerformingOperation = true, .isLoadingDisks = true},
     {.spinnerScale = 0.45, .text = "Scanning disks..."}},
    {"MessageWithoutAnOperation", {.statusMessage = "Mounting"}, {.text = "Ready"}},
    {"CopySucceeded",
     {.efiCopyStatus = "EFI copied successfully"},
     {.symbol = "checkmark.circle.fill", .symbolColor = Colors::kGreen, .text = "EFI copied successfully"}},
    {"SuccessBeatsFailure",
     {.efiCopyStatus = "failed successfully"},
     {.symbol = "checkmark.circle.fill", .symbolColor = Colors::kGreen, .text = "failed successfully"}},
    {"CopyFailed",
     {.efiCopyStatus = "Operation failed: no space"},
     {.symbol = "xmark.circle.fill", .symbolColor = Colors::kRed, .text = "Operation failed: no space"}},
    {"CopyCancelled",
     {.efiCopyStatus = "Operation cancelled"},
     {.symbol = "xmark.circle.fill", .symbolColor = Colors::kRed, .text = "Operation cancelled"}},
    {"CapitalLetterShowsNoSymbol", {.efiCopyStatus = "Failed"}, {.text = "Failed"}},
    {"NoSymbolWhileItRuns",
     {.efiCopyStatus = "verified successfully", .efiCopyInProgress = true},
     {.spinnerScale = 0.55, .text = "verified successfully"}},
};

INSTANTIATE_TEST_SUITE_P(Cases, FooterStatusTest, testing::ValuesIn(kCases),
                         [](const auto &row) { return row.param.name; });

} // namespace
} // namespace brindle
