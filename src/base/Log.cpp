#include "base/Log.h"

#include <cstdio>

namespace brindle {

namespace {

Log::Sink &sink()
{
    static Log::Sink current = Log::toStandardOutput;
    return current;
}

void writeLine(std::FILE *stream, std::string_view line)
{
    std::fwrite(line.data(), 1, line.size(), stream);
    std::fputc('\n', stream);
    std::fflush(stream);
}

} // namespace

Log::Sink Log::setSink(Sink newSink)
{
    return std::exchange(sink(), std::move(newSink));
}

void Log::toStandardOutput(std::string_view line)
{
    writeLine(stdout, line);
}

void Log::toStandardError(std::string_view line)
{
    writeLine(stderr, line);
}

void Log::write(std::string_view line)
{
    if (const Sink &current = sink())
        current(line);
}

} // namespace brindle
