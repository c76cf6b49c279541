#include "actions/Option.h"

#include <algorithm>
#include <charconv>

#include "model/TimeOfDay.h"

namespace quorel {

namespace {

constexpr std::string_view kYes = "yes";
constexpr std::string_view kNo = "no";

bool isNumeric(const Value& value) {
    return value.isInteger() || value.isReal() || value.isBoolean() || value.isText();
}

bool isControl(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

bool offers(const std::vector<Choice>& choices, std::string_view value) {
    return std::ranges::find(choices, value, &Choice::value) != choices.end();
}

std::optional<Value> numberOf(std::string_view word, int least, int most) {
    int number = 0;
    const auto [end, error] = std::from_chars(word.begin(), word.end(), number);
    if (error != std::errc() || end != word.end() || number < least || number > most) return {};
    return Value(number);
}

}  // namespace

Value Option::completed(const Value& stored) const {
    switch (kind) {
        case OptionKind::kFlag:
            return isNumeric(stored) ? Value(stored.intValue() != 0) : standard;
        case OptionKind::kNumber:
            return isNumeric(stored) ? Value(std::clamp(stored.intValue(), least, most)) : standard;
        case OptionKind::kText:
        case OptionKind::kLines:
            return stored.isText() ? stored : standard;
        case OptionKind::kChoice:
            return offers(choices, stored.text()) ? stored : standard;
        case OptionKind::kTime:
            break;
    }
    const std::optional<int> minute = minuteOfDay(stored.text());
    return minute ? Value(timeOfDay(*minute)) : standard;
}

std::optional<Value> Option::valueOf(std::string_view word) const {
    const auto fit = [word](bool isFit) { return isFit ? std::optional<Value>(word) : std::nullopt; };
    switch (kind) {
        case OptionKind::kFlag:
            return word == kYes || word == kNo ? std::optional<Value>(word == kYes) : std::nullopt;
        case OptionKind::kNumber:
            return numberOf(word, least, most);
        case OptionKind::kText:
            return fit(std::ranges::none_of(word, isControl));
        case OptionKind::kLines:
            return fit(std::ranges::none_of(word, [](char c) { return isControl(c) && c != '\n' && c != '\t'; }));
        case OptionKind::kChoice:
            return fit(offers(choices, word));
        case OptionKind::kTime:
            break;
    }
    const std::optional<int> minute = minuteOfDay(word);
    return minute ? std::optional<Value>(timeOfDay(*minute)) : std::nullopt;
}

std::string Option::wordOf(const Value& value) const {
    const Value own = completed(value);
    if (kind == OptionKind::kFlag) return std::string(own.intValue() != 0 ? kYes : kNo);
    return kind == OptionKind::kNumber ? std::to_string(own.intValue()) : own.text();
}

std::string Option::allowed() const {
    std::string all;
    switch (kind) {
        case OptionKind::kFlag:
            return std::string(kYes).append(", ").append(kNo);
        case OptionKind::kNumber:
            return std::to_string(least) + "-" + std::to_string(most);
        case OptionKind::kTime:
            return "HH:MM";
        case OptionKind::kChoice:
            for (const Choice& choice : choices) all.append(all.empty() ? "" : ", ").append(choice.value);
            return all;
        case OptionKind::kText:
        case OptionKind::kLines:
            break;
    }
    return all;
}

const std::string& inLanguage(const Dictionary& texts, std::string_view language) {
    for (const std::string_view wanted : {language, std::string_view("en")})
        if (const Value& text = texts[wanted]; !text.text().empty()) return text.text();
    return texts.size() > 0 ? texts.valueAt(0).text() : Value().text();
}

std::string typedName(std::string_view name) {
    const auto isCapital = [](char c) { return c >= 'A' && c <= 'Z'; };
    std::string typed;
    bool wasSmall = false;
    for (const char c : name) {
        if (wasSmall && isCapital(c)) typed += '-';
        typed += c == ' ' ? '-' : isCapital(c) ? static_cast<char>(c - 'A' + 'a') : c;
        wasSmall = c >= 'a' && c <= 'z';
    }
    return typed;
}

}  // namespace quorel
