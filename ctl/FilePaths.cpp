#include "ctl/FilePaths.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "model/ActionParameters.h"
#include "model/Schedule.h"
#include "words/Language.h"

namespace quorel {

namespace {

namespace fs = std::filesystem;

std::string inPath(const std::string& name) {
    const char* path = std::getenv("PATH");
    std::istringstream folders(path ? path : "");
    for (std::string folder; std::getline(folders, folder, ':');) {
        std::error_code error;
        const fs::path file = fs::absolute(fs::path(folder) / name, error).lexically_normal();
        if (fs::is_regular_file(file, error) && access(file.c_str(), X_OK) == 0) return file;
    }
    return {};
}

std::string absolute(const std::string& text) {
    const char* home = std::getenv("HOME");
    if (text.starts_with("~/") && home) return home + text.substr(1);
    std::error_code error;
    const bool isAddress = text.find("://") != std::string::npos;
    const bool isFile = text.find('/') != std::string::npos || fs::exists(text, error);
    return isFile && !isAddress ? fs::absolute(text, error).lexically_normal().string() : text;
}

}  // namespace

std::string makePathsAbsolute(Value& schedule, const Value& stored, const ActionWords& actions) {
    const ActionDescription* description = actions.description(schedule[schedule_keys::kActionType].text());
    if (!description) return {};
    Value parameters = schedule[schedule_keys::kActionParameters];
    for (const Option& option : description->options) {
        const std::string& text = parameters[option.key].text();
        const bool isOld = text == stored[schedule_keys::kActionParameters][option.key].text();
        if (!option.isFile || text.empty() || text.starts_with('/') || isOld) continue;
        const bool isProgram = option.key == parameters::kProgram && text.find('/') == std::string::npos;
        const std::string path = isProgram ? inPath(text) : absolute(text);
        if (path.empty()) return filled(translated("There is no program \"{1}\" in PATH."), {text});
        parameters = parameters.with(option.key, path);
    }
    if (parameters != schedule[schedule_keys::kActionParameters])
        schedule = schedule.with(schedule_keys::kActionParameters, parameters);
    return {};
}

}  // namespace quorel
