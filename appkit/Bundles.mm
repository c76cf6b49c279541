#import "appkit/Bundles.h"

#import <AppKit/AppKit.h>

#include "appkit/Controls.h"
#include "appkit/ModuleClass.h"
#include "appkit/Strings.h"
#include "appkit/Values.h"

namespace quorel::appkit {

std::string Bundle::bundlePath() const {
    return stdString([_bundle.get() bundlePath]);
}

std::string Bundle::builtInPlugInsPath() const {
    return stdString([_bundle.get() builtInPlugInsPath]);
}

Value Bundle::objectForInfoDictionaryKey(std::string_view key) const {
    return valueFromObject([_bundle.get() objectForInfoDictionaryKey:nsString(key)]);
}

bool Bundle::load() {
    return [_bundle.get() load];
}

std::shared_ptr<Object> Bundle::classNamed(std::string_view name) {
    return moduleClass([_bundle.get() classNamed:nsString(name)], _bundle.get());
}

std::string Bundle::localizedStringForKeyValueTable(std::string_view key, std::string_view value,
                                                    std::string_view table) const {
    return stdString([_bundle.get() localizedStringForKey:nsString(key)
                                                    value:nsString(value)
                                                    table:table.empty() ? nil : nsString(table)]);
}

std::shared_ptr<quorel::Image> Bundle::imageNamed(std::string_view name) const {
    NSString *file = nsString(name);
    NSString *path = [_bundle.get() pathForResource:[file stringByDeletingPathExtension]
                                             ofType:[[file pathExtension] length] ? [file pathExtension] : @"png"];
    if (!path) return nullptr;
    return wrapped<Image>([[[NSImage alloc] initWithContentsOfFile:path] autorelease]);
}

std::shared_ptr<quorel::Bundle> Bundles::bundleWithPath(std::string_view path) {
    return wrapped<Bundle>([NSBundle bundleWithPath:nsString(path)]);
}

std::vector<std::string> Bundles::pathsForResourcesOfTypeInDirectory(std::string_view extension,
                                                                     std::string_view directory) {
    std::vector<std::string> paths;
    for (NSString *path in [NSBundle pathsForResourcesOfType:nsString(extension) inDirectory:nsString(directory)]) {
        paths.push_back(stdString(path));
    }
    return paths;
}

}  // namespace quorel::appkit
