#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QLabel>
#include <QSpinBox>

#include "model/Dictionary.h"
#include "qt/sheet/OptionForm.h"

namespace quorel::qt {
namespace {

/// One option of each kind.
Dictionary informationDictionary() {
    const auto option = [](const char* key, const char* kind, Dictionary more) {
        more.set("Key", key);
        more.set("Kind", kind);
        more.set("Label", Dictionary{{"en", std::string("The ") + key}});
        return Value(std::move(more));
    };
    const Array choices = {Dictionary{{"Value", "a"}, {"Names", Dictionary{{"en", "First"}}}},
                           Dictionary{{"Value", "b"}, {"Names", Dictionary{{"en", "Second"}}}}};
    return {
        {"VXEditClass", "VXDescribedPlugIn"},
        {"QuorelActionFormat", 1},
        {"QuorelActionType", "org.example.All"},
        {"QuorelActionNames", Dictionary{{"en", "All"}}},
        {"QuorelActionProgram", "all"},
        {"QuorelActionRunsAs", "user"},
        {"QuorelActionOptions",
         Array{option("Flag", "flag", {}),
               option("Number", "number", {{"Default", 5}, {"Most", 9}, {"DependsOn", "Flag"}}),
               option("Text", "text", {}), option("Lines", "lines", {}),
               option("Choice", "choice", {{"Choices", choices}}), option("Time", "time", {{"Default", "07:00"}})}}};
}

TEST(FormTest, ShowsAndTakesEachKind) {
    const ActionDescription action = ActionDescription::from("All.vxplugin", informationDictionary());
    ASSERT_TRUE(action.isSound()) << action.faults.front().code << action.faults.front().key;
    int changes = 0;
    OptionForm form(action, "en", [&] { ++changes; });
    const Value parameters = action.completed(Dictionary{
        {"Flag", true}, {"Number", 3}, {"Text", "a\"b"}, {"Lines", "a\nb"}, {"Choice", "b"}, {"Time", "17:05"}});
    form.show(parameters);
    EXPECT_EQ(form.taken(parameters), parameters);
    EXPECT_EQ(changes, 0);
    auto* const number = form.findChild<QSpinBox*>();
    EXPECT_TRUE(number->isEnabled());
    form.findChild<QAbstractButton*>()->click();
    EXPECT_FALSE(number->isEnabled());
    EXPECT_EQ(form.taken(parameters)["Flag"], Value(false));
    EXPECT_EQ(changes, 1);
    for (auto* const child : form.findChildren<QWidget*>()) {
        const bool isControl = child->focusPolicy() != Qt::NoFocus && child->parent() == &form;
        if (isControl) EXPECT_TRUE(child->accessibleName().startsWith(QStringLiteral("The "))) << changes;
    }
}

TEST(FormTest, SaysWhatIsWrongWithADescription) {
    Dictionary faulty = informationDictionary();
    faulty.set("QuorelActionRunsAs", "nobody");
    const OptionForm form(ActionDescription::from("All.vxplugin", faulty), "en", [] {});
    ASSERT_NE(form.findChild<QLabel*>(), nullptr);
    EXPECT_TRUE(form.findChild<QLabel*>()->text().contains(QStringLiteral("QuorelActionRunsAs")));
}

}  // namespace
}  // namespace quorel::qt
