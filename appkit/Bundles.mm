#import "appkit/Bundles.h"

#import <AppKit/AppKit.h>

#include <algorithm>
#include <cstdio>

#include "actions/DescriptionKeys.h"
#include "appkit/Controls.h"
#include "appkit/ModuleClass.h"
#include "appkit/OptionsForms.h"
#include "appkit/Resources.h"
#include "appkit/Strings.h"
#include "appkit/Values.h"

namespace quorel::appkit {

std::string Bundle::bundlePath() const {
    return stdString([_bundle.get() bundlePath]);
}

std::string Bundle::builtInPlugInsPath() const {
    return _plugInsPath.empty() ? stdString([_bundle.get() builtInPlugInsPath]) : _plugInsPath;
}

#ifdef GNUSTEP

Value Bundle::infoDictionary() const {
    // As the daemon reads it, and without the framework's words about what it cannot read.
    NSString *path = [[_bundle.get() bundlePath] stringByAppendingPathComponent:@"Resources/Info-gnustep.plist"];
    NSData *data = [NSData dataWithContentsOfFile:path];
    return informationDictionary({static_cast<const char *>([data bytes]), [data length]});
}

bool Bundle::load() {
    // The framework prints why code does not load. Nothing is said of a module that is none.
    FILE *const errors = stderr;
    FILE *const nowhere = std::fopen("/dev/null", "w");
    if (nowhere) stderr = nowhere;
    const bool loaded = [_bundle.get() load];
    stderr = errors;
    if (nowhere) std::fclose(nowhere);
    return loaded;
}

#else

Value Bundle::infoDictionary() const {
    return valueFromObject([_bundle.get() infoDictionary]);
}

bool Bundle::load() {
    return [_bundle.get() load];
}

#endif

std::shared_ptr<Object> Bundle::classNamed(std::string_view name) {
    static Bundles bundles;
    static OptionsForms forms;
    if (name == description_keys::kDescribedPlugIn) return std::make_shared<VXDescribedPlugInClass>(bundles, forms);
    // Asked for a class, a bundle whose code did not load tries again, and complains in the log.
    if (![_bundle.get() isLoaded]) return nullptr;
    return moduleClass([_bundle.get() classNamed:nsString(name)], _bundle.get());
}

std::string Bundle::localizedStringForKeyValueTable(std::string_view key, std::string_view value,
                                                    std::string_view table) const {
    return stdString([_bundle.get() localizedStringForKey:nsString(key)
                                                    value:nsString(value)
                                                    table:table.empty() ? nil : nsString(table)]);
}

std::shared_ptr<quorel::Image> Bundle::imageNamed(std::string_view name) const {
    return wrapped<Image>(VXImageNamed(nsString(name), _bundle.get()));
}

std::shared_ptr<quorel::Bundle> Bundles::bundleWithPath(std::string_view path) {
    return wrapped<Bundle>([NSBundle bundleWithPath:nsString(path)]);
}

std::vector<std::string> Bundles::pathsForResourcesOfTypeInDirectory(std::string_view extension,
                                                                     std::string_view directory) {
    // The framework also lists what lies in the folders of resources and languages below.
    NSString *folder = [nsString(directory) stringByStandardizingPath];
    std::vector<std::string> paths;
    for (NSString *path in [NSBundle pathsForResourcesOfType:nsString(extension) inDirectory:folder]) {
        if ([[path stringByDeletingLastPathComponent] isEqual:folder]) paths.push_back(stdString(path));
    }
    std::ranges::sort(paths);
    return paths;
}

}  // namespace quorel::appkit
