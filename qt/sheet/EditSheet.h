#pragma once

#include <QDialog>
#include <array>
#include <functional>
#include <memory>

#include "configurator/VXConfigurator.h"
#include "qt/toolkit/Views.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;
class QTimeEdit;

namespace quorel::qt {

class OptionForm;

/// The sheet on which a Schedule is edited: its controls, connected to the configurator's operations.
class EditSheet : public QDialog {
public:
    explicit EditSheet(QWidget* parent);

    /// Fills the owner's outlets of the sheet and connects the controls.
    void connectTo(VXConfigurator& owner);
    /// What the controls say, for telling when it comes next and what is wrong with it.
    Value schedule() const;

    /// Called after every change of a control, with the sheet as it stands then.
    std::function<void()> changed;
    void showNext(const QString& text);
    /// Under the field that it is about, as Forecast::Answer has it; none where the text is empty.
    void showFault(const std::string& reason, const QString& text);

    void reject() override;  ///< Escape, or the window's own button: cancels
    void prepare(bool adding);

protected:
    void showEvent(QShowEvent* event) override;

private:
    QLayout* fields();
    OptionForm* form() const;
    void orderTabs();

    QComboBox* const _action;
    QWidget* const _options;
    QLabel* const _noOptions;
    QTimeEdit* const _time;
    std::array<QPushButton*, 7> _days;
    QPushButton* const _everyDay;
    QCheckBox* const _wakes;
    QCheckBox* const _starts;
    QLabel* const _daysFault;
    QLabel* const _fault;  ///< of no field
    QLabel* const _next;
    QPushButton* const _save;
    VXConfigurator* _owner = nullptr;
};

/// The configurator's interface, made by code.
class ConfiguratorInterface : public ConfiguratorNib {
public:
    ConfiguratorInterface(EditSheet& sheet, std::shared_ptr<TableView> table, std::shared_ptr<Button> add,
                          std::shared_ptr<Button> remove, std::shared_ptr<Button> edit);
    bool loadNibNamedOwner(std::string_view name, VXConfigurator& owner) override;

private:
    EditSheet& _sheet;
    const std::shared_ptr<TableView> _table;
    const std::shared_ptr<Button> _add, _remove, _edit;
};

}  // namespace quorel::qt
