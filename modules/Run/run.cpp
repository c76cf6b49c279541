// Becomes the program that a Schedule names, as whoever is at the computer: how that ends is how the action ends.

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "model/ActionParameters.h"
#include "model/Lines.h"
#include "modules/Program.h"

namespace {

/// What it says goes where this program's words go; there is nothing to read.
int become(std::vector<std::string> command) {
    const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (nothing < 0 || dup2(nothing, STDIN_FILENO) < 0) return errno;
    std::vector<char*> arguments;
    for (std::string& word : command) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    execv(arguments[0], arguments.data());
    return errno;
}

}  // namespace

int main() {
    const quorel::Value own = quorel::actionParameters();
    const std::string program = quorel::fromHome(own[quorel::parameters::kProgram].text());
    if (program.empty()) return quorel::failed("no program is named");
    if (program.front() != '/') return quorel::failed("not a whole path: " + program);
    std::vector<std::string> command = quorel::linesIn(own[quorel::parameters::kArguments].text());
    command.insert(command.begin(), program);
    return quorel::failed(program + ": " + std::strerror(become(std::move(command))));
}
