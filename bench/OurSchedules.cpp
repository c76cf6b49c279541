#include "bench/OurSchedules.h"

#include <malloc.h>

#include "bench/Content.h"
#include "bench/FoundationSchedules.h"
#include "configurator/VXConfigurator.h"
#include "model/Dictionary.h"
#include "tests/support/FakeModule.h"
#include "tests/support/HeadlessNib.h"

namespace quorel::bench {

namespace {

class QuietCenter : public NotificationCenter {
public:
    void addObserver(std::string_view, Observer) override {}
    void postNotification(const Notification&) override {}
};

class Formatter : public TimeFormat {
public:
    std::string shortTimeString(const CalendarDate& date) const override {
        return shortTimeByFormatter(date.hour, date.minute);
    }
};

class Module : public test::FakeModule {
public:
    std::string actionString() override { return "Puts the computer to sleep"; }
    void setParameters(const Value& parameters) override { current = parameters; }
};

/// Keys and repeated texts are shared.
Value makeList(int count) {
    Array list;
    list.reserve(static_cast<std::size_t>(count));
    Dictionary shape{{schedule_keys::kActionType, ""},
                     {schedule_keys::kActionParameters, 0},
                     {schedule_keys::kActionHour, 0},
                     {schedule_keys::kActionMinute, 0},
                     {schedule_keys::kIsEnabled, 0}};
    for (const auto day : schedule_keys::kActiveOnDays) shape.set(day, false);
    const Dictionary parametersShape{{"n", 0}, {"startup", false}, {"wake", false}};
    std::map<std::string, Value> texts;
    const auto shared = [&texts](const std::string& text) { return texts.try_emplace(text, text).first->second; };
    for (int i = 0; i < count; ++i) {
        const Content content = Content::ofNumber(i);
        Dictionary parameters = parametersShape;
        parameters.set("n", content.parameter);
        Dictionary schedule = shape;
        schedule.set(schedule_keys::kActionType, shared(content.type));
        schedule.set(schedule_keys::kActionParameters, std::move(parameters));
        schedule.set(schedule_keys::kActionHour, content.hour);
        schedule.set(schedule_keys::kActionMinute, shared(std::to_string(content.minute)));
        schedule.set(schedule_keys::kIsEnabled, content.enabled ? 1 : 0);
        for (unsigned day = 0; day < 7; ++day) {
            schedule.set(schedule_keys::kActiveOnDays[day], (content.days >> day & 1) != 0);
        }
        list.push_back(Value(std::move(schedule)));
    }
    return Value(std::move(list));
}

}  // namespace

struct OurSchedules::Parts {
    headless::HeadlessPlatform host;
    QuietCenter center;
    Formatter timeFormat;
    Platform platform{{.application = host.application,
                       .bundles = host.bundles,
                       .cells = host.cells,
                       .defaultCenter = center,
                       .standardUserDefaults = host.standardUserDefaults,
                       .timeFormat = timeFormat},
                      host.platform};
    test::ConfiguratorInterface ui;
    std::shared_ptr<VXConfigurator> configurator;
    Value list;
    double bytesPerSchedule = 0;
};

OurSchedules::OurSchedules(int count) : _parts(std::make_unique<Parts>()) {
    const auto bundle = std::make_shared<headless::Bundle>("/pane");
    for (const auto& [type, name] :
         {std::pair(schedule_keys::kSleepType, "Sleep"), {schedule_keys::kWakeUpType, "Wake up"}}) {
        const auto module = std::make_shared<Module>();
        module->identifier = type;
        module->name = name;
        test::installModule(_parts->host.bundles, module, bundle->builtInPlugInsPath(), name);
    }
    _parts->configurator = VXConfigurator::init(bundle, _parts->ui, _parts->platform);
    const auto before = mallinfo2();
    _parts->list = makeList(count);
    const auto after = mallinfo2();
    _parts->bytesPerSchedule =
        static_cast<double>(after.uordblks + after.hblkhd - before.uordblks - before.hblkhd) / count;
    handOver();
}

OurSchedules::~OurSchedules() = default;

double OurSchedules::bytesPerSchedule() const {
    return _parts->bytesPerSchedule;
}

std::size_t OurSchedules::handOver() {
    _parts->configurator->setScheduleArray(_parts->list);
    return _parts->configurator->scheduleArray().size();
}

void OurSchedules::sort(const char* column) {
    _parts->ui.table->clickHeader(column);
}

void OurSchedules::toggle(std::size_t first, std::size_t rows, const char* column) {
    auto& configurator = *_parts->configurator;
    const auto tableColumn = _parts->ui.table->tableColumnWithIdentifier(column);
    const std::size_t all = configurator.scheduleArray().size();
    for (std::size_t i = 0; i < rows; ++i) {
        configurator.tableViewSetObjectValueForTableColumnRow(*_parts->ui.table, {}, *tableColumn,
                                                              static_cast<int>((first + i) % all));
    }
}

int OurSchedules::count(const char* type) {
    return _parts->configurator->numberOfActionInScheduleArrayOfType(type);
}

std::string OurSchedules::summaries(std::size_t first, std::size_t rows) {
    auto& configurator = *_parts->configurator;
    const auto column = _parts->ui.table->tableColumnWithIdentifier(kInfosColumn);
    const std::size_t all = configurator.scheduleArray().size();
    std::string times;
    for (std::size_t i = 0; i < rows; ++i) {
        const Value summary = configurator.tableViewObjectValueForTableColumnRow(*_parts->ui.table, *column,
                                                                                 static_cast<int>((first + i) % all));
        times += summary["Time"].text();
    }
    return times;
}

}  // namespace quorel::bench
