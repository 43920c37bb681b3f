#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <systemd/sd-bus.h>

namespace brindle::tools {

inline constexpr const char *kBlockInterface = "org.freedesktop.UDisks2.Block";

/// The objects of UDisks2 on a bus, within a time limit in all. UDisks2 is not started where it doesn't run. A property
/// that can't be read is `nullopt`.
class UDisks {
public:
    UDisks(const std::string &busAddress, std::chrono::milliseconds limit);

    /// The object of a device by the kernel's name.
    [[nodiscard]] static std::string block(const std::string &device);

    [[nodiscard]] std::optional<std::string> path(const std::string &object, const char *interface,
                                                  const char *name) const;
    [[nodiscard]] std::optional<std::uint64_t> number(const std::string &object, const char *interface,
                                                      const char *name) const;
    [[nodiscard]] std::optional<bool> flag(const std::string &object, const char *interface, const char *name) const;
    [[nodiscard]] std::optional<std::vector<std::string>> words(const std::string &object, const char *interface,
                                                                const char *name) const;

    /// Calls a method that takes nothing but options, of which none is given. Gives what UDisks2 says where it
    /// refuses, and "" where it is done.
    [[nodiscard]] std::string call(const std::string &object, const char *interface, const char *method) const;

private:
    using Bus = std::unique_ptr<sd_bus, sd_bus *(*)(sd_bus *)>;
    using Message = std::unique_ptr<sd_bus_message, sd_bus_message *(*)(sd_bus_message *)>;

    [[nodiscard]] bool becomesReady() const;
    [[nodiscard]] bool isOver() const { return std::chrono::steady_clock::now() >= m_end; }
    [[nodiscard]] std::uint64_t remainingMicroseconds() const;
    [[nodiscard]] Message newCall(const std::string &object, const char *interface, const char *method) const;
    [[nodiscard]] Message property(const std::string &object, const char *interface, const char *name) const;

    std::chrono::steady_clock::time_point m_end;
    Bus m_bus;
};

} // namespace brindle::tools
