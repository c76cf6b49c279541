#include "bench/OurSchedules.h"

#include <malloc.h>

#include <algorithm>
#include <iterator>

#include "bench/Content.h"
#include "bench/FoundationSchedules.h"
#include "configurator/VXConfigurator.h"
#include "model/Dictionary.h"
#include "model/PropertyList.h"
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
        return shortTimeByKeptFormatter(date.hour, date.minute);
    }
};

class Module : public test::FakeModule {
public:
    std::string actionString() override { return "Puts the computer to sleep"; }
    void setParameters(const Value& parameters) override { current = parameters; }
};

/// A property list of the Schedules with these numbers.
std::string makeFile(int first, int end) {
    Array list;
    for (int i = first; i < end; ++i) {
        const Content content = Content::ofNumber(i);
        Dictionary schedule{{schedule_keys::kActionType, content.type},
                            {schedule_keys::kActionParameters,
                             Dictionary{{"n", content.parameter}, {"startup", false}, {"wake", false}}},
                            {schedule_keys::kActionHour, content.hour},
                            {schedule_keys::kActionMinute, std::to_string(content.minute)},
                            {schedule_keys::kIsEnabled, content.enabled ? 1 : 0}};
        for (unsigned day = 0; day < 7; ++day) {
            schedule.set(schedule_keys::kActiveOnDays[day], (content.days >> day & 1) != 0);
        }
        list.push_back(std::move(schedule));
    }
    return encodePropertyList(list).value();
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
    Array list;
    list.reserve(static_cast<std::size_t>(count));
    for (int first = 0; first < count; first += kSchedulesPerFile) {
        const std::string file = makeFile(first, std::min(first + kSchedulesPerFile, count));
        const auto before = mallinfo2();
        std::ranges::copy(decodePropertyList(file).array(), std::back_inserter(list));
        const auto after = mallinfo2();
        _parts->bytesPerSchedule +=
            static_cast<double>(after.uordblks + after.hblkhd - before.uordblks - before.hblkhd) / count;
    }
    _parts->list = std::move(list);
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
        configurator.tableViewSetObjectValueForTableColumnRow({}, *tableColumn, static_cast<int>((first + i) % all));
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
        const Value summary =
            configurator.tableViewObjectValueForTableColumnRow(*column, static_cast<int>((first + i) % all));
        times += summary["Time"].text();
    }
    return times;
}

}  // namespace quorel::bench
