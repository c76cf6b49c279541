#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "configurator/VXConfigurator.h"
#include "model/Dictionary.h"
#include "model/Schedule.h"
#include "tests/support/FakeModule.h"
#include "tests/support/HeadlessNib.h"

namespace quorel::test {

/// A configurator with the modules "Sleep" and "WakeUp" on a host in memory.
class ConfiguratorTest : public testing::Test {
protected:
    std::shared_ptr<FakeModule> install(std::string_view identifier, std::string_view name) {
        auto module = makeModule(identifier, name);
        installModule(host.bundles, module, bundle->builtInPlugInsPath(), std::string(name));
        return module;
    }
    void start() {
        configurator = VXConfigurator::init(bundle, ui, host.platform);
        ASSERT_TRUE(configurator);
    }
    void startWithModules() {
        sleep = install(schedule_keys::kSleepType, "Sleep");
        wakeUp = install(schedule_keys::kWakeUpType, "WakeUp");
        start();
    }

    /// A Schedule that can be told from others.
    static Value tagged(std::string_view tag, std::string_view type = schedule_keys::kSleepType) {
        return Value(Dictionary{{"Tag", tag}, {schedule_keys::kActionType, type}});
    }
    /// One Schedule for each letter.
    static Value listOf(std::string_view tags) {
        Array schedules;
        for (const char tag : tags) schedules.push_back(tagged(std::string(1, tag)));
        return Value(std::move(schedules));
    }
    std::string tags() const {
        std::string all;
        for (const Value& schedule : configurator->scheduleArray()) all += schedule["Tag"].text();
        return all;
    }
    std::size_t posted() const { return host.defaultCenter.posted.size(); }
    const Value& entry(std::size_t row) const { return configurator->scheduleArray().at(row); }

    headless::HeadlessPlatform host;
    std::shared_ptr<headless::Bundle> bundle = std::make_shared<headless::Bundle>("/pane");
    ConfiguratorInterface ui;
    std::shared_ptr<FakeModule> sleep;
    std::shared_ptr<FakeModule> wakeUp;
    std::shared_ptr<VXConfigurator> configurator;
};

}  // namespace quorel::test
