#include "kit/update/VersionOrder.h"

#include <algorithm>
#include <cstddef>

namespace quorel {

namespace {

constexpr std::size_t kMaximumVersionBytes = 64;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isSeparator(char c) {
    return c == '.' || c == '-' || c == '_' || c == ' ';
}

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Takes the digits at the front of `text`, without leading zeros.
std::string_view takeNumber(std::string_view& text) {
    const auto end = std::find_if_not(text.begin(), text.end(), isDigit);
    std::string_view number = text.substr(0, static_cast<std::size_t>(end - text.begin()));
    text.remove_prefix(number.size());
    number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
    return number;
}

std::string_view takeWord(std::string_view& text) {
    const auto end = std::find_if(text.begin(), text.end(), [](char c) { return isDigit(c) || isSeparator(c); });
    const std::string_view word = text.substr(0, static_cast<std::size_t>(end - text.begin()));
    text.remove_prefix(word.size());
    return word;
}

/// Digits are compared as text, so that no number is too large.
std::weak_ordering compareNumbers(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return a.size() <=> b.size();
    return a <=> b;
}

std::weak_ordering compareWords(std::string_view a, std::string_view b) {
    return std::lexicographical_compare_three_way(a.begin(), a.end(), b.begin(), b.end(),
                                                  [](char x, char y) { return lower(x) <=> lower(y); });
}

bool hasComponent(std::string_view text) {
    return text.size() >= 2 && text[0] == '.' && isDigit(text[1]);
}

std::string_view takeComponent(std::string_view& text) {
    if (!hasComponent(text)) return {};  // missing: the same as zero
    text.remove_prefix(1);
    return takeNumber(text);
}

/// Takes the numbers off both texts; what is left names the pre-release.
std::weak_ordering compareReleases(std::string_view& a, std::string_view& b) {
    std::weak_ordering order = compareNumbers(takeNumber(a), takeNumber(b));
    while (hasComponent(a) || hasComponent(b)) {
        const auto ours = takeComponent(a);
        const auto theirs = takeComponent(b);
        if (order == 0) order = compareNumbers(ours, theirs);
    }
    return order;
}

void skipSeparators(std::string_view& text) {
    while (!text.empty() && isSeparator(text.front())) text.remove_prefix(1);
}

std::weak_ordering comparePreReleases(std::string_view a, std::string_view b) {
    skipSeparators(a);
    skipSeparators(b);
    if (a.empty() || b.empty()) return a.empty() <=> b.empty();  // the release itself is the newest
    while (!a.empty() && !b.empty()) {
        const bool number = isDigit(a.front());
        if (number != isDigit(b.front())) return number ? std::weak_ordering::less : std::weak_ordering::greater;
        const auto take = number ? takeNumber : takeWord;
        const auto ours = take(a);
        const auto theirs = take(b);
        const auto order = number ? compareNumbers(ours, theirs) : compareWords(ours, theirs);
        if (order != 0) return order;
        skipSeparators(a);
        skipSeparators(b);
    }
    return b.empty() <=> a.empty();
}

}  // namespace

bool isVersion(std::string_view text) {
    return !text.empty() && text.size() <= kMaximumVersionBytes && isDigit(text.front()) &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= 0x20 && c <= 0x7e; });
}

std::weak_ordering compareVersions(std::string_view a, std::string_view b) {
    a = a.substr(0, a.find('+'));
    b = b.substr(0, b.find('+'));
    const auto order = compareReleases(a, b);
    return order != 0 ? order : comparePreReleases(a, b);
}

}  // namespace quorel
