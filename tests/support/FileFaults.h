#pragma once

#include <cstddef>
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
    /// With the error number 0 the process is killed there, before the call does anything.
    void fail(std::string_view function, int errorNumber, int which = 0);

    /// From now on every file seems to have one extended attribute, and takes any: not all file systems have them.
    void pretendAttribute();

    /// All functions that can be made to fail.
    [[nodiscard]] static std::vector<std::string> functions();

    /// How often \a function was called.
    [[nodiscard]] int callsOf(std::string_view function) const;

    [[nodiscard]] std::size_t callCount() const; ///< Of all functions.

    /// Every call, as the function and its number from 1 among the calls of that function.
    [[nodiscard]] std::vector<std::pair<std::string, int>> calls() const;
};

} // namespace brindle
