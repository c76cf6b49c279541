#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

#include "configurator/VXConfigurator.h"
#include "kit/VXCommunicationCenter.h"
#include "pane/PaneOutlets.h"
#include "pane/VXCommunicationProtocol.h"
#include "pane/VXPrefPaneControllerProtocol.h"
#include "platform/Platform.h"
#include "platform/PreferencePane.h"

namespace quorel {

/// The pane: its lifecycle, the options, the administrator lock, the status lights, the update check and the
/// about sheet. Main thread, except where said.
///
/// Background work holds the controller: once selected it lives as long as the host runs, and keeps polling.
class VXPrefPaneController : public PreferencePane,
                             public VXPrefPaneControllerProtocol,
                             public VXCommunicationProtocol,
                             public std::enable_shared_from_this<VXPrefPaneController> {
public:
    /// Null for a bundle that makes no pane, or whose configurator does not load. Nib and platform outlive the result.
    static std::shared_ptr<VXPrefPaneController> initWithBundle(std::shared_ptr<Bundle> bundle, ConfiguratorNib& nib,
                                                                Platform& platform);

    // Lifecycle (Lifecycle.cpp)
    PaneOutlets outlets;  ///< filled by the host's loading of the interface file, before awakeFromNib
    void awakeFromNib();
    void willSelect() override { PreferencePane::willSelect(); }
    void didSelect() override;
    void willUnselect() override;
    unsigned shouldUnselect() const override { return PreferencePane::shouldUnselect(); }
    void setShouldUnselect(unsigned) override {}  ///< the pane never refuses
    std::shared_ptr<View> mainView() const override { return PreferencePane::mainView(); }
    void setMainView(const std::shared_ptr<View>& view) override { PreferencePane::setMainView(view); }
    /// The process is being ended: saves edits, if nobody need be asked for that.
    void willEnd();
    void initNotifications();
    void setNeedsSave(const Notification* notification);
    void applyNow(const Object* sender);
    void revert(const Object* sender);
    void checkboxAction(const Object* sender);  ///< a null sender marks nothing as edited
    bool pong() const override { return true; }
    VXCommunicationCenter* communicationCenter() const override { return VXCommunicationCenter::sharedInstance(); }
    const std::shared_ptr<VXConfigurator>& configurator() const { return _configurator; }

    // Preferences (Preferences.cpp)
    void getPrefs();
    void savePrefs();
    /// Whether a save would send anything else than right after the last read, had nobody touched anything: a drag and
    /// a sort count, which post nothing, and what has been put back does not.
    bool hasEdits() const;

    // Lock (Lock.cpp)
    bool prefsAreUnlocked() const;
    bool unlockPrefs();
    void lockPrefs();
    void prefsUnlocked();
    void prefsLocked();
    bool isAuthorized();
    bool authorize();
    void deAuthorize();
    void toggleAuth(const Object* sender);

    // Status (Status.cpp)
    void checkProcesses();  ///< also on the polling queues
    void checkDaemon();     ///< on the polling queues
    void checkUserAgent();  ///< on the polling queues

    // Update check (UpdateCheck.cpp)
    /// Returns at once. `sender` lives until the check has ended.
    void checkUpdates(std::shared_ptr<const Object> sender);

    // Sheets (Sheets.cpp)
    void about() override;
    void about(const Object* sender);
    void openSheetOver(std::shared_ptr<Window> sheet, std::shared_ptr<Window> window);
    void closeSheet(const Object* sender);
    std::shared_ptr<Window> vxPrefPaneWindow() const override { return _vxPrefPaneWindow.lock(); }
    void setVxPrefPaneWindow(const std::shared_ptr<Window>& window) override { _vxPrefPaneWindow = window; }

private:
    explicit VXPrefPaneController(Platform& platform) : _platform(platform) {}
    std::string localized(std::string_view key) const;
    void assertMainThread() const;  ///< in debug builds
    void takeDefaults();
    Value preferencesToSend() const;
    void showDaemonAlive(bool alive);
    void showUserAgentAlive(bool alive);
    void showLight(ImageView& light, bool alive);
    void runUpdateCheck(const Object* sender);  ///< on the check's own queue
    void offerNewerVersion(const std::optional<std::string>& version);

    Platform& _platform;
    const std::thread::id _mainThread = std::this_thread::get_id();
    std::shared_ptr<VXConfigurator> _configurator;
    std::weak_ptr<Window> _vxPrefPaneWindow;
    bool _isAwake = false;  ///< only then is it selected and left: before, there are no controls
    Value _preferences;     ///< as last read or built; absent when dropped
    /// What a save would have sent right after the last read; absent before that. With wire::kNothingStored where
    /// there was no file. What the daemon tells an edit by.
    Value _base;
    std::shared_ptr<Timer> _timerToChekProcesses;  ///< never filled: polling outlives the selection
    AuthorizationRef authRef = nullptr;            ///< made when first needed, kept for good
    /// False while a polling cycle pings. Written by the polling, read by the update check.
    std::atomic<bool> _allowProcessLaunch{false};
};

}  // namespace quorel
