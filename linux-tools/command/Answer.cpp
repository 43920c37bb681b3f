#include "command/Answer.h"

#include "text/Words.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string_view>

namespace brindle::tools {
namespace {

bool write(std::FILE *file, std::string_view text)
{
    return std::fwrite(text.data(), 1, text.size(), file) == text.size() && std::fflush(file) == 0;
}

std::string complaint(std::string_view text)
{
    return fmt::format("{}: {}\n", program_invocation_short_name, printable(text));
}

} // namespace

int tellAnswer(const std::function<Answer()> &tell)
{
    Answer answer;
    try {
        answer = tell();
    } catch (const std::exception &error) {
        answer = {.status = kFailed, .out = {}, .err = complaint(error.what())};
    }
    const bool isErrorWritten = write(stderr, answer.err);
    if (!write(stdout, answer.out)) {
        (void)write(stderr, complaint(fmt::format("standard output: {}", std::strerror(errno))));
        return kFailed;
    }
    return isErrorWritten ? answer.status : kFailed;
}

} // namespace brindle::tools
