#pragma once

#include <QString>

#include <string_view>

namespace brindle {

/// \a text as a view shows it: without anything that a view would obey or hide.
[[nodiscard]] QString shownText(std::string_view text);

} // namespace brindle
