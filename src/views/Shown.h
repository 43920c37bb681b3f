#pragma once

#include "base/VisibleText.h"

#include <QString>

#include <string_view>

namespace brindle {

/// \a text for a view, with nothing in it that a view would obey or hide.
[[nodiscard]] inline QString shown(std::string_view text)
{
    return QString::fromStdString(visibleText(text));
}

} // namespace brindle
