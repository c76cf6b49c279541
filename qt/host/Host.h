#pragma once

#include <QFileSystemWatcher>
#include <QTimer>
#include <memory>
#include <optional>

#include "linux/login/SleepKinds.h"
#include "pane/VXPrefPaneController.h"
#include "qt/host/Forecast.h"
#include "qt/host/Patience.h"
#include "qt/toolkit/Application.h"
#include "qt/window/SettingsWindow.h"

namespace quorel::qt {

/// What a settings application is to its pane: creates it, shows it, tells it when it is left. Which calls are made
/// when is decided here; what they do the pane decides. Main thread.
class Host {
public:
    struct Parts {
        SettingsWindow& window;
        DaemonView& plan;
        Application& application;
        Platform& platform;
        Patience& patience;
        std::shared_ptr<quorel::Bundle> bundle;
        PatientCenter& center;
        std::string preferencesFile;  ///< on disk
    };
    explicit Host(const Parts& parts);

    /// The session ends, or the program is told to: saves what was edited, two seconds at most, and asks nobody.
    void leave();
    /// The plan has changed, or time has passed.
    void showPlan();
    /// The daemon or the agent has come or gone: the lights say so without waiting for the pane's next look.
    void lookAtPrograms();

    VXPrefPaneController& controller() { return *_controller; }

private:
    void connectControls();
    void select();
    void unlockIfGranted();
    bool mayClose();
    bool isBusy() const;

    void save();
    bool saveBy(const std::function<void()>& how);
    void reread();
    void fileChanged();
    void caughtUp();
    void editSelected();
    void runSheet(bool adding);
    void removeSelected();
    void undoRemoval();
    void useOwn();

    void showLock();
    void showEdits();
    void showList();
    RowNote noteOf(int row) const;
    void showForecast();

    Parts _parts;
    ConfiguratorInterface _interface;
    std::shared_ptr<VXPrefPaneController> _controller;
    std::optional<SleepKinds> _kinds;  ///< nothing without a bus
    DeniedKinds _deniedKinds;
    Forecast _forecast;
    QFileSystemWatcher _files;
    QTimer _settled;  ///< after a change of the file
    QTimer _minutes;
    bool _isSelected = false;
    bool _isSaving = false;
    bool _isLeaving = false;
    bool _isStale = false;  ///< the file has changed and was not read again yet
    struct Removal {
        Array before, after;
    };
    std::optional<Removal> _removal;
};

}  // namespace quorel::qt
