#pragma once

#include <array>
#include <memory>
#include <string_view>

#include "platform/Controls.h"
#include "platform/TableView.h"
#include "platform/View.h"

namespace quorel {

class VXConfigurator;

/// The controls of the interface file "Configurator". All are connected before `awakeFromNib`, except those
/// that may be null.
struct ConfiguratorOutlets {
    std::shared_ptr<View> mainView;
    std::shared_ptr<TableView> tableView;
    std::shared_ptr<Button> addButton;
    std::shared_ptr<Button> deleteButton;
    std::shared_ptr<Button> editButton;
    std::shared_ptr<ProgressIndicator> progressMain;

    std::shared_ptr<Window> editSheet;       ///< may be null
    std::shared_ptr<View> editCustomView;    ///< may be null
    std::shared_ptr<View> blankOptionsView;  ///< may be null
    std::shared_ptr<DatePicker> timeControl;
    std::array<std::shared_ptr<Button>, 7> activeOn;  ///< activeOnMonday to activeOnSunday
    std::shared_ptr<Button> selectAllButton;
    std::shared_ptr<PopUpButton> popUpType;
    std::shared_ptr<Button> startupEdit;
    std::shared_ptr<Button> wakeUpEdit;
    std::shared_ptr<ImageView> actionStateEdit;
    std::shared_ptr<ProgressIndicator> progressEdit;
};

/// Loads the configurator's interface file.
class ConfiguratorNib {
public:
    virtual ~ConfiguratorNib() = default;
    /// Fills the owner's outlets, makes it the table's data source, connects the buttons to its operations and
    /// sends it `awakeFromNib`. False, with nothing sent, when there is no such file or it does not load.
    virtual bool loadNibNamedOwner(std::string_view name, VXConfigurator& owner) = 0;
};

}  // namespace quorel
