#include "ui/Scheme.h"

#include <utility>

namespace brindle {

void Scheme::setIsDark(bool isDark)
{
    if (std::exchange(m_isDark, isDark) != isDark)
        Q_EMIT isDarkChanged();
}

} // namespace brindle
