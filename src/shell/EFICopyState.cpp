#include "shell/EFICopyState.h"

#include <algorithm>

namespace brindle {

namespace {

// In points.
constexpr double kConfirmationHeight = 578;
constexpr double kProgressHeight = 428;
constexpr double kEmptySelectionHeight = 378;
constexpr double kDestinationHeight = 90;
constexpr double kSelectionFrameHeight = 198 + 140; // the dialog's frame, and what stands round the rows

// Beyond these the rows scroll.
constexpr std::size_t kMostDestinations = 3;

} // namespace

double EFICopyState::contentHeight() const
{
    switch (screen) {
    case Screen::confirmation:
        return kConfirmationHeight;
    case Screen::inProgress:
        return kProgressHeight;
    case Screen::selection:
        break;
    }
    if (destinationCount == 0)
        return kEmptySelectionHeight;
    const auto rows = static_cast<double>(std::min(destinationCount, kMostDestinations));
    return rows * kDestinationHeight + kSelectionFrameHeight;
}

std::optional<EFICopyState> efiCopyState(const EraseOperationManager &eraseManager, const EFICopyManager &copyManager,
                                         bool showingDestinationSelection, std::size_t destinationCount)
{
    if (eraseManager.isActive())
        return eraseManager.stage() == EraseOperationManager::Stage::confirming ? EFICopyState::confirmation()
                                                                                : EFICopyState::inProgress();
    if (!showingDestinationSelection)
        return std::nullopt;
    if (copyManager.showConfirmationDialog())
        return EFICopyState::confirmation();
    if (copyManager.isOperationInProgress())
        return EFICopyState::inProgress();
    return EFICopyState::selection(destinationCount);
}

} // namespace brindle
