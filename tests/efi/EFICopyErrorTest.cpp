#include "efi/EFICopyError.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

using enum EFICopyError::Case;

TEST(EFICopyError, DescribesEachCase)
{
    EXPECT_EQ(EFICopyError::copyFailed("disk full").localizedDescription(), "Copy operation failed: disk full");
    EXPECT_EQ(EFICopyError(efiNotMounted).localizedDescription(), "EFI partition is not mounted");
    EXPECT_EQ(EFICopyError(sourceEFINotFound).localizedDescription(), "Source EFI folder not found");
    EXPECT_EQ(EFICopyError(sourceEFIEmpty).localizedDescription(), "Source EFI folder is empty - nothing to copy");
    EXPECT_EQ(EFICopyError(sameSourceAndDestination).localizedDescription(),
              "Source and destination cannot be the same");
    EXPECT_EQ(EFICopyError(verificationFailed).localizedDescription(), "Failed to verify copied files");
    EXPECT_EQ(EFICopyError(userCancelled).localizedDescription(), "Operation cancelled by user");
}

TEST(EFICopyError, TellsItsCase)
{
    EXPECT_EQ(EFICopyError(verificationFailed).which(), verificationFailed);
    EXPECT_EQ(EFICopyError::copyFailed("").which(), copyFailed);
    EXPECT_EQ(EFICopyError(userCancelled).domain(), "EFICopyError");
}

} // namespace
} // namespace brindle
