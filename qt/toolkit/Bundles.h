#pragma once

#include <map>
#include <memory>
#include <string>

#include "configurator/VXDescribedPlugIn.h"
#include "platform/Bundle.h"

namespace quorel::qt {

/// A folder as GNUstep lays bundles out: "Resources" with the information dictionary, images and tables of texts by
/// language. No code is ever loaded.
class Bundle : public quorel::Bundle {
public:
    /// `forms` are for actions that are described; both must outlive it.
    Bundle(std::string path, std::string plugInsPath, quorel::Bundles& bundles, OptionsForms& forms);

    std::string builtInPlugInsPath() const override { return _plugInsPath; }
    std::string bundlePath() const override { return _path; }
    Value infoDictionary() const override { return _info; }
    bool load() override { return false; }
    std::shared_ptr<Object> classNamed(std::string_view name) override;
    std::string localizedStringForKeyValueTable(std::string_view key, std::string_view value,
                                                std::string_view table) const override;
    std::shared_ptr<quorel::Image> imageNamed(std::string_view name) const override;

private:
    quorel::Bundles& _bundles;
    OptionsForms& _forms;
    const std::string _path;
    const std::string _plugInsPath;
    const Value _info;
    const std::map<std::string, std::string, std::less<>> _texts;
};

class Bundles : public quorel::Bundles {
public:
    explicit Bundles(OptionsForms& forms) : _forms(forms) {}
    std::shared_ptr<quorel::Bundle> bundleWithPath(std::string_view path) override;
    std::vector<std::string> pathsForResourcesOfTypeInDirectory(std::string_view extension,
                                                                std::string_view directory) override;

private:
    OptionsForms& _forms;
};

}  // namespace quorel::qt
