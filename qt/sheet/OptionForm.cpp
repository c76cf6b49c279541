#include "qt/sheet/OptionForm.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTimeEdit>

#include "model/ActionParameters.h"
#include "model/TimeOfDay.h"
#include "model/Wire.h"
#include "qt/toolkit/Services.h"
#include "qt/toolkit/Text.h"
#include "qt/toolkit/Views.h"
#include "qt/window/Card.h"
#include "words/DescriptionText.h"
#include "words/Language.h"

namespace quorel::qt {

namespace {

constexpr int kLongHelp = 22;  ///< times the height of a line: beyond that, it is broken

}  // namespace

QLabel* faultLine(QWidget* parent) {
    QLabel* const line = makeLabel(parent, Weight::kFault);
    line->setWordWrap(true);
    line->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    line->hide();
    return line;
}

OptionForm::OptionForm(const ActionDescription& description, std::string_view language, std::function<void()> changed)
    : _description(description), _language(language), _changed([this, changed = std::move(changed)] {
          checkFiles();
          changed();
      }) {
    auto* const form = new QFormLayout(this);
    form->setContentsMargins(0, 0, 0, 0);
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    for (std::size_t i = 0; i < _description.options.size(); ++i) add(*form, i);
    for (const DescriptionFault& fault : _description.faults) {
        const std::string text = descriptionFaultText(std::string(fault.code), fault.key);
        auto* const line = makeLabel(this, Weight::kText,
                                     qString(filled(translated("This action's description is faulty: {1}"), {text})));
        line->setWordWrap(true);
        form->addRow(line);
    }
}

QString OptionForm::say(const Dictionary& texts) const {
    return qString(inLanguage(texts, _language));
}

void OptionForm::add(QFormLayout& form, std::size_t index) {
    const Option& option = _description.options[index];
    const QString label = say(option.label), unit = say(option.unit), help = say(option.help);
    _fields.push_back(fieldOf(option));
    Field& field = _fields.back();
    if (!field.row) field.row = field.control;
    field.fault = faultLine(this);
    field.control->setAccessibleName(label.contains(unit) ? label : label + QLatin1Char(' ') + unit);
    field.control->setAccessibleDescription(help);
    field.control->setToolTip(help);
    const bool goesOn = _description.goesOn(index);
    if (goesOn) {
        _line->insertWidget(_line->count() - 1, field.row);
    } else if (option.kind == OptionKind::kFlag) {
        _line = new QHBoxLayout;
        _line->addWidget(field.row);
        _line->addStretch();
        form.addRow(_line);
    } else {
        form.addRow(withoutMnemonics(label), field.row);
        if (auto* const buddy = qobject_cast<QLabel*>(form.labelForField(field.row))) buddy->setBuddy(field.control);
    }
    form.addRow(QString(), field.fault);
    if (help.isEmpty() || goesOn) return;
    auto* const line = makeLabel(this, Weight::kHint, help);
    line->setWordWrap(line->sizeHint().width() > line->fontMetrics().height() * kLongHelp);
    form.addRow(QString(), line);
}

OptionForm::Field OptionForm::fieldOf(const Option& option) {
    switch (option.kind) {
        case OptionKind::kFlag:
            return flag(option);
        case OptionKind::kNumber:
            return number(option);
        case OptionKind::kText:
            return text(option);
        case OptionKind::kLines:
            return lines(option);
        case OptionKind::kChoice:
            return choice(option);
        case OptionKind::kTime:
            break;
    }
    return time(option);
}

OptionForm::Field OptionForm::flag(const Option& option) {
    auto* const box = new QCheckBox(withoutMnemonics(say(option.label)), this);
    connect(box, &QCheckBox::clicked, this, [this] {
        enableDependent();
        _changed();
    });
    return {option, box, [box](const Value& value) { box->setChecked(value.intValue() != 0); },
            [box] { return Value(box->isChecked()); }};
}

OptionForm::Field OptionForm::number(const Option& option) {
    auto* const box = new QSpinBox(this);
    box->setRange(option.least, option.most);
    if (const QString unit = say(option.unit); !unit.isEmpty()) box->setSuffix(QLatin1Char(' ') + unit);
    connect(box, qOverload<int>(&QSpinBox::valueChanged), this, _changed);
    return {option, box, [box](const Value& value) { box->setValue(value.intValue()); },
            [box] { return Value(box->value()); }};
}

OptionForm::Field OptionForm::text(const Option& option) {
    auto* const line = new QLineEdit(this);
    connect(line, &QLineEdit::textEdited, this, _changed);
    QWidget* row = line;
    if (option.isFile) {
        row = new QWidget(this);
        auto* const choose = new QPushButton(qString(translated("Choose…")), row);
        choose->setAutoDefault(false);
        auto* const layout = new QHBoxLayout(row);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(line);
        layout->addWidget(choose);
        connect(choose, &QPushButton::clicked, this, [this, line] {
            const QString file = QFileDialog::getOpenFileName(this, {}, line->text());
            if (!file.isEmpty()) line->setText(file);
            if (!file.isEmpty()) _changed();
        });
    }
    return {option, line, [line](const Value& value) { line->setText(qString(value.text())); },
            [line] { return Value(stdString(line->text())); }, row};
}

OptionForm::Field OptionForm::lines(const Option& option) {
    constexpr int kLines = 4;
    auto* const box = new QPlainTextEdit(this);
    box->setTabChangesFocus(true);
    box->setFixedHeight(box->fontMetrics().lineSpacing() * kLines + 2 * box->frameWidth() + 8);
    connect(box, &QPlainTextEdit::textChanged, this, _changed);
    return {option, box, [box](const Value& value) { box->setPlainText(qString(value.text())); },
            [box] { return Value(stdString(box->toPlainText())); }};
}

OptionForm::Field OptionForm::choice(const Option& option) {
    auto* const box = new QComboBox(this);
    for (const Choice& one : option.choices) box->addItem(say(one.names), qString(one.value));
    connect(box, qOverload<int>(&QComboBox::activated), this, _changed);
    return {option, box, [box](const Value& value) { box->setCurrentIndex(box->findData(qString(value.text()))); },
            [box] { return Value(stdString(box->currentData().toString())); }};
}

OptionForm::Field OptionForm::time(const Option& option) {
    auto* const box = new QTimeEdit(this);
    box->setDisplayFormat(shortTimeFormat());
    box->setWrapping(true);
    connect(box, &QTimeEdit::timeChanged, this, _changed);
    return {option, box,
            [box](const Value& value) {
                const int minute = minuteOfDay(value.text()).value_or(0);
                box->setTime(QTime(minute / 60, minute % 60));
            },
            [box] { return Value(timeOfDay(box->time().hour() * 60 + box->time().minute())); }};
}

void OptionForm::show(const Value& parameters) {
    for (const Field& field : _fields) {
        const QSignalBlocker quiet(field.control);
        field.set(parameters[field.option.key]);
    }
    enableDependent();
    checkFiles();
}

std::vector<QWidget*> OptionForm::controls() const {
    std::vector<QWidget*> controls;
    for (const Field& field : _fields) {
        controls.push_back(field.control);
        if (field.row == field.control) continue;
        for (auto* const button : field.row->findChildren<QPushButton*>()) controls.push_back(button);
    }
    return controls;
}

bool OptionForm::showFault(const std::string& reason, const QString& text) {
    const bool isKind = reason == wire::schedule_fault::kDenied || reason == wire::schedule_fault::kSleepKind;
    const bool isUntil = reason == wire::schedule_fault::kUntil;
    bool isShown = false;
    for (const Field& field : _fields) {
        if (field.option.isFile) continue;
        const bool fits = (isKind && field.option.key == parameters::kSleepKind) ||
                          (isUntil && field.option.key == parameters::kUntil);
        field.fault->setText(fits ? text : QString());
        field.fault->setVisible(fits);
        isShown = isShown || fits;
    }
    return isShown;
}

/// A path that leads nowhere is told, and taken all the same: a disk may come later.
void OptionForm::checkFiles() {
    for (const Field& field : _fields) {
        if (!field.option.isFile) continue;
        const std::string path = field.get().text();
        const bool isMissing = path.starts_with('/') && !QFileInfo::exists(qString(path));
        const bool isNone = field.option.key == parameters::kProgram && !path.empty() && !isWholePath(path);
        std::string fault;
        if (isMissing) fault = translated("there is no such file");
        if (isNone)
            fault = filled(translated("\"{1}\" is no whole path of a program, as /usr/bin/rsync or ~/bin/backup.sh."),
                           {path});
        field.fault->setText(qString(fault));
        field.fault->setVisible(!fault.empty());
    }
}

Value OptionForm::taken(const Value& parameters) const {
    Value taken = parameters;
    for (const Field& field : _fields) taken = taken.with(field.option.key, field.get());
    return taken;
}

namespace {

/// The widget is the sheet's, once it stands there; until then it is nobody's.
class PlacedForm : public quorel::OptionsForm {
public:
    explicit PlacedForm(OptionForm* form) : _view(std::make_shared<View>(form)), _form(form) {}
    std::shared_ptr<quorel::View> view() override { return _view; }
    void show(const Value& parameters) override {
        if (_form) _form->show(parameters);
    }
    Value shown() override { return _form ? _form->taken(Value()) : Value(); }

private:
    const std::shared_ptr<View> _view;
    const QPointer<OptionForm> _form;
};

}  // namespace

std::unique_ptr<quorel::OptionsForm> OptionForms::formOf(const ActionDescription& action) {
    return std::make_unique<PlacedForm>(new OptionForm(action, language(), [this] {
        if (changed) changed();
    }));
}

std::string OptionForms::language() const {
    return usersLanguage();
}

void OptionForm::enableDependent() {
    const Value now = taken(Value());
    for (const Field& field : _fields)
        field.row->setEnabled(field.option.dependsOn.empty() || now[field.option.dependsOn].intValue() != 0);
}

}  // namespace quorel::qt
