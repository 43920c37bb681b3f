#include "shell/LaunchValidation.h"

#include "base/Log.h"
#include "base/Text.h"
#include "shell/BundleConstants.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <string_view>

namespace brindle {

namespace {

constexpr int kFirstModernVersion = 26;
constexpr int kFirstSupportedVersion = 11;

bool isLowerCaseOrDigit(char character)
{
    return isDigit(character) || (character >= 'a' && character <= 'z');
}

bool isLabel(std::string_view text, bool mayHaveHyphens)
{
    return !text.empty() && std::ranges::all_of(text, [mayHaveHyphens](char character) {
        return isLowerCaseOrDigit(character) || (mayHaveHyphens && character == '-');
    });
}

/// Two labels or more with points between, where the first has no hyphen: ^[a-z0-9]+(\.[a-z0-9-]+)+$
bool isWellFormed(std::string_view identifier)
{
    std::size_t point = identifier.find('.');
    if (point == std::string_view::npos || !isLabel(identifier.substr(0, point), false))
        return false;
    while (point != std::string_view::npos) {
        identifier.remove_prefix(point + 1);
        point = identifier.find('.');
        if (!isLabel(identifier.substr(0, point), true))
            return false;
    }
    return true;
}

void tellWhoseIdentifier(std::string_view identifier)
{
    if (identifier == kBundleIdentifier) {
        Log::line("✅ Using current bundle ID: {}", identifier);
    } else if (identifier == kLegacyBundleIdentifier) {
        Log::line("⚠️  WARNING: Using LEGACY bundle ID '{}'", kLegacyBundleIdentifier);
        Log::line("   Recommended: Update Info.plist to '{}'", kBundleIdentifier);
        Log::line("   Keychain migration will handle password transfer");
    } else {
        Log::line("⚠️  Unexpected bundle ID: {}", identifier);
    }
}

void tellFormOf(std::string_view identifier)
{
    if (contains(identifier, " ")) {
        Log::line("❌ ERROR: Bundle identifier contains spaces!");
        Log::line("   This WILL cause launch failures on macOS 26+");
    }
    if (identifier != lowerCased(identifier)) {
        Log::line("⚠️  WARNING: Bundle identifier contains uppercase characters");
        Log::line("   May cause issues on case-sensitive systems");
    }
    if (!isWellFormed(identifier))
        Log::line("⚠️  WARNING: Bundle ID format may be invalid");
}

void tellIdentifier(const BundleInfo &bundle)
{
    if (!bundle.identifier) {
        Log::line("❌ CRITICAL: No bundle identifier found!");
        Log::line("   App may fail to launch on macOS 26+");
        return;
    }
    Log::line("📦 Bundle ID: {}", *bundle.identifier);
    tellWhoseIdentifier(*bundle.identifier);
    tellFormOf(*bundle.identifier);
}

/// The number that \a version begins with; 0 where it begins with none.
int majorOf(std::string_view version)
{
    int major = 0;
    std::from_chars(version.data(), version.data() + version.size(), major);
    return major;
}

void tellSupport(std::string_view version)
{
    const int major = majorOf(version);
    if (major >= kFirstModernVersion) {
        Log::line("✅ Running on macOS 26+ (Tahoe or later)");
        Log::line("   Modern macOS compatibility mode enabled");
        Log::line("ℹ️  macOS 26+ specific checks:");
        Log::line("   - Enhanced security requirements: Present");
        Log::line("   - Updated Sparkle framework: Required");
        Log::line("   - Modern login item API: Available");
    } else if (major >= kFirstSupportedVersion) {
        Log::line("✅ Running on macOS {} (Supported)", version);
    } else {
        Log::line("❌ ERROR: macOS {} is not supported", version);
        Log::line("   Minimum required: macOS 11.0 Big Sur");
    }
}

/// The rules of versions are those of macOS; of another system its name and version are all there is to tell.
void tellSystem(const SystemValues &system)
{
    const std::string name = system.systemName();
    const std::string version = system.systemVersion().value_or("unknown");
    Log::line("🖥️  {} Version: {}", name, version);
    if (name == "macOS")
        tellSupport(version);
}

bool hasLegacyName(const std::optional<std::string> &name)
{
    return name && contains(*name, "Tansy");
}

bool isForeignExecutable(const BundleInfo &bundle)
{
    return bundle.executable && bundle.executable != bundle.name && *bundle.executable != kApplicationName &&
           *bundle.executable != "Tansy";
}

void tellNames(const BundleInfo &bundle)
{
    Log::line("📱 App Name Validation:");
    Log::line("   - Display Name: {}", bundle.displayName.value_or("Not Set"));
    Log::line("   - Bundle Name: {}", bundle.name.value_or("Not Set"));
    Log::line("   - Executable: {}", bundle.executable.value_or("Not Set"));
    Log::line("   - Constants.App.name: {}", kApplicationName);
    if (hasLegacyName(bundle.displayName) || hasLegacyName(bundle.name)) {
        Log::line("⚠️  WARNING: Found 'Tansy' in Info.plist");
        Log::line("   This may cause confusion but won't prevent launch");
        Log::line("   Recommended: Update all references to '{}'", kApplicationName);
    } else {
        Log::line("✅ App name is '{}' (correct)", kApplicationName);
    }
    if (isForeignExecutable(bundle))
        Log::line("⚠️  Executable name doesn't match bundle name");
}

void tellFrameworks(bool hasUpdater)
{
    Log::line("📚 Framework Validation:");
    Log::line("   - Sparkle Framework: {}", hasUpdater ? "✅ Available" : "❌ Missing");
    if (!hasUpdater)
        Log::line("     WARNING: Updates will not work without Sparkle");
    Log::line("   - DiskArbitration: ✅ System Framework");
    Log::line("   - Security (Keychain): ✅ System Framework");
    Log::line("   - UserNotifications: ✅ System Framework");
}

} // namespace

void writeLaunchValidation(const LaunchFacts &facts)
{
    Log::line("🔍 Brindle Launch Validation");
    tellIdentifier(facts.bundle);
    tellSystem(facts.system);
    tellNames(facts.bundle);
    tellFrameworks(facts.hasUpdater);
    Log::line("✅ Launch validation complete\n");
}

} // namespace brindle
