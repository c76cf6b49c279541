#include "words/DescriptionText.h"

#include "actions/ActionDescription.h"
#include "words/Language.h"

namespace quorel {

namespace {

std::string wordFaultText(const std::string& fault, const std::string& where) {
    if (fault == description_fault::kFormat) return filled(translated("{1} is a version that is not known"), {where});
    if (fault == description_fault::kMissing) return filled(translated("{1} is missing"), {where});
    if (fault == description_fault::kUnknown) return filled(translated("{1} means nothing there"), {where});
    if (fault == description_fault::kKind) return filled(translated("{1} is of the wrong kind"), {where});
    if (fault == description_fault::kRange) return filled(translated("{1} is out of its range"), {where});
    if (fault == description_fault::kDoubled) return filled(translated("{1} is there twice"), {where});
    if (fault == description_fault::kTooMany) return filled(translated("{1} has too many"), {where});
    if (fault == description_fault::kText) return filled(translated("{1} is too long or not plain text"), {where});
    if (fault == description_fault::kMalformed && !where.empty())
        return filled(translated("{1} makes no sense"), {where});
    return fault;
}

}  // namespace

std::string descriptionFaultText(const std::string& fault, const std::string& where) {
    if (fault == description_fault::kUntrusted)
        return translated("it is a link, or others than root could have changed it");
    if (fault == description_fault::kUnreadable) return translated("its information dictionary cannot be read");
    if (fault == description_fault::kNoWords) return translated("it does not say what action it is");
    if (fault == description_fault::kNoProgram) return translated("it has nothing to run");
    if (fault == description_fault::kMalformed && where.empty())
        return translated("what it says of its program makes no sense");
    if (fault == description_fault::kBadProgram)
        return translated(
            "its program is missing, not executable for everybody, or others than root could have changed it");
    if (fault == description_fault::kTaken) return translated("another module is this action already");
    return wordFaultText(fault, where);
}

}  // namespace quorel
