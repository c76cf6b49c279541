#include "qt/host/Host.h"

#include <QApplication>
#include <QFileInfo>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <ctime>

#include "model/Preferences.h"
#include "model/Schedule.h"
#include "qt/host/SaveText.h"
#include "qt/toolkit/Text.h"
#include "words/Language.h"
#include "words/WhenText.h"

namespace quorel::qt {

namespace {

using namespace std::chrono_literals;

std::shared_ptr<Button> wrap(QPushButton* button) {
    return std::make_shared<Button>(button);
}

}  // namespace

Host::Host(const Parts& parts)
    : _parts(parts),
      _interface(*parts.window.sheet, std::make_shared<ScheduleTable>(parts.window.list), wrap(parts.window.add),
                 wrap(parts.window.remove), wrap(parts.window.edit)),
      _controller(VXPrefPaneController::initWithBundle(parts.bundle, _interface, parts.platform)) {
    connectControls();
    SettingsWindow& window = _parts.window;
    window.firstPainted = [this] { select(); };
    window.mayClose = [this] { return mayClose(); };
    window.list->schedules().noteOf = [this](int row) { return noteOf(row); };
    const auto text = [this](const char* key) {
        return qString(_parts.bundle->localizedStringForKeyValueTable(key, "", ""));
    };
    window.daemonLight->setAccessibleName(text("Demon"));
    window.agentLight->setAccessibleName(text("User Agent"));
    window.list->schedules().wakesText = text("reveille l'ordinateur");
    window.list->schedules().startsText = text("demarre l'ordinateur");
    window.sheet->changed = [this] { showForecast(); };
    _parts.application.main = std::make_shared<Window>(&window);

    // The daemon replaces the file: the folder tells that, too.
    const QString file = qString(_parts.preferencesFile);
    _files.addPath(QFileInfo(file).path());
    _files.addPath(file);
    _settled.setSingleShot(true);
    _settled.setInterval(200ms);
    QObject::connect(&_files, &QFileSystemWatcher::directoryChanged, &_settled, qOverload<>(&QTimer::start));
    QObject::connect(&_files, &QFileSystemWatcher::fileChanged, &_settled, qOverload<>(&QTimer::start));
    QObject::connect(&_settled, &QTimer::timeout, &_settled, [this] { fileChanged(); });
    _minutes.setInterval(20s);
    QObject::connect(&_minutes, &QTimer::timeout, &_minutes, [this] { showPlan(); });
    _minutes.start();
}

void Host::connectControls() {
    SettingsWindow& window = _parts.window;
    PaneOutlets& outlets = _controller->outlets;
    outlets.configView = nullptr;  // the list stands in the window already
    outlets.applyButton = wrap(window.apply);
    outlets.revertButton = wrap(window.revert);
    outlets.authButton = wrap(window.lockButton);
    outlets.lockDescLabel = std::make_shared<TextField>(window.lockText);
    outlets.statusDaemon = std::make_shared<TextField>(window.daemonText);
    outlets.statusDaemonImageView = std::make_shared<ImageView>(window.daemonLight);
    outlets.statusUserAgent = std::make_shared<TextField>(window.agentText);
    outlets.statusUserAgentImageView = std::make_shared<ImageView>(window.agentLight);
    window.optionsDialog->connectTo(*_controller);
    window.about->connectTo(*_controller);
    _controller->awakeFromNib();

    const auto on = [&](QPushButton* button, auto action) {
        QObject::connect(button, &QPushButton::clicked, &window, [action] { action(); });
    };
    on(window.apply, [this] { save(); });
    on(window.useThis, [this] { save(); });
    on(window.makeOwn, [this] { useOwn(); });
    on(window.revert, [this] { reread(); });
    on(window.lockButton, [this] {
        _controller->toggleAuth(_controller->outlets.authButton.get());
        showLock();
        const bool isLocked = _controller->configurator()->isLocked();
        _parts.window.notice(isLocked ? qString(translated("It stays locked: permission was not given.")) : QString());
        caughtUp();
    });
    on(window.add, [this] { runSheet(true); });
    on(window.edit, [this] { editSelected(); });
    on(window.remove, [this] { removeSelected(); });
    on(window.undo, [this] { undoRemoval(); });
    on(window.showAll, [this] { showPlan(); });
    window.list->doubleAction = [this] { editSelected(); };
    window.list->deleteAction = [this] { removeSelected(); };
    QObject::connect(&window.list->schedules(), &QAbstractItemModel::dataChanged, &window, [this] { showEdits(); });
    _parts.platform.defaultCenter.addObserver(kMOLConfiguratorHasBeenEditedNotification,
                                              [this](const Notification&) { showEdits(); });
}

/// Once, after the window has been seen: what comes now asks other programs.
void Host::select() {
    _controller->setVxPrefPaneWindow(_parts.application.main);
    _controller->didSelect();
    _isSelected = true;
    unlockIfGranted();
    if (sd_bus* const bus = _parts.plan.bus())
        _kinds
            .emplace(bus,
                     [this](const DeniedKinds& denied) {
                         _deniedKinds = denied;
                         showPlan();
                     })
            .ask();
    showLock();
    showList();
    showPlan();
}

void Host::unlockIfGranted() {
    if (!_controller->prefsAreUnlocked() && _controller->isAuthorized())
        _controller->toggleAuth(_controller->outlets.authButton.get());
}

bool Host::isBusy() const {
    return _isSaving || _parts.patience.isWaiting() || QApplication::activeModalWidget() ||
           _parts.window.list->isDragging();
}

bool Host::mayClose() {
    if (!_isSelected) return true;
    if (isBusy()) return false;
    if (!_controller->hasEdits()) return true;
    QMessageBox question(&_parts.window);
    question.setWindowTitle(QStringLiteral("Quorel"));
    question.setText(qString(translated("You have changes that are not stored yet.")));
    const auto* const apply = question.addButton(qString(translated("Apply")), QMessageBox::AcceptRole);
    const auto* const discard =
        question.addButton(qString(translated("Discard changes")), QMessageBox::DestructiveRole);
    question.addButton(qString(translated("Cancel")), QMessageBox::RejectRole);
    question.exec();
    caughtUp();
    if (question.clickedButton() == discard) return true;
    if (question.clickedButton() != apply) return false;
    return saveBy([this] { _controller->willUnselect(); });
}

void Host::leave() {
    if (std::exchange(_isLeaving, true)) return;
    QTimer::singleShot(2s, qApp, [] { std::quick_exit(0); });
    if (_isSaving) return;  // which ends the program, too
    if (_isSelected && _controller->hasEdits()) _controller->willUnselect();
    std::quick_exit(0);
}

void Host::save() {
    if (isBusy()) return;
    if (saveBy([this] { _controller->applyNow(nullptr); })) _removal.reset();
    showList();
    caughtUp();
}

/// The pane reads the file again, whatever the daemon has answered. What it has refused is put back: nobody's edits go
/// without a word. False where they are not stored.
bool Host::saveBy(const std::function<void()>& how) {
    const PaneOutlets& outlets = _controller->outlets;
    VXConfigurator& configurator = *_controller->configurator();
    const Array list = configurator.scheduleArray();
    const int updates = outlets.checkUpdateAtStartup->state(), frequency = outlets.popUpUpdate->indexOfSelectedItem(),
              menu = outlets.menuCheck->state();
    _parts.center.takeLastSave();
    _isSaving = true;
    how();
    _isSaving = false;
    if (_isLeaving) std::quick_exit(0);
    const std::optional<EditsAnswer> answer = _parts.center.takeLastSave();
    if (!answer || answer->isHandled) {
        const Value joined = answer ? answer->joined : Value();
        _parts.window.notice(joinedText(joined, list, configurator.scheduleArray(), _parts.window.list->schedules()));
        return true;
    }
    configurator.setScheduleArray(Value(list));
    outlets.checkUpdateAtStartup->setState(updates);
    outlets.popUpUpdate->selectItemAtIndex(frequency);
    outlets.menuCheck->setState(menu);
    _controller->setNeedsSave(nullptr);
    _parts.window.notice(notStoredText(*answer));
    return false;
}

void Host::reread() {
    _isStale = false;
    _controller->getPrefs();
    showList();
}

void Host::fileChanged() {
    const QString file = qString(_parts.preferencesFile);
    if (!_files.files().contains(file)) _files.addPath(file);
    _isStale = true;
    caughtUp();
}

/// What others have stored meanwhile is shown, unless it would take away what somebody is doing here.
void Host::caughtUp() {
    if (_isStale && _isSelected && !isBusy() && !_controller->hasEdits()) reread();
}

/// Returns when the sheet has been closed. Its action's parameters are the module's, which a row that is asked for its
/// line would change: the list shows what it showed until then.
void Host::runSheet(bool adding) {
    const int before = _parts.window.list->schedules().rowCount();
    _parts.window.sheet->prepare(adding);
    _parts.window.list->hold(true);
    if (adding)
        _controller->configurator()->addSchedule(_controller->outlets.applyButton.get());
    else
        _controller->configurator()->editSchedule(nullptr);
    _parts.window.list->hold(false);
    ScheduleModel& rows = _parts.window.list->schedules();
    if (rows.rowCount() > before) _parts.window.list->setCurrentIndex(rows.index(before, kTimeColumn));
    showList();
    caughtUp();
}

void Host::editSelected() {
    const auto& configurator = *_controller->configurator();
    if (configurator.isLocked() || configurator.outlets.tableView->selectedRow() < 0) return;
    runSheet(false);
}

void Host::removeSelected() {
    auto& configurator = *_controller->configurator();
    const int row = configurator.outlets.tableView->selectedRow();
    if (configurator.isLocked() || row < 0) return;
    const Array before = configurator.scheduleArray();
    const QModelIndex index = _parts.window.list->schedules().index(row, kActionColumn);
    const QString what =
        index.data().toString() + QLatin1Char(' ') + index.siblingAtColumn(kTimeColumn).data().toString();
    configurator.deleteSchedule(nullptr);
    if (configurator.scheduleArray().size() == before.size()) {
        _parts.window.notice(qString(translated("The last Schedule cannot be deleted. It can be switched off.")));
        return;
    }
    _removal = {before, configurator.scheduleArray()};
    _parts.window.undo->setToolTip(what);
    _parts.window.undo->setAccessibleDescription(what);
    showList();
}

void Host::undoRemoval() {
    if (!_removal) return;
    _controller->configurator()->setScheduleArray(Value(std::exchange(_removal, std::nullopt)->before));
    _controller->setNeedsSave(nullptr);
    showList();
}

/// The suggestion's first, changed as somebody likes it, is all that there is to be.
void Host::useOwn() {
    auto& configurator = *_controller->configurator();
    if (configurator.scheduleArray().empty()) return;
    const Array before = configurator.scheduleArray();
    _parts.window.list->setCurrentIndex(_parts.window.list->schedules().index(0, kActionColumn));
    editSelected();
    const Array& after = configurator.scheduleArray();
    if (after.empty() || after == before) return;
    configurator.setScheduleArray(Value(Array{after.front()}));
    _controller->setNeedsSave(nullptr);
    showList();
}

void Host::showLock() {
    const bool locked = _controller->configurator()->isLocked();
    _parts.window.lockBar->setVisible(locked);
    for (QPushButton* button : {_parts.window.useThis, _parts.window.makeOwn}) button->setEnabled(!locked);
    if (locked) _parts.window.lockText->setText(qString(translated("Changing the plan takes an administrator.")));
}

void Host::showEdits() {
    if (!_isSelected) return;
    const bool canSave = !_controller->configurator()->isLocked() && _controller->hasEdits();
    for (QPushButton* button : {_parts.window.apply, _parts.window.revert}) button->setEnabled(canSave);
    _parts.window.apply->setDefault(canSave);
    if (_removal && _controller->configurator()->scheduleArray() != _removal->after) _removal.reset();
    _parts.window.undo->setVisible(_removal.has_value());
}

void Host::showList() {
    const bool isStored = _parts.platform.files.dictionaryWithContentsOfFile(preferences::kFile).isDictionary();
    _parts.window.suggest(!isStored && !_controller->hasEdits());
    showEdits();
}

RowNote Host::noteOf(int row) const {
    const Array& schedules = _controller->configurator()->scheduleArray();
    if (row < 0 || static_cast<std::size_t>(row) >= schedules.size()) return {};
    const Value& schedule = schedules[static_cast<std::size_t>(row)];
    const Forecast::Answer answer = _forecast.of(schedule, _parts.plan.told(), _deniedKinds);
    if (answer.isOff) return {qString(translated("off")), {}};
    return {qString(answer.at ? whenText(*answer.at, std::time(nullptr)) : translated("never")), qString(answer.fault)};
}

void Host::showForecast() {
    EditSheet& sheet = *_parts.window.sheet;
    const Forecast::Answer answer = _forecast.of(sheet.schedule(), _parts.plan.told(), _deniedKinds);
    sheet.showFault(answer.reason, qString(answer.fault));
    const std::string when = answer.at ? comingText(*answer.at, std::time(nullptr)) : translated("never");
    sheet.showNext(qString(filled(translated("Next: {1}"), {when})));
}

void Host::lookAtPrograms() {
    if (!_isSelected) return;
    _parts.platform.dispatch.createQueue("programs")->async([controller = _controller] {
        controller->checkDaemon();
        controller->checkUserAgent();
    });
}

void Host::showPlan() {
    SettingsWindow& window = _parts.window;
    window.list->schedules().refreshNotes();
    caughtUp();
    const DaemonView::Told& told = _parts.plan.told();
    if (!told.isFetched) return;
    window.next->show(told);
    window.showHappened(told.outcomes.array());
}

}  // namespace quorel::qt
