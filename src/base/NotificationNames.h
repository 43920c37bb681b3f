#pragma once

/// The names by which parts of the application tell one another something through the NotificationCenter.
namespace brindle::NotificationNames {

/// What the list is high for has changed by something that no model tells of: the height is to be found anew.
inline constexpr const char *kRecalculatePopoverHeight = "RecalculatePopoverHeight";

} // namespace brindle::NotificationNames
