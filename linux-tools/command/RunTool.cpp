#include "command/Command.h"

#include "kernel/KernelInventory.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <exception>

namespace brindle::tools {
namespace {

bool write(std::FILE *file, const std::string &text)
{
    return std::fwrite(text.data(), 1, text.size(), file) == text.size() && std::fflush(file) == 0;
}

} // namespace

int runTool(int (*command)(Context &, Arguments), int count, char **words)
{
    const std::vector<std::string_view> arguments(words + std::min(count, 1), words + count);
    KernelInventory kernel;
    Context context{.source = kernel, .out = {}, .err = {}};
    const int status = command(context, arguments);
    const bool isErrorWritten = write(stderr, context.err);
    return write(stdout, context.out) && isErrorWritten ? status : kFailed;
}

} // namespace brindle::tools
