#include "udisks/UDisksHealth.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include <systemd/sd-bus.h>

namespace brindle::tools {
namespace {

using Bus = std::unique_ptr<sd_bus, sd_bus *(*)(sd_bus *)>;
using Message = std::unique_ptr<sd_bus_message, sd_bus_message *(*)(sd_bus_message *)>;

constexpr const char *kService = "org.freedesktop.UDisks2";
constexpr const char *kBlock = "org.freedesktop.UDisks2.Block";
constexpr const char *kAta = "org.freedesktop.UDisks2.Drive.Ata";
constexpr const char *kNvme = "org.freedesktop.UDisks2.NVMe.Controller"; // since UDisks 2.10
constexpr std::string_view kBlockDevices = "/org/freedesktop/UDisks2/block_devices/";

class Deadline {
public:
    explicit Deadline(std::chrono::milliseconds limit) : m_end(std::chrono::steady_clock::now() + limit) {}

    /// At least 1: sd-bus takes 0 for a limit of its own.
    [[nodiscard]] std::uint64_t remainingMicroseconds() const
    {
        const auto left =
            std::chrono::duration_cast<std::chrono::microseconds>(m_end - std::chrono::steady_clock::now());
        return static_cast<std::uint64_t>(std::max<std::int64_t>(left.count(), 1));
    }
    [[nodiscard]] bool isOver() const { return std::chrono::steady_clock::now() >= m_end; }

private:
    std::chrono::steady_clock::time_point m_end;
};

/// The properties of UDisks2's objects. What can't be read is `nullopt`.
class UDisks {
public:
    UDisks(const std::string &busAddress, std::chrono::milliseconds limit)
        : m_deadline(limit),
          m_bus(nullptr, sd_bus_close_unref)
    {
        sd_bus *bus = nullptr;
        if (sd_bus_new(&bus) < 0)
            return;
        m_bus.reset(bus);
        if (sd_bus_set_address(bus, busAddress.c_str()) < 0 || sd_bus_set_bus_client(bus, 1) < 0 ||
            sd_bus_start(bus) < 0 || !becomesReady())
            m_bus.reset();
    }

    [[nodiscard]] std::optional<std::string> path(const std::string &object, const char *interface,
                                                  const char *name) const
    {
        const Message reply = property(object, interface, name);
        const char *value = nullptr;
        return reply && sd_bus_message_read(reply.get(), "v", "o", &value) > 0 ? std::optional<std::string>(value)
                                                                               : std::nullopt;
    }

    [[nodiscard]] std::optional<std::uint64_t> number(const std::string &object, const char *interface,
                                                      const char *name) const
    {
        const Message reply = property(object, interface, name);
        std::uint64_t value = 0;
        return reply && sd_bus_message_read(reply.get(), "v", "t", &value) > 0 ? std::optional(value) : std::nullopt;
    }

    [[nodiscard]] std::optional<bool> flag(const std::string &object, const char *interface, const char *name) const
    {
        const Message reply = property(object, interface, name);
        int value = 0;
        return reply && sd_bus_message_read(reply.get(), "v", "b", &value) > 0 ? std::optional(value != 0)
                                                                               : std::nullopt;
    }

    [[nodiscard]] std::optional<std::vector<std::string>> words(const std::string &object, const char *interface,
                                                                const char *name) const
    {
        const Message reply = property(object, interface, name);
        if (!reply || sd_bus_message_enter_container(reply.get(), 'v', "as") <= 0 ||
            sd_bus_message_enter_container(reply.get(), 'a', "s") < 0)
            return std::nullopt;
        std::vector<std::string> values;
        const char *value = nullptr;
        while (sd_bus_message_read_basic(reply.get(), 's', &value) > 0)
            values.emplace_back(value);
        return values;
    }

private:
    [[nodiscard]] bool becomesReady() const
    {
        while (sd_bus_is_ready(m_bus.get()) == 0) {
            const int progress = sd_bus_process(m_bus.get(), nullptr);
            if (progress < 0 || m_deadline.isOver())
                return false;
            if (progress == 0 && sd_bus_wait(m_bus.get(), m_deadline.remainingMicroseconds()) < 0)
                return false;
        }
        return sd_bus_is_ready(m_bus.get()) > 0;
    }

    [[nodiscard]] Message property(const std::string &object, const char *interface, const char *name) const
    {
        Message reply(nullptr, sd_bus_message_unref);
        sd_bus_message *request = nullptr;
        if (!m_bus || sd_bus_message_new_method_call(m_bus.get(), &request, kService, object.c_str(),
                                                     "org.freedesktop.DBus.Properties", "Get") < 0)
            return reply;
        const Message owned(request, sd_bus_message_unref);
        sd_bus_message *answer = nullptr;
        if (sd_bus_message_set_auto_start(request, 0) >= 0 &&
            sd_bus_message_append(request, "ss", interface, name) >= 0 &&
            sd_bus_call(m_bus.get(), request, m_deadline.remainingMicroseconds(), nullptr, &answer) >= 0)
            reply.reset(answer);
        return reply;
    }

    Deadline m_deadline;
    Bus m_bus;
};

bool isGrave(std::string_view warning)
{
    return warning != "temperature"; // A hot drive is no failing one.
}

} // namespace

Smart udisksHealth(const std::string &busAddress, const std::string &device, std::chrono::milliseconds limit)
{
    const UDisks udisks(busAddress, limit);
    const auto drive = udisks.path(std::string(kBlockDevices) + device, kBlock, "Drive");
    if (!drive)
        return Smart::notSupported;
    std::optional<bool> isFailing;
    if (udisks.number(*drive, kAta, "SmartUpdated").value_or(0) != 0) { // When it was asked; 0 for never.
        isFailing = udisks.flag(*drive, kAta, "SmartFailing");
    } else if (udisks.number(*drive, kNvme, "SmartUpdated").value_or(0) != 0) {
        if (const auto warnings = udisks.words(*drive, kNvme, "SmartCriticalWarning"))
            isFailing = std::ranges::any_of(*warnings, isGrave);
    }
    if (!isFailing)
        return Smart::notSupported;
    return *isFailing ? Smart::failing : Smart::verified;
}

} // namespace brindle::tools
