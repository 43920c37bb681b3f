#include "cli/PasswordInput.h"

#include "base/Error.h"

#include <cerrno>
#include <cstddef>

#include <unistd.h>

namespace brindle {

namespace {

constexpr std::size_t kLongestPassword = 1023; // SUDO_CONV_REPL_MAX of sudo_plugin(5)

[[noreturn]] void refuse(const char *description)
{
    throw Error("PasswordInput", 1, description);
}

} // namespace

Secret readPasswordLine(int descriptor)
{
    Secret line;
    line.resize(kLongestPassword + 1);
    std::size_t length = 0;
    while (length <= kLongestPassword) {
        const ssize_t count = read(descriptor, line.data() + length, 1);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            throw Error::fromErrno(errno, "standard input");
        if (count == 0 || line.data()[length] == '\n')
            break;
        ++length;
    }
    if (length == 0)
        refuse("No password stands on standard input");
    if (length > kLongestPassword)
        refuse("The password on standard input is too long");
    line.resize(length);
    return line;
}

} // namespace brindle
