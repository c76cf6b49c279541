#include "qt/sheet/EditSheet.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTimeEdit>
#include <QTimer>
#include <QVBoxLayout>

#include "model/Dictionary.h"
#include "model/Schedule.h"
#include "qt/host/Forecast.h"
#include "qt/list/ScheduleTable.h"
#include "qt/sheet/DayButton.h"
#include "qt/sheet/OptionForm.h"
#include "qt/toolkit/Mnemonics.h"
#include "qt/toolkit/Services.h"
#include "qt/toolkit/Text.h"
#include "words/Language.h"

namespace quorel::qt {

EditSheet::EditSheet(QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::WindowCloseButtonHint),
      _action(new QComboBox(this)),
      _options(new QWidget(this)),
      _noOptions(new QLabel(this)),
      _time(new QTimeEdit(this)),
      _everyDay(new QPushButton(qString(translated("Every day")), this)),
      _wakes(new QCheckBox(qString(translated("Wake the computer up")), this)),
      _starts(new QCheckBox(qString(translated("Turn the computer on")), this)),
      _daysFault(faultLine(this)),
      _fault(faultLine(this)),
      _next(new QLabel(this)),
      _save(new QPushButton(this)) {
    _action->setAccessibleName(qString(translated("Action")));
    _time->setAccessibleName(qString(translated("Time")));
    _time->setDisplayFormat(shortTimeFormat());
    _time->setWrapping(true);
    _noOptions->setFixedHeight(0);
    _noOptions->hide();

    _next->setWordWrap(true);
    _next->setTextFormat(Qt::PlainText);
    auto* const cancel = new QPushButton(qString(translated("Cancel")), this);
    cancel->setAutoDefault(false);
    _save->setDefault(true);
    auto* const buttons = new QDialogButtonBox(this);
    buttons->addButton(cancel, QDialogButtonBox::RejectRole);
    buttons->addButton(_save, QDialogButtonBox::AcceptRole);
    connect(buttons, &QDialogButtonBox::rejected, this, &EditSheet::reject);

    auto* const whole = new QVBoxLayout(this);
    whole->addLayout(fields());
    whole->addWidget(_fault);
    whole->addWidget(_next);
    whole->addStretch();
    whole->addWidget(buttons);
}

QLayout* EditSheet::fields() {
    auto* const days = new QHBoxLayout;
    days->setSpacing(4);
    for (std::size_t day = 0; day < _days.size(); ++day) {
        _days[day] = new DayButton(this, static_cast<int>(day));
        days->addWidget(_days[day]);
    }
    _everyDay->setAutoDefault(false);
    days->addStretch();
    days->addWidget(_everyDay);

    auto* const form = new QFormLayout;
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    auto* const what = new QVBoxLayout;  // options that are none take no place
    what->addWidget(_action, 0, Qt::AlignLeft);
    what->addWidget(_options);
    form->addRow(qString(translated("What")), what);
    qobject_cast<QLabel*>(form->labelForField(what))->setBuddy(_action);
    form->addRow(qString(translated("When")), _time);
    form->addRow(qString(translated("Days")), days);
    form->addRow(QString(), _daysFault);
    form->addRow(qString(translated("Computer")), _wakes);
    form->addRow(QString(), _starts);
    return form;
}

/// An action's options come between the action and the time, whenever they were made.
void EditSheet::orderTabs() {
    QWidget* last = _action;
    if (const OptionForm* const options = form()) {
        for (QWidget* const control : options->controls()) {
            setTabOrder(last, control);
            last = control;
        }
    }
    setTabOrder(last, _time);
}

void EditSheet::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    orderTabs();
    giveMnemonics(*this);
    _action->setFocus(Qt::TabFocusReason);
    if (changed) changed();
}

void EditSheet::prepare(bool adding) {
    setWindowTitle(qString(adding ? translated("New schedule") : translated("Schedule")));
    _save->setText(qString(adding ? translated("Add") : translated("Save")));
    adjustSize();
}

void EditSheet::reject() {
    if (_owner) _owner->closeEditSheet(nullptr);
}

void EditSheet::showNext(const QString& text) {
    _next->setText(text);
}

void EditSheet::showFault(const std::string& reason, const QString& text) {
    OptionForm* const options = form();
    const bool isOptions = options && options->showFault(reason, text);
    for (QLabel* label : {_daysFault, _fault}) {
        const bool isDays = reason == wire::schedule_fault::kDays;
        const bool fits = !isOptions && isDays == (label == _daysFault);
        label->setText(fits ? text : QString());
        label->setVisible(!label->text().isEmpty());
    }
    QTimer::singleShot(0, this, [this] { adjustSize(); });  // when layouts know of the lines that came or went
}

OptionForm* EditSheet::form() const {
    for (QObject* const child : _options->children()) {
        auto* const options = dynamic_cast<OptionForm*>(child);
        if (options && !options->isHidden()) return options;
    }
    return nullptr;
}

Value EditSheet::schedule() const {
    Dictionary schedule{{schedule_keys::kIsEnabled, 1},
                        {schedule_keys::kActionHour, _time->time().hour()},
                        {schedule_keys::kActionMinute, _time->time().minute()}};
    for (std::size_t day = 0; day < _days.size(); ++day)
        schedule.set(schedule_keys::kActiveOnDays[day], _days[day]->isChecked() ? 1 : 0);
    const auto action = _owner->pluginNames().find(stdString(_action->currentText()));
    if (action != _owner->pluginNames().end()) schedule.set(schedule_keys::kActionType, action->second);
    if (const OptionForm* const options = form())
        schedule.set(schedule_keys::kActionParameters, options->taken(Value(Dictionary())));
    return schedule;
}

void EditSheet::connectTo(VXConfigurator& owner) {
    _owner = &owner;
    auto& outlets = owner.outlets;
    outlets.editSheet = std::make_shared<Window>(this);
    outlets.editCustomView = std::make_shared<View>(_options);
    outlets.blankOptionsView = std::make_shared<View>(_noOptions);
    outlets.timeControl = std::make_shared<DatePicker>(_time);
    outlets.popUpType = std::make_shared<PopUpButton>(_action);
    outlets.selectAllButton = std::make_shared<Button>(_everyDay);
    outlets.startupEdit = std::make_shared<Button>(_starts);
    outlets.wakeUpEdit = std::make_shared<Button>(_wakes);
    outlets.actionStateEdit = std::make_shared<ImageView>(nullptr);
    outlets.progressEdit = std::make_shared<ProgressIndicator>();
    for (std::size_t day = 0; day < _days.size(); ++day) outlets.activeOn[day] = std::make_shared<Button>(_days[day]);

    const auto tell = [this] {
        if (changed) changed();
    };
    connect(_action, qOverload<int>(&QComboBox::activated), this, [this, tell] {
        _owner->selectActionType(_owner->outlets.popUpType.get());
        orderTabs();
        giveMnemonics(*this);
        tell();
    });
    std::vector<QAbstractButton*> boxes(_days.begin(), _days.end());
    boxes.insert(boxes.end(), {_wakes, _starts});
    for (QAbstractButton* const box : boxes)
        connect(box, &QAbstractButton::clicked, this, [this, tell, sender = std::make_shared<Button>(box)] {
            _owner->checkboxAction(sender.get());
            tell();
        });
    connect(_everyDay, &QAbstractButton::clicked, this, [this, tell] {
        _owner->checkAllDays(_owner->outlets.selectAllButton.get());
        tell();
    });
    connect(_time, &QTimeEdit::timeChanged, this, tell);
    connect(_save, &QAbstractButton::clicked, this, [this] { _owner->saveSchedule(nullptr); });
}

ConfiguratorInterface::ConfiguratorInterface(EditSheet& sheet, std::shared_ptr<TableView> table,
                                             std::shared_ptr<Button> add, std::shared_ptr<Button> remove,
                                             std::shared_ptr<Button> edit)
    : _sheet(sheet),
      _table(std::move(table)),
      _add(std::move(add)),
      _remove(std::move(remove)),
      _edit(std::move(edit)) {}

bool ConfiguratorInterface::loadNibNamedOwner(std::string_view, VXConfigurator& owner) {
    owner.outlets.mainView = std::make_shared<View>(static_cast<ScheduleTable&>(*_table).native());
    owner.outlets.tableView = _table;
    owner.outlets.addButton = _add;
    owner.outlets.deleteButton = _remove;
    owner.outlets.editButton = _edit;
    owner.outlets.progressMain = std::make_shared<ProgressIndicator>();
    _sheet.connectTo(owner);
    static_cast<ScheduleTable&>(*_table).setSource(&owner);
    owner.awakeFromNib();
    return true;
}

}  // namespace quorel::qt
