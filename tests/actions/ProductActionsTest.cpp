#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

#include "actions/ActionDescription.h"
#include "model/ActionParameters.h"
#include "model/Schedule.h"
#include "scheduler/ScheduleReading.h"

namespace quorel {
namespace {

namespace fs = std::filesystem;

/// What the source has: the product's folders, and the sample.
std::map<std::string, ActionDescription> productActions() {
    std::map<std::string, ActionDescription> actions;
    for (const auto& entry : fs::recursive_directory_iterator(MODULES)) {
        if (entry.path().filename() != "Info-gnustep.plist") continue;
        std::ifstream file(entry.path());
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        const std::string folder = fs::relative(entry.path(), MODULES).begin()->string();
        actions.emplace(folder, ActionDescription::read(folder, bytes));
    }
    return actions;
}

TEST(ProductActions, AreSoundAndSpeakBothLanguages) {
    const auto actions = productActions();
    EXPECT_GE(actions.size(), 7U);
    for (const auto& [folder, action] : actions) {
        for (const DescriptionFault& fault : action.faults)
            ADD_FAILURE() << folder << " " << fault.code << " " << fault.key;
        if (folder != "sample") EXPECT_EQ(action.type, "com.quorel.plugin." + folder);
        std::vector<Dictionary> texts = {action.names, action.says};
        for (const Option& option : action.options) {
            for (const Choice& choice : option.choices) texts.push_back(choice.names);
            for (const Dictionary& each : {option.label, option.unit, option.help, option.says}) texts.push_back(each);
        }
        for (const Dictionary& each : texts)
            if (each.size() > 0)
                EXPECT_TRUE(each["en"].isText() && each["fr"].isText()) << folder << each.valueAt(0).text();
    }
}

struct NoActions : Actions {
    std::optional<Module> module(const std::string&) const override { return Module{true, 0}; }
    void start(const Occurrence&, bool) override {}
    void find(const Occurrence&) override {}
};

std::shared_ptr<const ScheduleReading> readingOf(const std::string& type, const Value& parameters) {
    const Value schedule = Dictionary{{schedule_keys::kIsEnabled, 1},
                                      {schedule_keys::kActionType, type},
                                      {schedule_keys::kActionMinute, 0},
                                      {schedule_keys::kActionParameters, parameters}};
    const ListReading list = readScheduleList(Array{schedule}, NoActions());
    return list.schedules.empty() ? nullptr : list.schedules[0];
}

/// The scheduler reads parameters itself, by keys and bounds of its own: completing them changes nothing for it.
TEST(ProductActions, MeanTheSameToTheScheduler) {
    const Value odd[] = {Value(), 0, 1, 7, -3, 1000, "20", "abc", "", "99999999999", true, false, 2.5};
    int read = 0;
    for (const auto& [folder, action] : productActions()) {
        Dictionary all = action.standards().dictionary();
        for (const Value& value : odd) {
            for (std::size_t i = 0; i < all.size(); ++i) {
                const Value stored = Value(Dictionary{{parameters::kOnlyWhenIdle, 1}}).with(all.keyAt(i), value);
                const auto raw = readingOf(action.type, stored);
                const auto completed = readingOf(action.type, action.completed(stored));
                if (!raw || !completed) continue;  // whatever has no meaning to the one
                ++read;
                EXPECT_EQ(raw->idle, completed->idle) << folder << " " << all.keyAt(i);
                EXPECT_EQ(raw->restarts, completed->restarts) << folder;
                EXPECT_EQ(raw->wakes, completed->wakes) << folder << " " << all.keyAt(i);
                EXPECT_EQ(raw->starts, completed->starts) << folder << " " << all.keyAt(i);
            }
        }
    }
    EXPECT_GT(read, 300);
}

}  // namespace
}  // namespace quorel
