#pragma once

#import <Foundation/Foundation.h>

#include <string>
#include <utility>

#include "appkit/Views.h"
#include "platform/Bundle.h"

namespace quorel::appkit {

/// Bundles on disk. Main thread.
class Bundle : public quorel::Bundle {
public:
    /// Where its plug-ins lie, when that is not inside it.
    explicit Bundle(NSBundle *bundle, std::string plugInsPath = {})
        : _bundle(bundle), _plugInsPath(std::move(plugInsPath)) {}
    std::string bundlePath() const override;
    std::string builtInPlugInsPath() const override;
    Value infoDictionary() const override;
    bool load() override;
    std::shared_ptr<Object> classNamed(std::string_view name) override;
    std::string localizedStringForKeyValueTable(std::string_view key, std::string_view value,
                                                std::string_view table) const override;
    std::shared_ptr<Image> imageNamed(std::string_view name) const override;

private:
    Retained<NSBundle> _bundle;
    const std::string _plugInsPath;
};

class Bundles : public quorel::Bundles {
public:
    std::shared_ptr<quorel::Bundle> bundleWithPath(std::string_view path) override;
    std::vector<std::string> pathsForResourcesOfTypeInDirectory(std::string_view extension,
                                                                std::string_view directory) override;
};

}  // namespace quorel::appkit
