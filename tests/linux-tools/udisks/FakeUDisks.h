#pragma once

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <tuple>
#include <variant>
#include <vector>

#include <sys/types.h>

struct sd_bus;
struct sd_bus_message;

namespace brindle::tools {

/// A bus of D-Bus of its own, in a temporary folder. UDisks2 could be started on it, which leaves a file.
class PrivateBus {
public:
    PrivateBus();
    PrivateBus(const PrivateBus &) = delete;
    PrivateBus &operator=(const PrivateBus &) = delete;
    ~PrivateBus();

    [[nodiscard]] static bool canRun(); ///< Whether dbus-daemon is installed.
    [[nodiscard]] std::string address() const;
    [[nodiscard]] bool hasStartedUDisks() const;

private:
    std::filesystem::path m_folder;
    std::FILE *m_daemon = nullptr;
    pid_t m_process = 0;
};

struct ObjectPath {
    std::string path;
};
using PropertyValue = std::variant<ObjectPath, std::uint64_t, bool, std::vector<std::string>>;

/// Owns UDisks2's name on a bus and answers for the properties that it is given; remembers what it was called for.
class FakeUDisks {
public:
    using Properties = std::map<std::tuple<std::string, std::string, std::string>, PropertyValue>;

    /// The properties by object, interface and name.
    FakeUDisks(const std::string &busAddress, Properties properties);
    FakeUDisks(const FakeUDisks &) = delete;
    FakeUDisks &operator=(const FakeUDisks &) = delete;
    ~FakeUDisks();

    [[nodiscard]] std::vector<std::string> calls() const; ///< The methods, in order.
    [[nodiscard]] std::vector<std::string> acts() const;  ///< The methods that do something, with their objects.
    void refuse(std::string reason);                      ///< Answers so to those from now on.

private:
    [[nodiscard]] int reply(sd_bus_message *call);

    Properties m_properties;
    sd_bus *m_bus = nullptr;
    mutable std::mutex m_mutex;
    std::vector<std::string> m_calls;
    std::vector<std::string> m_acts;
    std::string m_refusal;
    std::atomic<bool> m_isEnding = false;
    std::thread m_thread;
};

} // namespace brindle::tools
