#pragma once

#include "shell/Color.h"

#include <string>
#include <string_view>

namespace brindle {

/// What stands at the left of the footer. Names in its text stand as they are.
struct FooterStatus {
    /// How much smaller a spinner is than the toolkit's own; 0 for no spinner.
    static constexpr double kRowSpinner = 0.45;
    static constexpr double kCopySpinner = 0.55;

    double spinnerScale = 0;
    std::string_view symbol = {}; ///< Empty: none.
    Color symbolColor = Colors::kSecondary;
    std::string text = {}; ///< Empty: nothing is shown.

    bool operator==(const FooterStatus &) const = default;
};

/// What the footer goes by.
struct FooterInput {
    bool isWindow = true; ///< It stands in a window, not in the popover.
    bool isPerformingOperation = false;
    std::string statusMessage = {};
    std::string efiCopyStatus = {};
    bool efiCopyInProgress = false;
    bool isLoadingDisks = false;
};

[[nodiscard]] FooterStatus footerStatus(const FooterInput &input);

} // namespace brindle
