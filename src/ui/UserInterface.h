#pragma once

#include "platform/Appearance.h"

class QIcon;
class QQmlEngine;

namespace brindle {

/// Qt Quick draws by the software renderer from now on, which starts sooner and needs a third of the memory; called
/// before the first window.
void useSoftwareRenderer();

/// Makes `import Brindle` and the symbols known to \a engine, once; keys that are held are HeldKeys' from then on.
void setUpEngine(QQmlEngine &engine);

/// The application's icon in the sizes of bars and switchers. Once an engine is set up.
[[nodiscard]] QIcon applicationIcon();

/// Paints everything that \a engine shows in the scheme's colours.
void setColorScheme(QQmlEngine &engine, ColorScheme scheme);

} // namespace brindle
