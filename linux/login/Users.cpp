#include "linux/login/Users.h"

#include <pwd.h>

#include <array>

#include "model/PlainText.h"

namespace quorel {

std::string nameOfUser(unsigned user) {
    passwd entry{};
    passwd* found = nullptr;
    std::array<char, 4096> texts{};
    if (getpwuid_r(user, &entry, texts.data(), texts.size(), &found) == 0 && found) return plainText(found->pw_name);
    return std::to_string(user);
}

}  // namespace quorel
