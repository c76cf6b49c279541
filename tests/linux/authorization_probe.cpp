// Runs what stands on its input, one call a line, and answers each with its status:
//   create | copy RIGHT FLAGS | copy-null | copy-none | free FLAGS

#include <array>
#include <iostream>
#include <sstream>
#include <string>

#include "linux/PolkitAuthorization.h"

using namespace quorel;

int main() {
    PolkitAuthorization polkit;
    AuthorizationRef reference = nullptr;
    for (std::string line; std::getline(std::cin, line);) {
        std::istringstream words(line);
        std::string command;
        std::string right;
        AuthorizationFlags flags = 0;
        AuthorizationStatus status = 1;
        words >> command;
        if (command == "copy") words >> right;
        words >> flags;
        const std::array<AuthorizationItem, 1> rights{AuthorizationItem{right, {}, 0}};
        if (command == "create") status = polkit.AuthorizationCreate(0, reference);
        if (command == "copy") status = polkit.AuthorizationCopyRights(reference, rights, flags);
        if (command == "copy-null") status = polkit.AuthorizationCopyRights(nullptr, rights, flags);
        if (command == "copy-none") status = polkit.AuthorizationCopyRights(reference, {}, flags);
        if (command == "free") {
            status = polkit.AuthorizationFree(reference, flags);
            reference = nullptr;
        }
        std::cout << status << std::endl;
    }
}
