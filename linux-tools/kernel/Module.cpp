#include "kernel/Module.h"

#include <dlfcn.h>

namespace brindle::tools {

void *moduleFunction(const char *module, const char *function)
{
    void *const handle = ::dlopen(module, RTLD_NOW | RTLD_LOCAL); // Found by the program's run path, and stays.
    return handle ? ::dlsym(handle, function) : nullptr;
}

} // namespace brindle::tools
