#include "views/FooterStatus.h"

namespace brindle {

namespace {

/// Goes by the words of EFICopyManager::operationStatus(), case for case.
FooterStatus copyStatus(const FooterInput &input)
{
    const auto contains = [&](std::string_view word) { return input.efiCopyStatus.find(word) != std::string::npos; };
    if (input.efiCopyInProgress)
        return {.spinnerScale = FooterStatus::kCopySpinner, .text = input.efiCopyStatus};
    if (contains("successfully"))
        return {.symbol = "checkmark.circle.fill", .symbolColor = Colors::kGreen, .text = input.efiCopyStatus};
    if (contains("failed") || contains("cancelled"))
        return {.symbol = "xmark.circle.fill", .symbolColor = Colors::kRed, .text = input.efiCopyStatus};
    return {.text = input.efiCopyStatus};
}

} // namespace

FooterStatus footerStatus(const FooterInput &input)
{
    if (input.isPerformingOperation && !input.statusMessage.empty())
        return {.spinnerScale = FooterStatus::kRowSpinner, .text = input.statusMessage};
    if (!input.efiCopyStatus.empty())
        return copyStatus(input);
    if (input.isLoadingDisks)
        return {.spinnerScale = FooterStatus::kRowSpinner, .text = "Scanning disks..."};
    return {.text = input.isWindow ? "Ready" : ""};
}

} // namespace brindle
