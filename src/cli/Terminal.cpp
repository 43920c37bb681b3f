#include "cli/Terminal.h"

#include "assembly/Platform.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <fmt/format.h>

namespace brindle {

namespace {

constexpr std::size_t kUsualWidth = 80;

// SGR parameters of ECMA-48.
std::string_view sgr(Style style)
{
    switch (style) {
    case Style::heading:
        return "1";
    case Style::dim:
        return "2";
    case Style::good:
        return "32";
    case Style::bad:
        return "1;31";
    case Style::accent:
        return "36";
    case Style::plain:
        break;
    }
    return "";
}

} // namespace

Terminal Terminal::ofStandardOutput()
{
    if (!isatty(STDOUT_FILENO))
        return {};
    winsize size{};
    const bool isKnown = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return {.width = isKnown ? size.ws_col : kUsualWidth,
            .hasColour = !environmentValue("NO_COLOR") && environmentValue("TERM") != "dumb"};
}

std::string styled(std::string_view text, Style style, const Terminal &terminal)
{
    if (!terminal.hasColour || style == Style::plain || text.empty())
        return std::string(text);
    return fmt::format("\x1b[{}m{}\x1b[0m", sgr(style), text);
}

void tell(std::FILE *stream, std::string_view text)
{
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fflush(stream);
}

} // namespace brindle
