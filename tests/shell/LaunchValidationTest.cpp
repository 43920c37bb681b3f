#include "shell/LaunchValidation.h"

#include "support/FakeSystemValues.h"
#include "support/LogCapture.h"
#include "support/SampleBundle.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace brindle {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

using Lines = std::vector<std::string>;

class LaunchValidationTest : public testing::Test {
protected:
    Lines report()
    {
        const LogCapture log;
        writeLaunchValidation({.bundle = bundle, .system = system, .hasUpdater = hasUpdater});
        return log.lines();
    }

    /// The lines from the one that begins with \a first up to the one that begins with \a end.
    Lines block(const std::string &first, const std::string &end)
    {
        const Lines all = report();
        const auto beginsWith = [](const std::string &text) {
            return [text](const std::string &line) { return line.starts_with(text); };
        };
        return {std::ranges::find_if(all, beginsWith(first)), std::ranges::find_if(all, beginsWith(end))};
    }

    Lines identifierBlock(std::optional<std::string> identifier)
    {
        bundle.identifier = std::move(identifier);
        Lines lines = block("🔍", "🖥️");
        lines.erase(lines.begin());
        return lines;
    }
    Lines systemBlock(std::optional<std::string> version)
    {
        system.version = std::move(version);
        return block("🖥️", "📱");
    }
    Lines nameBlock() { return block("📱", "📚"); }

    BundleInfo bundle = completeBundle();
    FakeSystemValues system;
    bool hasUpdater = true;
};

TEST_F(LaunchValidationTest, WritesTheBlocksInTheirOrder)
{
    EXPECT_THAT(
        report(),
        ElementsAre("🔍 Brindle Launch Validation", "📦 Bundle ID: com.orlane.Brindle",
                    "✅ Using current bundle ID: com.orlane.Brindle",
                    "⚠️  WARNING: Bundle identifier contains uppercase characters",
                    "   May cause issues on case-sensitive systems", "⚠️  WARNING: Bundle ID format may be invalid",
                    "🖥️  macOS Version: 15.1.0", "✅ Running on macOS 15.1.0 (Supported)", "📱 App Name Validation:",
                    "   - Display Name: Brindle", "   - Bundle Name: Brindle", "   - Executable: Brindle",
                    "   - Constants.App.name: Brindle", "✅ App name is 'Brindle' (correct)",
                    "📚 Framework Validation:", "   - Sparkle Framework: ✅ Available",
                    "   - DiskArbitration: ✅ System Framework", "   - Security (Keychain): ✅ System Framework",
                    "   - UserNotifications: ✅ System Framework", "✅ Launch validation complete\n"));
}

// --- the identifier

TEST_F(LaunchValidationTest, CallsAMissingIdentifierCriticalAndLooksAtNothingElseOfIt)
{
    EXPECT_THAT(identifierBlock(std::nullopt),
                ElementsAre("❌ CRITICAL: No bundle identifier found!", "   App may fail to launch on macOS 26+"));
}

TEST_F(LaunchValidationTest, WarnsOfTheLegacyIdentifierInCapitals)
{
    EXPECT_THAT(identifierBlock("com.orlane.Tansy"),
                ElementsAre("📦 Bundle ID: com.orlane.Tansy", "⚠️  WARNING: Using LEGACY bundle ID 'com.orlane.Tansy'",
                            "   Recommended: Update Info.plist to 'com.orlane.Brindle'",
                            "   Keychain migration will handle password transfer",
                            "⚠️  WARNING: Bundle identifier contains uppercase characters",
                            "   May cause issues on case-sensitive systems",
                            "⚠️  WARNING: Bundle ID format may be invalid"));
}

TEST_F(LaunchValidationTest, TellsAnyOtherIdentifierAsUnexpected)
{
    EXPECT_THAT(
        identifierBlock("org.example.tool-box.v2"),
        ElementsAre("📦 Bundle ID: org.example.tool-box.v2", "⚠️  Unexpected bundle ID: org.example.tool-box.v2"));
}

TEST_F(LaunchValidationTest, CallsABlankInTheIdentifierAnError)
{
    EXPECT_THAT(identifierBlock("org.example.my tool"),
                ElementsAre("📦 Bundle ID: org.example.my tool", "⚠️  Unexpected bundle ID: org.example.my tool",
                            "❌ ERROR: Bundle identifier contains spaces!",
                            "   This WILL cause launch failures on macOS 26+",
                            "⚠️  WARNING: Bundle ID format may be invalid"));
}

struct FormCase {
    const char *name;
    const char *identifier;
    bool isValid;
};

class FormOfAnIdentifier : public LaunchValidationTest, public testing::WithParamInterface<FormCase> {};

TEST_P(FormOfAnIdentifier, IsJudged)
{
    const Lines lines = identifierBlock(GetParam().identifier);

    EXPECT_EQ(std::ranges::count(lines, "⚠️  WARNING: Bundle ID format may be invalid"), GetParam().isValid ? 0 : 1);
}

INSTANTIATE_TEST_SUITE_P(
    LaunchValidation, FormOfAnIdentifier,
    testing::Values(FormCase{"TwoLabels", "org.example", true}, FormCase{"ManyLabels", "org.example.a1.b-2.-", true},
                    FormCase{"DigitsFirst", "9.9", true}, FormCase{"OneLabel", "brindle", false},
                    FormCase{"Empty", "", false}, FormCase{"PointFirst", ".org.example", false},
                    FormCase{"PointLast", "org.example.", false}, FormCase{"EmptyLabel", "org..example", false},
                    FormCase{"HyphenInTheFirstLabel", "my-org.example", false},
                    FormCase{"CapitalLetter", "org.Example", false}, FormCase{"Underscore", "org.my_example", false},
                    FormCase{"BeyondAscii", "org.ärger", false}),
    [](const auto &row) { return row.param.name; });

// --- the system

TEST_F(LaunchValidationTest, TellsAModernSystemWithItsChecks)
{
    EXPECT_THAT(systemBlock("26.0.1"),
                ElementsAre("🖥️  macOS Version: 26.0.1", "✅ Running on macOS 26+ (Tahoe or later)",
                            "   Modern macOS compatibility mode enabled",
                            "ℹ️  macOS 26+ specific checks:", "   - Enhanced security requirements: Present",
                            "   - Updated Sparkle framework: Required", "   - Modern login item API: Available"));
}

TEST_F(LaunchValidationTest, TellsTheSupportedSystemsUpToTheirBorders)
{
    EXPECT_THAT(systemBlock("25.9.9"),
                ElementsAre("🖥️  macOS Version: 25.9.9", "✅ Running on macOS 25.9.9 (Supported)"));
    EXPECT_THAT(systemBlock("11.0.0"),
                ElementsAre("🖥️  macOS Version: 11.0.0", "✅ Running on macOS 11.0.0 (Supported)"));
}

TEST_F(LaunchValidationTest, CallsAnOlderSystemAnErrorAndGoesOn)
{
    EXPECT_THAT(systemBlock("10.15.7"),
                ElementsAre("🖥️  macOS Version: 10.15.7", "❌ ERROR: macOS 10.15.7 is not supported",
                            "   Minimum required: macOS 11.0 Big Sur"));
    EXPECT_THAT(report(), Contains("✅ Launch validation complete\n"));
}

TEST_F(LaunchValidationTest, TellsOfAnotherSystemItsNameAndVersionAlone)
{
    system.name = "Debian GNU/Linux";

    EXPECT_THAT(systemBlock("12"), ElementsAre("🖥️  Debian GNU/Linux Version: 12"));
    EXPECT_THAT(systemBlock(std::nullopt), ElementsAre("🖥️  Debian GNU/Linux Version: unknown"));
}

// --- the names

TEST_F(LaunchValidationTest, TellsMissingNamesAsNotSetAndWarnsOfNone)
{
    bundle.displayName.reset();
    bundle.name.reset();
    bundle.executable.reset();

    EXPECT_THAT(nameBlock(), ElementsAre("📱 App Name Validation:", "   - Display Name: Not Set",
                                         "   - Bundle Name: Not Set", "   - Executable: Not Set",
                                         "   - Constants.App.name: Brindle", "✅ App name is 'Brindle' (correct)"));
}

TEST_F(LaunchValidationTest, WarnsOfTheFormerNameInEitherName)
{
    bundle.displayName = "My Tansy";
    EXPECT_THAT(nameBlock(), Contains("⚠️  WARNING: Found 'Tansy' in Info.plist"));

    bundle = completeBundle();
    bundle.name = "Tansy2";
    EXPECT_THAT(nameBlock(), ElementsAre("📱 App Name Validation:", "   - Display Name: Brindle",
                                         "   - Bundle Name: Tansy2", "   - Executable: Brindle",
                                         "   - Constants.App.name: Brindle", "⚠️  WARNING: Found 'Tansy' in Info.plist",
                                         "   This may cause confusion but won't prevent launch",
                                         "   Recommended: Update all references to 'Brindle'"));
}

struct ExecutableCase {
    const char *name;
    const char *executable;
    bool isForeign;
};

class NameOfTheExecutable : public LaunchValidationTest, public testing::WithParamInterface<ExecutableCase> {};

TEST_P(NameOfTheExecutable, IsForeignUnlessItIsOneOfTheApplications)
{
    bundle.name = "bundle";
    bundle.executable = GetParam().executable;

    const Lines lines = nameBlock();

    EXPECT_EQ(lines.back() == "⚠️  Executable name doesn't match bundle name", GetParam().isForeign);
}

INSTANTIATE_TEST_SUITE_P(LaunchValidation, NameOfTheExecutable,
                         testing::Values(ExecutableCase{"TheBundles", "bundle", false},
                                         ExecutableCase{"TheApplications", "Brindle", false},
                                         ExecutableCase{"TheFormer", "Tansy", false},
                                         ExecutableCase{"InSmallLetters", "brindle", true},
                                         ExecutableCase{"Another", "tool", true}),
                         [](const auto &row) { return row.param.name; });

// --- the frameworks

TEST_F(LaunchValidationTest, TellsAMissingUpdaterWithItsWarning)
{
    hasUpdater = false;

    EXPECT_THAT(block("📚", "✅ Launch"), ElementsAre("📚 Framework Validation:", "   - Sparkle Framework: ❌ Missing",
                                                      "     WARNING: Updates will not work without Sparkle",
                                                      "   - DiskArbitration: ✅ System Framework",
                                                      "   - Security (Keychain): ✅ System Framework",
                                                      "   - UserNotifications: ✅ System Framework"));
}

} // namespace
} // namespace brindle
