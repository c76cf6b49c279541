#include <QAccessible>

#include "tests/qt/WindowTest.h"

namespace quorel::test {
namespace {

using NamesTest = WindowTest;

/// What a screen reader can come to has a name and a role.
void expectNames(QAccessibleInterface* object, const QString& within, int& controls) {
    ASSERT_NE(object, nullptr);
    const QString name = object->text(QAccessible::Name);
    const QString place = within + QLatin1Char('/') + name;
    const QAccessible::State state = object->state();
    if (state.focusable && !state.invisible) {
        ++controls;
        EXPECT_FALSE(name.isEmpty()) << place.toStdString() << ", role " << object->role();
        EXPECT_NE(object->role(), QAccessible::NoRole) << place.toStdString();
    }
    for (int child = 0; child < object->childCount(); ++child)
        if (object->child(child)) expectNames(object->child(child), place, controls);
}

TEST_F(NamesTest, WhateverTakesTheFocusHasAName) {
    open();
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&window)->role(), QAccessible::Window);
    window.notice(QStringLiteral("Something"));
    window.suggest(true);
    for (QWidget* const shown : std::initializer_list<QWidget*>{&window, window.sheet, window.optionsDialog}) {
        if (shown == window.sheet) window.sheet->prepare(true);
        shown->show();
        int controls = 0;
        expectNames(QAccessible::queryAccessibleInterface(shown), {}, controls);
        EXPECT_GT(controls, 5);
    }
}

}  // namespace
}  // namespace quorel::test
