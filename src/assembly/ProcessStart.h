#pragma once

namespace brindle {

/// What every program does before anything else: gives itself standard descriptors where it was started without,
/// outlives readers of its output, and lets no image be written of a process that may hold the administrator's
/// password.
void prepareProcess();

} // namespace brindle
