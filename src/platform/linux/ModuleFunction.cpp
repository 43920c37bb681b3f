#include "platform/linux/ModuleFunction.h"

#include "base/Log.h"

#include <dlfcn.h>

namespace brindle {

void *moduleFunction(const std::filesystem::path &path, const char *name, std::string_view purpose)
{
    void *const module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    void *const function = module ? dlsym(module, name) : nullptr;
    if (!function)
        Log::line("⚠️ The module for {} can't be loaded: {}", purpose, dlerror());
    return function;
}

} // namespace brindle
