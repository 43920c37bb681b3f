#include "views/ShownText.h"

#include "base/VisibleText.h"

namespace brindle {

QString shownText(std::string_view text)
{
    return QString::fromStdString(visibleText(text));
}

} // namespace brindle
