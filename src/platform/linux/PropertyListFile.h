#pragma once

#include "base/Error.h"
#include "platform/UserDefaults.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <variant>

namespace brindle {

// The XML form of property lists (the document type "-//Apple//DTD PLIST 1.0//EN"), as bytes; nothing here touches a
// file.

/// How deep arrays and dictionaries nest below the top: reading and writing recurse, and no text may exhaust the stack.
inline constexpr std::size_t kMaxPropertyListDepth = 100;

/// The dictionary at the top of a property list.
struct PropertyList {
    PropertyValue::Dictionary values;
    bool isComplete = true; ///< Whether \a values are all that the text holds.
};

/// The list that \a bytes hold, or what is wrong with them: domain "PropertyListError", the line and the reason.
///
/// Anything that is not a whole property list with a dictionary at its top is an error, a malformed number, date or
/// data and a key without a value among it. What is well formed but cannot be held here (an element of another kind, a
/// number or a date out of range) counts as missing: its key of the top dictionary is left out, and all others are
/// read. Of a key that stands twice the last value counts.
[[nodiscard]] std::variant<PropertyList, Error> readPropertyList(std::string_view bytes);

/// The text of a property list that readPropertyList() takes.
///
/// It holds the nearest to a value that the form can: a date loses its fraction of a second, downwards; in texts and
/// keys U+FFFD stands for each byte that is not UTF-8 and each character that XML forbids (NUL and most controls); what
/// is nested more than 100 deep is left out.
[[nodiscard]] std::string writePropertyList(const PropertyValue::Dictionary &values);

} // namespace brindle
