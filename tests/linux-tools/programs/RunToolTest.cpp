#include "command/Command.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace brindle::tools {
namespace {

using testing::EndsWith;

int refuse(Context &context, Arguments)
{
    context.out = "half of it";
    throw std::filesystem::filesystem_error("cannot read", "/mnt/\x1b[2J",
                                            std::make_error_code(std::errc::permission_denied));
}

TEST(RunTool, TellsWhatWentWrongInsteadOfAborting)
{
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();

    const int status = runTool(refuse, 0, nullptr);

    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                EndsWith(": filesystem error: cannot read: Permission denied [/mnt/\uFFFD[2J]\n"));
    EXPECT_EQ(status, kFailed);
}

} // namespace
} // namespace brindle::tools
