#include "linux-tools/udisks/FakeUDisks.h"

#include <fmt/format.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <utility>

#include <systemd/sd-bus.h>

namespace brindle::tools {
namespace {

namespace fs = std::filesystem;

constexpr const char *kName = "org.freedesktop.UDisks2";

void require(bool isFine, const char *what)
{
    if (!isFine)
        throw std::runtime_error(what);
}

std::string configuration(const fs::path &folder)
{
    return fmt::format(R"(<busconfig>
  <type>session</type>
  <listen>unix:path={0}/bus</listen>
  <servicedir>{0}</servicedir>
  <policy context="default">
    <allow user="*"/> <allow own="*"/> <allow send_destination="*"/> <allow receive_sender="*"/>
  </policy>
</busconfig>
)",
                       folder.string());
}

int appendTo(sd_bus_message *message, const ObjectPath &value)
{
    return sd_bus_message_append(message, "v", "o", value.path.c_str());
}

int appendTo(sd_bus_message *message, std::uint64_t value)
{
    return sd_bus_message_append(message, "v", "t", value);
}

int appendTo(sd_bus_message *message, bool value)
{
    return sd_bus_message_append(message, "v", "b", static_cast<int>(value));
}

int appendTo(sd_bus_message *message, const std::vector<std::string> &values)
{
    std::vector<char *> words;
    for (const std::string &value : values)
        words.push_back(const_cast<char *>(value.c_str()));
    words.push_back(nullptr);
    require(sd_bus_message_open_container(message, 'v', "as") >= 0, "no variant");
    require(sd_bus_message_append_strv(message, words.data()) >= 0, "no words");
    return sd_bus_message_close_container(message);
}

} // namespace

PrivateBus::PrivateBus()
{
    std::string folder = (fs::temp_directory_path() / "bus-XXXXXX").string();
    require(::mkdtemp(folder.data()) != nullptr, "no temporary folder");
    m_folder = folder;
    std::ofstream(m_folder / "bus.conf") << configuration(m_folder);
    std::ofstream(m_folder / "udisks.service")
        << fmt::format("[D-BUS Service]\nName={}\nExec=/usr/bin/touch {}/started\n", kName, m_folder.string());
    const std::string command = fmt::format(
        "exec dbus-daemon --config-file={}/bus.conf --nofork --nopidfile --print-pid=1 2>/dev/null", m_folder.string());
    m_daemon = ::popen(command.c_str(), "r");
    std::array<char, 32> line{};
    require(m_daemon && std::fgets(line.data(), line.size(), m_daemon), "dbus-daemon doesn't run");
    m_process = std::atoi(line.data());
}

PrivateBus::~PrivateBus()
{
    ::kill(m_process, SIGTERM);
    ::pclose(m_daemon);
    std::error_code ignored;
    fs::remove_all(m_folder, ignored);
}

bool PrivateBus::canRun()
{
    return std::system("command -v dbus-daemon >/dev/null") == 0; // NOLINT(concurrency-mt-unsafe)
}

std::string PrivateBus::address() const
{
    return fmt::format("unix:path={}/bus", m_folder.string());
}

bool PrivateBus::hasStartedUDisks() const
{
    return fs::exists(m_folder / "started");
}

FakeUDisks::FakeUDisks(const std::string &busAddress, Properties properties) : m_properties(std::move(properties))
{
    require(sd_bus_new(&m_bus) >= 0, "no connection");
    require(sd_bus_set_address(m_bus, busAddress.c_str()) >= 0 && sd_bus_set_bus_client(m_bus, 1) >= 0 &&
                sd_bus_start(m_bus) >= 0,
            "no bus");
    const auto answer = [](sd_bus_message *call, void *self, sd_bus_error * /*error*/) {
        return static_cast<FakeUDisks *>(self)->reply(call);
    };
    require(sd_bus_add_fallback(m_bus, nullptr, "/org/freedesktop/UDisks2", answer, this) >= 0, "no objects");
    require(sd_bus_request_name(m_bus, kName, 0) >= 0, "no name");
    m_thread = std::thread([this] {
        constexpr std::uint64_t kLookRoundMicroseconds = 5000;
        while (!m_isEnding) {
            if (sd_bus_process(m_bus, nullptr) == 0)
                sd_bus_wait(m_bus, kLookRoundMicroseconds);
        }
    });
}

FakeUDisks::~FakeUDisks()
{
    m_isEnding = true;
    m_thread.join();
    sd_bus_flush_close_unref(m_bus);
}

std::vector<std::string> FakeUDisks::calls() const
{
    const std::lock_guard lock(m_mutex);
    return m_calls;
}

std::vector<std::string> FakeUDisks::acts() const
{
    const std::lock_guard lock(m_mutex);
    return m_acts;
}

void FakeUDisks::refuse(std::string reason)
{
    const std::lock_guard lock(m_mutex);
    m_refusal = std::move(reason);
}

int FakeUDisks::reply(sd_bus_message *call)
{
    {
        const std::lock_guard lock(m_mutex);
        m_calls.push_back(fmt::format("{}.{}", sd_bus_message_get_interface(call), sd_bus_message_get_member(call)));
    }
    if (sd_bus_message_has_signature(call, "a{sv}") > 0) {
        const std::lock_guard lock(m_mutex);
        m_acts.push_back(fmt::format("{} {}", sd_bus_message_get_member(call), sd_bus_message_get_path(call)));
        return m_refusal.empty() ? sd_bus_reply_method_return(call, nullptr)
                                 : sd_bus_reply_method_errorf(call, "org.freedesktop.UDisks2.Error.DeviceBusy", "%s",
                                                              m_refusal.c_str());
    }
    const char *interface = nullptr;
    const char *name = nullptr;
    if (sd_bus_message_read(call, "ss", &interface, &name) < 0)
        return sd_bus_reply_method_errorf(call, "org.freedesktop.DBus.Error.UnknownMethod", "no such method");
    const auto found = m_properties.find({sd_bus_message_get_path(call), interface, name});
    if (found == m_properties.end())
        return sd_bus_reply_method_errorf(call, "org.freedesktop.DBus.Error.InvalidArgs", "no such property");
    sd_bus_message *message = nullptr;
    require(sd_bus_message_new_method_return(call, &message) >= 0, "no reply");
    std::visit([&](const auto &value) { require(appendTo(message, value) >= 0, "no value"); }, found->second);
    require(sd_bus_send(nullptr, message, nullptr) >= 0, "not sent");
    sd_bus_message_unref(message);
    return 1;
}

} // namespace brindle::tools
