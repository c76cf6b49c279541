#include "linux/units/UnitProgram.h"

#include <cerrno>
#include <cstdint>

namespace quorel {

namespace {

constexpr std::uint64_t kMostMemory = std::uint64_t{512} * 1024 * 1024;
constexpr std::uint64_t kMostTasks = 64;
constexpr std::uint64_t kParting = 5'000'000;  // microseconds from being asked to end to being ended

template <class... Arguments>
void add(sd_bus_message* call, const char* name, const char* type, Arguments... arguments) {
    sd_bus_message_append(call, "(sv)", name, type, arguments...);
}

/// A property whose content `append` writes.
void addContent(sd_bus_message* call, const char* name, const char* type, const auto& append) {
    sd_bus_message_open_container(call, 'r', "sv");
    sd_bus_message_append(call, "s", name);
    sd_bus_message_open_container(call, 'v', type);
    append();
    sd_bus_message_close_container(call);
    sd_bus_message_close_container(call);
}

void appendTexts(sd_bus_message* call, const std::vector<std::string>& texts) {
    sd_bus_message_open_container(call, 'a', "s");
    for (const std::string& text : texts) sd_bus_message_append(call, "s", text.c_str());
    sd_bus_message_close_container(call);
}

void addCommand(sd_bus_message* call, const std::vector<std::string>& command) {
    addContent(call, "ExecStart", "a(sasb)", [&] {
        sd_bus_message_open_container(call, 'a', "(sasb)");
        sd_bus_message_open_container(call, 'r', "sasb");
        sd_bus_message_append(call, "s", command.front().c_str());
        appendTexts(call, command);
        sd_bus_message_append(call, "b", 0);
        sd_bus_message_close_container(call);
        sd_bus_message_close_container(call);
    });
}

/// A program in it sees the system read-only, no devices, nobody's home and no other processes, and can become nobody
/// else.
void addSandbox(sd_bus_message* call, const UnitSandbox& sandbox) {
    if (!sandbox.isRoot) {
        add(call, "DynamicUser", "b", 1);
        add(call, "CapabilityBoundingSet", "t", std::uint64_t{0});
    }
    for (const char* restriction :
         {"NoNewPrivileges", "PrivateTmp", "PrivateDevices", "ProtectClock", "ProtectControlGroups", "ProtectHostname",
          "ProtectKernelLogs", "ProtectKernelModules", "ProtectKernelTunables", "LockPersonality", "RestrictRealtime",
          "RestrictSUIDSGID"})
        add(call, restriction, "b", 1);
    add(call, "ProtectSystem", "s", "strict");
    add(call, "ProtectHome", "s", "yes");
    add(call, "ProtectProc", "s", "invisible");
    add(call, "RestrictNamespaces", "t", std::uint64_t{0});  // those that it may make
    add(call, "SystemCallFilter", "(bas)", 1, 1, "@system-service");
    add(call, "SystemCallErrorNumber", "i", EPERM);
    add(call, "SystemCallArchitectures", "as", 1, "native");
    add(call, "UMask", "u", 022);
    if (sandbox.mayUseNetwork) {
        add(call, "RestrictAddressFamilies", "(bas)", 1, 4, "AF_UNIX", "AF_INET", "AF_INET6", "AF_NETLINK");
    } else {
        add(call, "PrivateNetwork", "b", 1);
        add(call, "RestrictAddressFamilies", "(bas)", 1, 1, "AF_UNIX");
    }
    if (!sandbox.writes.empty()) addContent(call, "ReadWritePaths", "as", [&] { appendTexts(call, sandbox.writes); });
    add(call, "MemoryMax", "t", kMostMemory);
    add(call, "MemorySwapMax", "t", std::uint64_t{0});
    add(call, "TasksMax", "t", kMostTasks);
}

}  // namespace

void appendProperties(sd_bus_message* call, const UnitProgram& program) {
    sd_bus_message_open_container(call, 'a', "(sv)");
    add(call, "Description", "s", program.description.c_str());
    // It stays until this connection lets go of it, so that its end is not overlooked, and no longer.
    add(call, "AddRef", "b", 1);
    add(call, "CollectMode", "s", "inactive-or-failed");
    add(call, "Type", "s", "exec");
    addCommand(call, program.command);
    add(call, "RuntimeMaxUSec", "t", static_cast<std::uint64_t>(std::chrono::microseconds(program.limit).count()));
    add(call, "TimeoutStopUSec", "t", kParting);
    add(call, "KillMode", "s", program.sandbox ? "control-group" : "process");
    add(call, "SendSIGKILL", "b", 1);
    add(call, "StandardInput", "s", "data");
    addContent(call, "StandardInputData", "ay",
               [&] { sd_bus_message_append_array(call, 'y', program.input.data(), program.input.size()); });
    add(call, "StandardOutput", "s", "journal");
    add(call, "StandardError", "s", "journal");
    add(call, "SyslogIdentifier", "s", program.name.c_str());
    std::vector<std::string> environment;
    for (const auto& [key, value] : program.environment) environment.push_back(key + "=" + value);
    addContent(call, "Environment", "as", [&] { appendTexts(call, environment); });
    if (program.sandbox) addSandbox(call, *program.sandbox);
    sd_bus_message_close_container(call);
}

}  // namespace quorel
