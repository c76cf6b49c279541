#pragma once

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "daemon/modules/ModuleInfo.h"
#include "linux/units/TrustedFolder.h"

namespace quorel {

/// The modules in the installed pane's built-in plug-ins folder, which nobody but root can have put there. What a
/// Schedule runs is found here by its action type; no path ever comes from the preferences. One thread.
class ModuleRegistry {
public:
    /// `root` stands before the folder's path.
    explicit ModuleRegistry(std::string root) : _root(std::move(root)) {}

    /// Reads the folder. What is refused is said once, however often it is read.
    void scan();

    /// By the names of their bundles, those that cannot act among them.
    const std::vector<ModuleInfo>& modules() const { return _modules; }
    /// Null where nobody has that action. Until the next scan.
    const ModuleInfo* find(const std::string& action) const;
    /// Absolute.
    std::string programPath(const ModuleInfo& module) const;

private:
    ModuleInfo read(const TrustedFolder& plugIns, const std::string& name) const;
    void say(const std::string& who, std::string_view fault);

    const std::string _root;
    std::vector<ModuleInfo> _modules;
    std::set<std::pair<std::string, std::string>> _said;
};

}  // namespace quorel
