#include "words/Language.h"

#include <langinfo.h>
#include <libintl.h>

#include <array>
#include <clocale>
#include <cstdlib>
#include <ctime>
#include <filesystem>

namespace quorel {

namespace {

constexpr const char* kDomain = "quorel";

/// Where they lie as seen from the program, in `bin` or in a folder of `libexec`; a build folder is alike. Empty where
/// there are none.
std::string textsFolder() {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    for (const char* way : {"../share/locale", "../../share/locale"}) {
        const auto folder = (program / way).lexically_normal();
        if (std::filesystem::exists(folder / "fr/LC_MESSAGES/quorel.mo", error)) return folder;
    }
    return {};
}

std::string formatted(const std::string& format, Instant instant) {
    const std::time_t time = instant;
    std::tm local{};
    std::array<char, 128> text{};
    if (!localtime_r(&time, &local)) return std::to_string(instant);
    return {text.data(), std::strftime(text.data(), text.size(), format.c_str(), &local)};
}

/// The locale's own form of a time shows seconds.
const char* shortTime() {
    const std::string_view whole = nl_langinfo(T_FMT);
    for (const char* half : {"%r", "%I", "%l", "%p"})
        if (whole.find(half) != std::string_view::npos) return "%-I:%M %p";
    return "%H:%M";
}

/// Nobody's country writes what the locale "C" does.
const char* shortDate() {
    return nl_langinfo(D_FMT) == std::string_view("%m/%d/%y") ? "%Y-%m-%d" : "%x";
}

}  // namespace

void speakUsersLanguage() {
    // Not numbers: what programs read and write is to have a decimal point.
    for (const int category : {LC_CTYPE, LC_MESSAGES, LC_TIME}) std::setlocale(category, "");
    if (const std::string folder = textsFolder(); !folder.empty()) bindtextdomain(kDomain, folder.c_str());
    bind_textdomain_codeset(kDomain, "UTF-8");
}

std::string usersLanguage() {
    const std::string_view locale = std::setlocale(LC_MESSAGES, nullptr);
    const char* preferred = std::getenv("LANGUAGE");  // gettext's own, which counts outside the locale "C" alone
    if (locale == "C" || locale == "POSIX") return "en";
    const std::string_view language = preferred && *preferred ? preferred : locale;
    return std::string(language.starts_with("C.") ? "en" : language.substr(0, 2));
}

const char* translated(const char* english) {
    return dgettext(kDomain, english);
}

const char* translatedCount(const char* one, const char* many, std::int64_t count) {
    return dngettext(kDomain, one, many, static_cast<unsigned long>(std::abs(count)));
}

std::string filled(std::string_view text, std::initializer_list<std::string_view> arguments) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isPlace = text[i] == '{' && i + 2 < text.size() && text[i + 2] == '}';
        const std::size_t number = isPlace ? static_cast<std::size_t>(text[i + 1] - '1') : arguments.size();
        if (number < arguments.size()) {
            result += arguments.begin()[number];
            i += 2;
        } else {
            result += text[i];
        }
    }
    return result;
}

std::string timeText(Instant instant) {
    return formatted(shortTime(), instant);
}

std::string momentText(Instant instant) {
    return formatted(std::string("%a ") + shortDate() + " " + shortTime(), instant);
}

std::string durationText(Seconds seconds) {
    const Seconds length = std::abs(seconds);
    Seconds count = length;
    const char* text = translatedCount("{1} second", "{1} seconds", count);
    if (length >= 2 * kHour) {
        count = length / kHour;
        text = translatedCount("{1} hour", "{1} hours", count);
    } else if (length >= 2 * kMinute) {
        count = length / kMinute;
        text = translatedCount("{1} minute", "{1} minutes", count);
    }
    return filled(text, {std::to_string(count)});
}

}  // namespace quorel
