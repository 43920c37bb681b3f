#pragma once

#include "platform/Appearance.h"
#include "platform/UserDefaults.h"
#include "records/PhysicalDisk.h"
#include "shell/Color.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brindle {

enum class FontWeight { regular, medium, bold };

/// One piece of text in the system font.
struct RowText {
    std::string text;
    double size = 0; ///< In points.
    FontWeight weight = FontWeight::regular;
    Color color = Colors::kSecondary;

    bool operator==(const RowText &) const = default;
};

/// A drawn symbol, of regular weight.
struct RowSymbol {
    std::string_view name;
    double size = 0; ///< In points.
    Color color;

    bool operator==(const RowSymbol &) const = default;
};

/// How full a disk is.
struct SpaceBar {
    // In points.
    static constexpr double kHeight = 5;
    static constexpr double kCornerRadius = 3;
    static constexpr double kSpacing = 3; ///< Between the bar and the line beneath it.
    static constexpr double kSmallestFill = 3;

    static constexpr Color kTrackColor = Colors::kSeparator;
    static constexpr double kTrackOpacity = 0.5;
    static constexpr double kLeadingOpacity = 0.85; ///< Of the fill's colour, which grows to 1 at the trailing edge.
    static constexpr std::chrono::milliseconds kAnimation{350}; ///< Of a changed ratio; eased at both ends.

    double ratio = 0; ///< Used by total, 0 to 1.
    Color color;
    RowText space;   ///< "245 GB of 500 GB used"
    RowText percent; ///< "49%"

    /// The ratio in whole per cent; a half is rounded up.
    [[nodiscard]] int percentage() const;

    /// How much of \a availableWidth is filled: a little even for an empty disk.
    [[nodiscard]] double fillWidth(double availableWidth) const;

    bool operator==(const SpaceBar &) const = default;
};

/// Whether the disk's EFI partition is mounted; the number of partitions stands in place of the symbol where there is
/// more than one.
struct EFIIndicator {
    static constexpr double kSpacing = 2; ///< Between symbol or number and the label, in points.

    std::optional<RowSymbol> symbol;
    std::optional<RowText> count;
    RowText label;

    bool operator==(const EFIIndicator &) const = default;
};

/// What a row tells of one disk. All choices are made here; a view only places what it is told.
struct DiskRowContent {
    // In points.
    static constexpr double kSpacing = 10;
    static constexpr double kIconWidth = 34;
    static constexpr double kBootDiskIconGrowth = 4;
    static constexpr double kTextSpacing = 4; ///< Between the lines of text.
    static constexpr double kNameSpacing = 4; ///< Between the name and the label.

    PhysicalDisk disk;
    bool efiMounted = false; ///< Any of the disk's EFI partitions is mounted.
    double iconSize = 0;     ///< In points.
    bool showEFIIndicator = false;
    ColorScheme colorScheme = ColorScheme::light;
    bool showDiskSpaceIndicator = false;
    bool showSMARTStatus = false;

    /// Takes the two settings; what is missing or no Boolean counts as off.
    void readSettings(const UserDefaults &defaults);

    [[nodiscard]] RowSymbol icon() const;
    [[nodiscard]] RowText name() const;
    [[nodiscard]] RowText volumeLabel() const; ///< Says so where the disk has none.

    /// The line of details, item by item: size, type, what is on the disk, health.
    [[nodiscard]] std::vector<RowText> details() const;
    /// Of the item at \a index of details(): size, type, "Boot Disk" and a failing health.
    [[nodiscard]] bool isEssentialDetail(std::size_t index) const;
    [[nodiscard]] static RowText bullet(); ///< Stands between two details.
    [[nodiscard]] RowText typeLabel() const;

    /// What was found on a disk; empty for the boot disk.
    [[nodiscard]] std::vector<RowText> indicators() const;

    /// "Boot Disk" and its boot loader; empty for any other disk.
    [[nodiscard]] std::vector<RowText> bootLabels() const;

    // Absent where the setting is off or there is nothing to tell.
    [[nodiscard]] std::optional<RowText> smartBadge() const;
    [[nodiscard]] std::optional<SpaceBar> spaceBar() const;
    [[nodiscard]] std::optional<EFIIndicator> efiIndicator() const;
};

} // namespace brindle
