#pragma once

namespace brindle::tools {

/// A function of a module that lies in the tools' own folder of libraries; null where there is no such module or
/// function. What only few calls need is loaded so, since linking a library costs every call its loading.
[[nodiscard]] void *moduleFunction(const char *module, const char *function);

} // namespace brindle::tools
