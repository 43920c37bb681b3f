#pragma once

namespace brindle {

/// No image of this process is taken from now on when it crashes: it may hold the administrator's password. To be
/// called first in a program's main. What the process starts inherits it, where the system allows.
void forbidCoreImages();

} // namespace brindle
