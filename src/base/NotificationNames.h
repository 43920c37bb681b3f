#pragma once

/// The names that are posted at the NotificationCenter.
namespace brindle::NotificationNames {

/// What the list is high for has changed by something that no model tells of: the height is to be found anew.
inline constexpr const char *kRecalculatePopoverHeight = "RecalculatePopoverHeight";

} // namespace brindle::NotificationNames
