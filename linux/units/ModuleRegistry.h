#pragma once

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "actions/ActionDescription.h"
#include "linux/units/TrustedFolder.h"

namespace quorel {

/// The folder of that name with its description and its program; the faults say what is wrong with either.
ActionDescription readModule(const TrustedFolder& plugIns, const std::string& name);

/// The modules in the installed pane's built-in plug-ins folder, which nobody but root can have put there. What a
/// Schedule runs is found here by its action type; no path ever comes from the preferences. One thread.
class ModuleRegistry {
public:
    /// `root` stands before the folder's path.
    explicit ModuleRegistry(std::string root) : _root(std::move(root)) {}

    /// Reads the folder. What is refused is said once, however often it is read.
    void scan();

    /// By the names of their bundles, those that cannot act among them.
    const std::vector<ActionDescription>& modules() const { return _modules; }
    /// The first sound one of that type, or else the first; null where nobody has it. Until the next scan.
    const ActionDescription* find(const std::string& type) const;
    /// Absolute.
    std::string programPath(const ActionDescription& module) const;

private:
    void say(const std::string& who, const DescriptionFault& fault);

    const std::string _root;
    std::vector<ActionDescription> _modules;
    std::set<std::pair<std::string, std::string>> _said;
};

}  // namespace quorel
