#include "tests/configurator/ConfiguratorTest.h"

namespace quorel::test {
namespace {

using DragAndDropTest = ConfiguratorTest;

TEST_F(DragAndDropTest, DropsByTheRule) {
    startWithModules();
    struct {
        const char* list;
        int dragged, row;
        const char* left;
        bool accepted;
    } const cases[] = {
        {"012", 0, 2, "102", true},  {"012", 2, 0, "201", true},   {"012", 1, 1, "102", true},
        {"012", 0, 3, "120", true},  {"012", 2, 2, "021", true},   {"012", 2, 3, "012", true},
        {"012", 1, 0, "102", true},  {"012", 0, 1, "012", true},   {"0", 0, 1, "0", true},
        {"012", 0, 0, "12", false},  {"0", 0, 0, "", false},  // no place to go to: taken out, and that is all
        {"012", 1, 4, "012", false}, {"012", 1, -1, "012", false},
    };
    for (const auto operation : {DropOperation::Above, DropOperation::On}) {
        for (const auto& [list, dragged, row, left, accepted] : cases) {
            configurator->setScheduleArray(listOf(list));
            const int reloads = ui.table->reloads;
            EXPECT_EQ(ui.table->drag({dragged}, row, operation), accepted) << list << dragged << row;
            EXPECT_EQ(tags(), left) << list << dragged << row;
            EXPECT_EQ(ui.table->reloads - reloads, accepted || tags() != list) << list << dragged << row;
        }
    }
    EXPECT_EQ(posted(), 0u);
}

TEST_F(DragAndDropTest, CarriesAnEmptyTypedPasteboardAndRefusesSeveralRows) {
    startWithModules();
    configurator->setScheduleArray(listOf("012"));
    EXPECT_FALSE(ui.table->drag({1, 2}, 0));
    EXPECT_EQ(ui.table->pasteboard.types, std::vector<std::string>{"SchedulePasteboard"});
    EXPECT_EQ(ui.table->pasteboard.owner, configurator.get());
    EXPECT_EQ(ui.table->pasteboard.data.at("SchedulePasteboard"), "");
    EXPECT_FALSE(ui.table->drag({}, 0));
    EXPECT_EQ(tags(), "012");
    EXPECT_EQ(configurator->tableViewValidateDropProposedRowProposedDropOperation(3, DropOperation::On), 4u);
}

}  // namespace
}  // namespace quorel::test
