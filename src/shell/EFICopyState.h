#pragma once

#include "efi/EFICopyManager.h"
#include "efi/EraseOperationManager.h"

#include <cstddef>
#include <optional>

namespace brindle {

/// Which screen of the copy or the erase dialog stands in place of the list of disks: what its height goes by.
struct EFICopyState {
    enum class Screen { selection, confirmation, inProgress };

    Screen screen = Screen::selection;
    std::size_t destinationCount = 0; ///< Of a selection alone.

    [[nodiscard]] static constexpr EFICopyState selection(std::size_t destinationCount)
    {
        return {Screen::selection, destinationCount};
    }
    [[nodiscard]] static constexpr EFICopyState confirmation() { return {Screen::confirmation}; }
    [[nodiscard]] static constexpr EFICopyState inProgress() { return {Screen::inProgress}; }

    bool operator==(const EFICopyState &) const = default;

    /// In points, for a width of 500. Who shows it cuts it to bounds of its own.
    [[nodiscard]] double contentHeight() const;
};

/// The state of whichever dialog is shown, the erase dialog before the copy dialog; nullopt where none is.
[[nodiscard]] std::optional<EFICopyState> efiCopyState(const EraseOperationManager &eraseManager,
                                                       const EFICopyManager &copyManager,
                                                       bool showingDestinationSelection, std::size_t destinationCount);

} // namespace brindle
