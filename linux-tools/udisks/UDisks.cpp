#include "udisks/UDisks.h"

#include <algorithm>

namespace brindle::tools {
namespace {

constexpr const char *kService = "org.freedesktop.UDisks2";

} // namespace

UDisks::UDisks(const std::string &busAddress, std::chrono::milliseconds limit)
    : m_end(std::chrono::steady_clock::now() + limit),
      m_bus(nullptr, sd_bus_close_unref)
{
    sd_bus *bus = nullptr;
    if (sd_bus_new(&bus) < 0)
        return;
    m_bus.reset(bus);
    if (sd_bus_set_address(bus, busAddress.c_str()) < 0 || sd_bus_set_bus_client(bus, 1) < 0 || sd_bus_start(bus) < 0 ||
        !becomesReady())
        m_bus.reset();
}

std::string UDisks::block(const std::string &device)
{
    return "/org/freedesktop/UDisks2/block_devices/" + device;
}

std::optional<std::string> UDisks::path(const std::string &object, const char *interface, const char *name) const
{
    const Message reply = property(object, interface, name);
    const char *value = nullptr;
    return reply && sd_bus_message_read(reply.get(), "v", "o", &value) > 0 ? std::optional<std::string>(value)
                                                                           : std::nullopt;
}

std::optional<std::uint64_t> UDisks::number(const std::string &object, const char *interface, const char *name) const
{
    const Message reply = property(object, interface, name);
    std::uint64_t value = 0;
    return reply && sd_bus_message_read(reply.get(), "v", "t", &value) > 0 ? std::optional(value) : std::nullopt;
}

std::optional<bool> UDisks::flag(const std::string &object, const char *interface, const char *name) const
{
    const Message reply = property(object, interface, name);
    int value = 0;
    return reply && sd_bus_message_read(reply.get(), "v", "b", &value) > 0 ? std::optional(value != 0) : std::nullopt;
}

std::optional<std::vector<std::string>> UDisks::words(const std::string &object, const char *interface,
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

std::string UDisks::call(const std::string &object, const char *interface, const char *method) const
{
    const Message request = newCall(object, interface, method);
    sd_bus_error error{};
    if (!request || sd_bus_message_append(request.get(), "a{sv}", 0) < 0)
        return "UDisks2 can't be asked";
    const int result = sd_bus_call(m_bus.get(), request.get(), remainingMicroseconds(), &error, nullptr);
    std::string refusal;
    if (result < 0)
        refusal = error.message ? error.message : "UDisks2 does not answer";
    sd_bus_error_free(&error);
    return refusal;
}

bool UDisks::becomesReady() const
{
    while (sd_bus_is_ready(m_bus.get()) == 0) {
        const int progress = sd_bus_process(m_bus.get(), nullptr);
        if (progress < 0 || isOver())
            return false;
        if (progress == 0 && sd_bus_wait(m_bus.get(), remainingMicroseconds()) < 0)
            return false;
    }
    return sd_bus_is_ready(m_bus.get()) > 0;
}

/// At least 1: sd-bus takes 0 for a limit of its own.
std::uint64_t UDisks::remainingMicroseconds() const
{
    const auto left = std::chrono::duration_cast<std::chrono::microseconds>(m_end - std::chrono::steady_clock::now());
    return static_cast<std::uint64_t>(std::max<std::int64_t>(left.count(), 1));
}

UDisks::Message UDisks::newCall(const std::string &object, const char *interface, const char *method) const
{
    Message call(nullptr, sd_bus_message_unref);
    sd_bus_message *message = nullptr;
    if (!m_bus ||
        sd_bus_message_new_method_call(m_bus.get(), &message, kService, object.c_str(), interface, method) < 0)
        return call;
    call.reset(message);
    if (sd_bus_message_set_auto_start(message, 0) < 0)
        call.reset();
    return call;
}

UDisks::Message UDisks::property(const std::string &object, const char *interface, const char *name) const
{
    Message reply(nullptr, sd_bus_message_unref);
    const Message request = newCall(object, "org.freedesktop.DBus.Properties", "Get");
    sd_bus_message *answer = nullptr;
    if (request && sd_bus_message_append(request.get(), "ss", interface, name) >= 0 &&
        sd_bus_call(m_bus.get(), request.get(), remainingMicroseconds(), nullptr, &answer) >= 0)
        reply.reset(answer);
    return reply;
}

} // namespace brindle::tools
