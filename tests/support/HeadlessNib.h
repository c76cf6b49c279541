#pragma once

#include <memory>

#include "configurator/VXConfigurator.h"
#include "headless/HeadlessPlatform.h"
#include "model/Schedule.h"
#include "pane/VXPrefPaneController.h"

namespace quorel::test {

/// The interface file "Configurator" in memory: every control, connected as the real file connects it.
struct ConfiguratorInterface : ConfiguratorNib {
    ConfiguratorInterface();
    bool loadNibNamedOwner(std::string_view name, VXConfigurator& owner) override;

    bool loadable = true;
    std::shared_ptr<headless::View> mainView = std::make_shared<headless::View>();
    std::shared_ptr<headless::TableView> table = std::make_shared<headless::TableView>();
    std::shared_ptr<headless::Button> addButton = std::make_shared<headless::Button>();
    std::shared_ptr<headless::Button> deleteButton = std::make_shared<headless::Button>();
    std::shared_ptr<headless::Button> editButton = std::make_shared<headless::Button>();
    std::shared_ptr<headless::ProgressIndicator> progressMain = std::make_shared<headless::ProgressIndicator>();

    std::shared_ptr<headless::Window> editSheet = std::make_shared<headless::Window>();   ///< 500 x 400
    std::shared_ptr<headless::View> editCustomView = std::make_shared<headless::View>();  ///< 460 x 100
    std::shared_ptr<headless::View> blankOptionsView = std::make_shared<headless::View>();
    std::shared_ptr<headless::DatePicker> timeControl = std::make_shared<headless::DatePicker>();
    std::array<std::shared_ptr<headless::Button>, 7> days;
    std::shared_ptr<headless::Button> selectAllButton = std::make_shared<headless::Button>();
    std::shared_ptr<headless::PopUpButton> popUpType = std::make_shared<headless::PopUpButton>();
    std::shared_ptr<headless::Button> startupEdit = std::make_shared<headless::Button>();
    std::shared_ptr<headless::Button> wakeUpEdit = std::make_shared<headless::Button>();
    std::shared_ptr<headless::ImageView> actionStateEdit = std::make_shared<headless::ImageView>();
    std::shared_ptr<headless::ProgressIndicator> progressEdit = std::make_shared<headless::ProgressIndicator>();
    std::shared_ptr<headless::Button> saveButton = std::make_shared<headless::Button>();
    std::shared_ptr<headless::Button> cancelButton = std::make_shared<headless::Button>();
};

/// The pane's own interface file in memory.
struct PaneInterface {
    PaneInterface();
    /// What the host does once it has loaded the file: connects everything and sends `awakeFromNib`.
    void load(VXPrefPaneController& owner);

    std::shared_ptr<headless::View> configView = std::make_shared<headless::View>();  ///< 530 x 250
    std::shared_ptr<headless::Window> aboutSheet = std::make_shared<headless::Window>();
    std::shared_ptr<headless::Button> applyButton = std::make_shared<headless::Button>();
    std::shared_ptr<headless::Button> revertButton = std::make_shared<headless::Button>();
    std::shared_ptr<headless::Button> authButton = std::make_shared<headless::Button>();
    std::shared_ptr<headless::Button> checkUpdateAtStartup = std::make_shared<headless::Button>();
    std::shared_ptr<headless::TextField> lockDescLabel = std::make_shared<headless::TextField>();
    std::shared_ptr<headless::PopUpButton> popUpUpdate = std::make_shared<headless::PopUpButton>();
    std::shared_ptr<headless::Button> menuCheck = std::make_shared<headless::Button>();
    std::shared_ptr<headless::Button> networkAdminCheck = std::make_shared<headless::Button>();
    std::shared_ptr<headless::TextField> statusDaemon = std::make_shared<headless::TextField>();
    std::shared_ptr<headless::ImageView> statusDaemonImageView = std::make_shared<headless::ImageView>();
    std::shared_ptr<headless::TextField> statusUserAgent = std::make_shared<headless::TextField>();
    std::shared_ptr<headless::ImageView> statusUserAgentImageView = std::make_shared<headless::ImageView>();
    std::shared_ptr<headless::TextField> theVersion = std::make_shared<headless::TextField>();
    std::shared_ptr<headless::Button> checkUpdatesButton = std::make_shared<headless::Button>();
    std::shared_ptr<headless::Button> aboutButton = std::make_shared<headless::Button>();
    std::shared_ptr<headless::Button> closeButton = std::make_shared<headless::Button>();  ///< of the about sheet
};

}  // namespace quorel::test
