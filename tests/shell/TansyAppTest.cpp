#include "shell/TansyApp.h"

#include "base/DefaultsKeys.h"
#include "support/FakeApplicationHost.h"
#include "support/FakeDialogs.h"
#include "support/FakeSystemValues.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "support/MemoryUserDefaults.h"
#include "support/SampleBundle.h"

#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <vector>

namespace brindle {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::SizeIs;

class TansyAppTest : public testing::Test {
protected:
    TansyApp &app()
    {
        if (!m_app)
            m_app.emplace(TansyApp::Surroundings{.bundle = bundle,
                                                 .system = system,
                                                 .defaults = defaults,
                                                 .dialogs = dialogs,
                                                 .application = application});
        return *m_app;
    }

    /// What the About alert says.
    std::string aboutText()
    {
        app().showAbout();
        drainEventLoop();
        return dialogs.alerts.empty() ? "" : dialogs.alerts.back().informativeText;
    }

    LogCapture log;
    BundleInfo bundle = completeBundle();
    FakeSystemValues system;
    MemoryUserDefaults defaults;
    FakeDialogs dialogs;
    std::vector<std::string> journal;
    FakeApplicationHost application{journal};

private:
    std::optional<TansyApp> m_app;
};

TEST_F(TansyAppTest, WritesTheLaunchValidationWithoutAnUpdaterBeforeAnythingElse)
{
    app();

    EXPECT_EQ(log.lines().front(), "🔍 Brindle Launch Validation");
    EXPECT_EQ(log.lines().back(), "✅ Launch validation complete\n");
    EXPECT_THAT(log.lines(), Contains("   - Sparkle Framework: ❌ Missing"));
}

TEST_F(TansyAppTest, WarnsOfTheLegacyIdentifierTwiceInSmallLettersFirst)
{
    bundle.identifier = "com.orlane.Tansy";

    app();

    EXPECT_EQ(log.lines().at(0), "⚠️ WARNING: Using legacy bundle ID 'com.orlane.Tansy'");
    EXPECT_THAT(log.lines(), Contains("⚠️  WARNING: Using LEGACY bundle ID 'com.orlane.Tansy'"));
}

TEST_F(TansyAppTest, ReadsItsModeOnce)
{
    defaults.set(DefaultsKeys::kLaunchMode, "window");
    app();

    defaults.set(DefaultsKeys::kLaunchMode, "menubar");

    EXPECT_EQ(app().currentLaunchMode(), LaunchMode::window);
}

TEST_F(TansyAppTest, OffersAboutAndQuitInGroupsOfTheirOwn)
{
    app();

    ASSERT_THAT(application.menu, SizeIs(2));
    ASSERT_THAT(application.menu[0], SizeIs(1));
    EXPECT_EQ(application.menu[0][0].title, "About Brindle");
    EXPECT_EQ(application.menu[0][0].key, "");
    ASSERT_THAT(application.menu[1], SizeIs(1));
    EXPECT_EQ(application.menu[1][0].title, "Quit Brindle");
    EXPECT_EQ(application.menu[1][0].key, "q");
}

TEST_F(TansyAppTest, ShowsInAboutTheVersionsTheSystemAndTheIdentifier)
{
    app();

    application.menu[0][0].action();
    drainEventLoop();

    ASSERT_THAT(dialogs.alerts, SizeIs(1));
    EXPECT_EQ(dialogs.alerts[0].messageText, "Brindle");
    EXPECT_EQ(dialogs.alerts[0].informativeText,
              "Version 2.3.4 (56)\n\nRunning on macOS 15.1.0\nBundle ID: com.orlane.Brindle");
    EXPECT_EQ(dialogs.alerts[0].style, AlertStyle::informational);
    EXPECT_THAT(dialogs.alerts[0].buttons, ElementsAre("OK"));
}

TEST_F(TansyAppTest, ShowsInAboutWhatStandsInForAMissingVersion)
{
    bundle.shortVersion.reset();
    bundle.version.reset();

    EXPECT_EQ(aboutText(), "Version 1.0 (1)\n\nRunning on macOS 15.1.0\nBundle ID: com.orlane.Brindle");
}

TEST_F(TansyAppTest, ShowsInAboutAnotherSystemByItsOwnName)
{
    system.name = "Debian GNU/Linux";
    system.version = "12";

    EXPECT_EQ(aboutText(), "Version 2.3.4 (56)\n\nRunning on Debian GNU/Linux 12\nBundle ID: com.orlane.Brindle");
}

TEST_F(TansyAppTest, ShowsInAboutTheNameAloneOfASystemWithoutVersions)
{
    system.name = "Rolling Linux";
    system.version.reset();

    EXPECT_EQ(aboutText(), "Version 2.3.4 (56)\n\nRunning on Rolling Linux\nBundle ID: com.orlane.Brindle");
}

} // namespace
} // namespace brindle
