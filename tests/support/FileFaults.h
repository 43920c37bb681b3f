#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace brindle {

/// Makes the kernel's file functions fail, in programs that link brindle_file_faults. Without a fault they do what they
/// always do. Serves any thread, one FileFaults at a time.
class FileFaults {
public:
    FileFaults();
    ~FileFaults();
    FileFaults(const FileFaults &) = delete;
    FileFaults &operator=(const FileFaults &) = delete;

    /// The call number \a which (1: the first) of \a function from now on fails with \a errorNumber; 0: every call.
    void fail(std::string_view function, int errorNumber, int which = 0);

    /// How often \a function was called.
    [[nodiscard]] int callsOf(std::string_view function) const;

    /// Every call, as the function and its number from 1 among the calls of that function.
    [[nodiscard]] std::vector<std::pair<std::string, int>> calls() const;
};

} // namespace brindle
