// Opens what a Schedule names, in the session in which it is started: a web address, a file, or an application.

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "model/ActionParameters.h"
#include "modules/Program.h"

namespace {

namespace fs = std::filesystem;

using Command = std::vector<std::string>;

/// What fails does so at once; what still runs after that has opened.
constexpr int kPatience = 5000;  // milliseconds

std::string environmentOr(const char* name, std::string_view otherwise) {
    const char* value = std::getenv(name);
    return value && *value ? value : std::string(otherwise);
}

bool isProgram(const fs::path& file) {
    std::error_code error;
    return fs::is_regular_file(file, error) && access(file.c_str(), X_OK) == 0;
}

bool isWebAddress(const std::string& text) {
    return strncasecmp(text.c_str(), "http://", 7) == 0 || strncasecmp(text.c_str(), "https://", 8) == 0;
}

/// The first of these names in the folders of a search path. Empty where there is none.
template <class Fits>
fs::path found(std::string_view folders, const std::string& name, Fits fits) {
    for (std::size_t begin = 0; begin <= folders.size();) {
        const std::size_t end = std::min(folders.find(':', begin), folders.size());
        const fs::path file = fs::path(folders.substr(begin, end - begin)) / name;
        if (file.is_absolute() && fits(file)) return file;
        begin = end + 1;
    }
    return {};
}

/// What a program is given is a whole path or an address, so never an option.
Command openingFile(const fs::path& file) {
    std::error_code error;
    if (!fs::exists(file, error)) throw std::runtime_error("there is no " + file.string());
    if (file.extension() == ".desktop") return {"gio", "launch", file};
    if (file.extension() == ".app" && fs::is_directory(file, error)) return {"openapp", file};
    if (isProgram(file)) return {file};
    return {"xdg-open", file};
}

/// As the desktop knows it, in a terminal where it needs one, or else a program.
Command openingApplication(const std::string& name) {
    const std::string folders = environmentOr("XDG_DATA_HOME", quorel::fromHome("~/.local/share")) + ":" +
                                environmentOr("XDG_DATA_DIRS", "/usr/local/share:/usr/share");
    const auto exists = [](const fs::path& file) { return access(file.c_str(), R_OK) == 0; };
    if (const fs::path file = found(folders, "applications/" + name + ".desktop", exists); !file.empty())
        return openingFile(file);
    if (const fs::path file = found(environmentOr("PATH", "/usr/local/bin:/usr/bin:/bin"), name, isProgram);
        !file.empty())
        return {file};
    throw std::runtime_error("there is no application " + name);
}

Command opening(const std::string& target) {
    if (target.empty()) throw std::runtime_error("nothing is named that could be opened");
    if (isWebAddress(target)) return {"xdg-open", target};
    const std::string path = quorel::fromHome(target);
    if (path.starts_with('/')) return openingFile(path);
    if (target.find('/') == std::string::npos) return openingApplication(target);
    throw std::runtime_error("neither a web address nor a whole path: " + target);
}

/// In a session of its own, and with nobody to read what it writes: it stays when this program has ended. The error, or
/// 0.
int start(Command command, pid_t& child) {
    std::vector<char*> arguments;
    for (std::string& word : command) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    for (const int file : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        posix_spawn_file_actions_addopen(&files, file, "/dev/null", O_RDWR, 0);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    const int error = posix_spawnp(&child, arguments[0], &files, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    return error;
}

void run(const Command& command) {
    pid_t child = 0;
    int error = start(command, child);
    // Files of some disks are all marked as programs.
    if (error == ENOEXEC) error = start({"xdg-open", command.back()}, child);
    if (error != 0) throw std::runtime_error(command.front() + ": " + std::strerror(error));

    pollfd end{static_cast<int>(syscall(SYS_pidfd_open, child, 0)), POLLIN, 0};
    poll(&end, 1, kPatience);
    int status = 0;
    if (waitpid(child, &status, WNOHANG) != child || status == 0) return;
    throw std::runtime_error(command.front() + (WIFEXITED(status)
                                                    ? " ended with status " + std::to_string(WEXITSTATUS(status))
                                                    : " was ended by signal " + std::to_string(WTERMSIG(status))));
}

std::string trimmed(const std::string& text) {
    constexpr const char* kSpace = " \t\r\n";
    const std::size_t begin = text.find_first_not_of(kSpace);
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(kSpace) - begin + 1);
}

}  // namespace

int main() {
    try {
        run(opening(trimmed(quorel::actionParameters()[quorel::parameters::kTarget].text())));
        return 0;
    } catch (const std::exception& error) {
        return quorel::failed(error.what());
    }
}
