#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "headless/Controls.h"
#include "model/Dictionary.h"
#include "platform/Bundle.h"

namespace quorel::headless {

/// A bundle without files: what it holds is what it was given.
class Bundle : public quorel::Bundle {
public:
    explicit Bundle(std::string_view bundlePath) : path(bundlePath) {}
    std::string bundlePath() const override { return path; }
    std::string builtInPlugInsPath() const override { return path + "/PlugIns"; }
    Value infoDictionary() const override { return info; }
    bool load() override {
        ++loads;
        return loadable;
    }
    std::shared_ptr<Object> classNamed(std::string_view name) override {
        const auto found = classes.find(std::string(name));
        return found == classes.end() ? nullptr : found->second;
    }
    std::string localizedStringForKeyValueTable(std::string_view key, std::string_view value,
                                                std::string_view) const override {
        const auto found = texts.find(std::string(key));
        return found != texts.end() ? found->second : std::string(value.empty() ? key : value);
    }
    /// Every name has an image.
    std::shared_ptr<quorel::Image> imageNamed(std::string_view name) const override {
        return std::make_shared<Image>(name);
    }

    std::string path;
    Value info;  ///< a dictionary
    std::map<std::string, std::shared_ptr<Object>> classes;
    std::map<std::string, std::string> texts;  ///< a key that is missing stands for itself
    bool loadable = true;
    int loads = 0;
};

class Bundles : public quorel::Bundles {
public:
    std::shared_ptr<quorel::Bundle> bundleWithPath(std::string_view path) override {
        const auto found = byPath.find(std::string(path));
        return found == byPath.end() ? nullptr : found->second;
    }
    std::vector<std::string> pathsForResourcesOfTypeInDirectory(std::string_view extension,
                                                                std::string_view directory) override {
        std::vector<std::string> paths;
        for (const auto& path : directories[std::string(directory)]) {
            if (path.ends_with("." + std::string(extension))) paths.push_back(path);
        }
        return paths;
    }

    std::map<std::string, std::shared_ptr<quorel::Bundle>> byPath;
    std::map<std::string, std::vector<std::string>> directories;  ///< directory → full paths, in the order listed
};

}  // namespace quorel::headless
