#include "base/CancellationToken.h"

#include <gtest/gtest.h>

#include <optional>

namespace brindle {
namespace {

TEST(CancellationToken, ReachesEveryCopyOnce)
{
    const auto token = CancellationToken::cancellable();
    const CancellationToken copy = token;
    int calls = 0;
    const auto registration = copy.onCancel([&] { ++calls; });

    token.cancel();
    token.cancel();

    EXPECT_TRUE(copy.isCancelled());
    EXPECT_EQ(calls, 1);
}

TEST(CancellationToken, ForgetsACallbackWhoseRegistrationHasEnded)
{
    const auto token = CancellationToken::cancellable();
    int calls = 0;
    {
        const auto registration = token.onCancel([&] { ++calls; });
    }

    token.cancel();

    EXPECT_EQ(calls, 0);
}

TEST(CancellationToken, LetsACallbackEndAnothersRegistration)
{
    const auto token = CancellationToken::cancellable();
    int calls = 0;
    std::optional<CancellationToken::Registration> second;
    const auto first = token.onCancel([&] { second.reset(); });
    second = token.onCancel([&] { ++calls; });

    token.cancel();

    EXPECT_EQ(calls, 0);
}

TEST(CancellationToken, CallsNobodyWhoComesAfterTheCancellation)
{
    const auto token = CancellationToken::cancellable();
    token.cancel();
    int calls = 0;

    const auto registration = token.onCancel([&] { ++calls; });
    token.cancel();

    EXPECT_EQ(calls, 0);
}

TEST(CancellationToken, IsNeverCancelledWhenMadeByDefault)
{
    const CancellationToken token;

    token.cancel();

    EXPECT_FALSE(token.isCancelled());
}

} // namespace
} // namespace brindle
