#pragma once

#include <QWidget>
#include <functional>
#include <utility>
#include <vector>

#include "actions/ActionDescription.h"
#include "configurator/VXDescribedPlugIn.h"

class QFormLayout;
class QHBoxLayout;
class QLabel;

namespace quorel::qt {

/// A line for what is wrong with what stands above it; hidden as long as it says nothing.
QLabel* faultLine(QWidget* parent);

/// The options of an action as controls, made from its description; what is wrong with the description, where it is not
/// sound. Main thread.
class OptionForm : public QWidget {
public:
    /// `language` as "en". `changed` is called after each change by a person.
    OptionForm(const ActionDescription& description, std::string_view language, std::function<void()> changed);

    /// Shows parameters that are complete.
    void show(const Value& parameters);
    /// These parameters with what the controls say.
    Value taken(const Value& parameters) const;
    /// Those that take the focus, from top to bottom.
    std::vector<QWidget*> controls() const;
    /// Shows what is wrong with an option below it, by the `wire::schedule_fault`; an empty text takes that away. False
    /// for one that is about none of these options.
    bool showFault(const std::string& reason, const QString& text);

private:
    struct Field {
        const Option& option;
        QWidget* control;
        std::function<void(const Value&)> set;
        std::function<Value()> get;
        QWidget* row = nullptr;  ///< with what stands around the control
        QLabel* fault = nullptr;
    };
    Field fieldOf(const Option& option);
    Field flag(const Option& option);
    Field number(const Option& option);
    Field text(const Option& option);
    Field lines(const Option& option);
    Field choice(const Option& option);
    Field time(const Option& option);
    void add(QFormLayout& form, std::size_t index);
    void enableDependent();
    void checkFiles();
    QString say(const Dictionary& texts) const;

    const ActionDescription _description;
    const std::string _language;
    const std::function<void()> _changed;
    std::vector<Field> _fields;
    QHBoxLayout* _line = nullptr;  ///< of the last flag
};

/// Makes such forms for the sheet. Main thread.
class OptionForms : public quorel::OptionsForms {
public:
    std::unique_ptr<quorel::OptionsForm> formOf(const ActionDescription& action) override;
    std::string language() const override;

    std::function<void()> changed;  ///< a person has changed something
};

}  // namespace quorel::qt
