#include "qt/toolkit/Bundles.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <algorithm>

#include "actions/ActionDescription.h"
#include "actions/DescriptionKeys.h"
#include "qt/toolkit/ForeignModule.h"
#include "qt/toolkit/Text.h"
#include "qt/toolkit/Views.h"
#include "words/Language.h"

namespace quorel::qt {

namespace {

std::string contentsOf(const std::string& path) {
    QFile file(qString(path));
    return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
}

/// A table of lines `"key" = "text";`, in which a backslash stands before what it quotes.
std::map<std::string, std::string, std::less<>> textsIn(const std::string& path) {
    static const QRegularExpression kLine(QStringLiteral("^\"((?:[^\"\\\\]|\\\\.)*)\" = \"((?:[^\"\\\\]|\\\\.)*)\";"),
                                          QRegularExpression::MultilineOption);
    static const QRegularExpression kQuoted(QStringLiteral("\\\\(.)"));
    std::map<std::string, std::string, std::less<>> texts;
    auto lines = kLine.globalMatch(qString(contentsOf(path)));
    while (lines.hasNext()) {
        const auto line = lines.next();
        const auto plain = [&](int group) {
            QString text = line.captured(group);
            return stdString(
                text.replace(QStringLiteral("\\n"), QStringLiteral("\n")).replace(kQuoted, QStringLiteral("\\1")));
        };
        texts.emplace(plain(1), plain(2));
    }
    return texts;
}

std::map<std::string, std::string, std::less<>> textsOf(const std::string& bundle) {
    const char* const language = usersLanguage() == "fr" ? "French" : "English";
    return textsIn(bundle + "/Resources/" + language + ".lproj/Localizable.strings");
}

}  // namespace

Bundle::Bundle(std::string path, std::string plugInsPath, quorel::Bundles& bundles, OptionsForms& forms)
    : _bundles(bundles),
      _forms(forms),
      _path(std::move(path)),
      _plugInsPath(std::move(plugInsPath)),
      _info(informationDictionary(contentsOf(_path + "/Resources/Info-gnustep.plist"))),
      _texts(textsOf(_path)) {}

/// A folder with a class of its own is known by its words: what the class would show is not to be had here.
std::shared_ptr<Object> Bundle::classNamed(std::string_view name) {
    if (name == description_keys::kDescribedPlugIn) return std::make_shared<VXDescribedPlugInClass>(_bundles, _forms);
    return std::make_shared<ForeignModuleClass>(_forms);
}

std::string Bundle::localizedStringForKeyValueTable(std::string_view key, std::string_view value,
                                                    std::string_view) const {
    const auto found = _texts.find(key);
    return found != _texts.end() ? found->second : std::string(value.empty() ? key : value);
}

std::shared_ptr<quorel::Image> Bundle::imageNamed(std::string_view name) const {
    std::string path = _path + "/Resources/" + std::string(name);
    if (!path.ends_with(".png")) path += ".png";
    return QFile::exists(qString(path)) ? std::make_shared<Image>(path) : nullptr;
}

std::shared_ptr<quorel::Bundle> Bundles::bundleWithPath(std::string_view path) {
    if (!QDir(qString(path)).exists()) return nullptr;
    return std::make_shared<Bundle>(std::string(path), std::string(), *this, _forms);
}

std::vector<std::string> Bundles::pathsForResourcesOfTypeInDirectory(std::string_view extension,
                                                                     std::string_view directory) {
    const QString ending = QStringLiteral("*.") + qString(extension);
    std::vector<std::string> paths;
    for (const QString& name : QDir(qString(directory)).entryList({ending}, QDir::Dirs | QDir::NoDotAndDotDot))
        paths.push_back(std::string(directory) + "/" + stdString(name));
    std::ranges::sort(paths);  // by bytes, as every reader of modules
    return paths;
}

}  // namespace quorel::qt
