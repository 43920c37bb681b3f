#include "views/DiskRowContent.h"

#include "base/DefaultsKeys.h"
#include "records/Preferences.h"
#include "views/ByteCount.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace brindle {

namespace {

using namespace std::string_view_literals;

// In points.
constexpr double kNameSize = 12;
constexpr double kDetailSize = 11;
/// Of "Clover" beside "Boot Disk"; "OC" has the size of the line.
constexpr double kBootCloverSize = 10;
constexpr double kSpaceTextSize = 10;
constexpr double kEFISymbolSize = 16;
constexpr double kEFICountSize = 14;
constexpr double kEFILabelSize = 10;

// A disk is nearly full, or on the way there, above these ratios.
constexpr double kNearlyFull = 0.9;
constexpr double kFilling = 0.75;

// In the order of PhysicalDisk::DiskType.
constexpr std::array kTypeLabels{"Internal"sv, "External"sv, "Removable"sv, "Disk Image"sv};

RowText detail(std::string_view text, Color color = Colors::kSecondary, FontWeight weight = FontWeight::regular)
{
    return {.text = std::string(text), .size = kDetailSize, .weight = weight, .color = color};
}

Color nameColor(ColorScheme scheme)
{
    return scheme == ColorScheme::dark ? Colors::kWhite : Colors::kBlack;
}

Color colorOfType(PhysicalDisk::DiskType type, ColorScheme scheme)
{
    switch (type) {
    case PhysicalDisk::DiskType::physicalExternal:
        return Colors::kSecondary;
    case PhysicalDisk::DiskType::removable:
        return scheme == ColorScheme::dark ? Colors::kWhite : Colors::kGray;
    case PhysicalDisk::DiskType::diskImage:
        return Colors::kOrange;
    case PhysicalDisk::DiskType::physicalInternal:
        break;
    }
    return Colors::kPrimary;
}

Color iconColor(const PhysicalDisk &disk, ColorScheme scheme)
{
    if (disk.isBootDisk)
        return Colors::kGray;
    if (disk.hasOpenCore)
        return Colors::kOpenCore;
    if (disk.hasClover)
        return Colors::kClover;
    if (disk.hasMacOS)
        return Colors::kBlue;
    if (disk.hasLinux)
        return Colors::kPurple;
    if (disk.hasWindows)
        return Colors::kGray;
    if (disk.hasExFAT)
        return Colors::kRed;
    return colorOfType(disk.diskType, scheme);
}

/// ExFAT is told together with the one system that it most likely belongs to.
void addSystems(std::vector<RowText> &indicators, const PhysicalDisk &disk)
{
    if (disk.hasExFAT && disk.hasWindows) {
        indicators.push_back(detail("Windows ExFAT", Colors::kGray));
        return;
    }
    if (disk.hasExFAT && disk.hasLinux) {
        indicators.push_back(detail("Linux ExFAT", Colors::kPurple));
        return;
    }
    if (disk.hasWindows)
        indicators.push_back(detail("Windows", Colors::kGray));
    if (disk.hasLinux)
        indicators.push_back(detail("Linux", Colors::kPurple));
    if (disk.hasExFAT)
        indicators.push_back(detail("ExFAT", Colors::kRed));
}

Color barColor(double ratio)
{
    if (ratio > kNearlyFull)
        return Colors::kRed;
    return ratio > kFilling ? Colors::kOrange : Colors::kBlue;
}

} // namespace

int SpaceBar::percentage() const
{
    return static_cast<int>(std::lround(ratio * 100));
}

double SpaceBar::fillWidth(double availableWidth) const
{
    return std::min(std::max(ratio * availableWidth, kSmallestFill), availableWidth);
}

void DiskRowContent::readSettings(const UserDefaults &defaults)
{
    showDiskSpaceIndicator = isShownOn(defaults, DefaultsKeys::kShowDiskSpaceIndicator);
    showSMARTStatus = isShownOn(defaults, DefaultsKeys::kShowSMARTStatus);
}

RowSymbol DiskRowContent::icon() const
{
    return {.name = disk.diskIcon(),
            .size = disk.isBootDisk ? iconSize + kBootDiskIconGrowth : iconSize,
            .color = iconColor(disk, colorScheme)};
}

RowText DiskRowContent::name() const
{
    return {.text = disk.name, .size = kNameSize, .weight = FontWeight::medium, .color = nameColor(colorScheme)};
}

RowText DiskRowContent::volumeLabel() const
{
    const bool hasLabel = disk.volumeName && !disk.volumeName->empty();
    return {.text = hasLabel ? *disk.volumeName : "No Volume Label",
            .size = kNameSize,
            .weight = FontWeight::medium,
            .color = hasLabel ? nameColor(colorScheme) : Colors::kSecondary};
}

std::vector<RowText> DiskRowContent::details() const
{
    std::vector<RowText> items{detail(disk.size), typeLabel()};
    for (const std::vector<RowText> &labels : {indicators(), bootLabels()})
        items.insert(items.end(), labels.begin(), labels.end());
    if (std::optional<RowText> badge = smartBadge())
        items.push_back(*std::move(badge));
    return items;
}

bool DiskRowContent::isEssentialDetail(std::size_t index) const
{
    constexpr std::size_t kSizeAndType = 2;
    if (index < kSizeAndType || (disk.isBootDisk && index == kSizeAndType))
        return true;
    const bool isBadge = smartBadge() && index + 1 == details().size();
    return isBadge && disk.smartStatus == SMARTStatus::failing;
}

RowText DiskRowContent::bullet()
{
    return detail("•");
}

RowText DiskRowContent::typeLabel() const
{
    return detail(kTypeLabels[static_cast<std::size_t>(disk.diskType)]);
}

std::vector<RowText> DiskRowContent::indicators() const
{
    if (disk.isBootDisk)
        return {};
    std::vector<RowText> indicators;
    if (disk.hasOpenCore)
        indicators.push_back(detail("OC", Colors::kOpenCore));
    if (disk.hasClover)
        indicators.push_back(detail("Clover", Colors::kGreen));
    if (disk.hasMacOS)
        indicators.push_back(detail("macOS", Colors::kBlue));
    addSystems(indicators, disk);
    if (indicators.empty())
        indicators.push_back(detail("Unknown"));
    indicators.front().weight = FontWeight::medium;
    return indicators;
}

std::vector<RowText> DiskRowContent::bootLabels() const
{
    if (!disk.isBootDisk)
        return {};
    std::vector<RowText> labels{detail("Boot Disk", Colors::kGreen, FontWeight::medium)};
    // Clover is asked first, the other way round than for the icon.
    if (disk.hasClover)
        labels.push_back(
            {.text = "Clover", .size = kBootCloverSize, .weight = FontWeight::medium, .color = Colors::kGreen});
    else if (disk.hasOpenCore)
        labels.push_back(detail("OC", Colors::kOpenCore, FontWeight::medium));
    return labels;
}

std::optional<RowText> DiskRowContent::smartBadge() const
{
    if (!showSMARTStatus)
        return std::nullopt;
    switch (disk.smartStatus) {
    case SMARTStatus::verified:
        return detail("SMART OK", Colors::kGreen);
    case SMARTStatus::failing:
        return detail("SMART Failing", Colors::kRed, FontWeight::bold);
    case SMARTStatus::notSupported:
        return detail("SMART N/A");
    case SMARTStatus::unknown:
        break;
    }
    return std::nullopt;
}

std::optional<SpaceBar> DiskRowContent::spaceBar() const
{
    if (!showDiskSpaceIndicator || disk.totalSpaceBytes.value_or(0) < 1 || !disk.usedSpaceBytes)
        return std::nullopt;
    const std::int64_t total = *disk.totalSpaceBytes;
    const std::int64_t used = *disk.usedSpaceBytes;
    SpaceBar bar{.ratio = std::clamp(static_cast<double>(used) / static_cast<double>(total), 0.0, 1.0)};
    bar.color = barColor(bar.ratio);
    bar.space = {.text = fmt::format("{} of {} used", byteCount(used), byteCount(total)), .size = kSpaceTextSize};
    bar.percent = {.text = fmt::format("{}%", bar.percentage()),
                   .size = kSpaceTextSize,
                   .weight = FontWeight::bold,
                   .color = bar.color};
    return bar;
}

std::optional<EFIIndicator> DiskRowContent::efiIndicator() const
{
    if (!showEFIIndicator || disk.efiPartitions.empty())
        return std::nullopt;
    const Color color = efiMounted ? Colors::kGreen : Colors::kSecondary;
    EFIIndicator indicator{.label = {.text = "EFI", .size = kEFILabelSize}};
    const std::size_t count = disk.efiPartitions.size();
    if (count < 2)
        indicator.symbol = {
            .name = efiMounted ? "checkmark.circle.fill"sv : "circle"sv, .size = kEFISymbolSize, .color = color};
    else
        indicator.count = {.text = std::to_string(count), .size = kEFICountSize, .color = color};
    return indicator;
}

} // namespace brindle
