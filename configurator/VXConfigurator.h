#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "configurator/ConfiguratorOutlets.h"
#include "configurator/VXPrefPanePlugInProtocol.h"
#include "platform/Platform.h"

namespace quorel {

/// The type of what the table's rows are dragged as; inside one table only.
inline constexpr const char* kSchedulePasteboard = "SchedulePasteboard";

/// Posted after every edit of the list, without object or user information.
inline constexpr std::string_view kMOLConfiguratorHasBeenEditedNotification =
    "kMOLConfiguratorHasBeenEditedNotification";

enum class ComparisonResult { Ascending = -1, Same = 0, Descending = 1 };

/// Orders two Schedules for the table. The context names the column ("Colomn identifier") and the direction
/// ("Order"). Equal times never compare as the same, in either order of the arguments.
ComparisonResult sortColomnFunction(const Value& a, const Value& b, const Value& context);

/// Owns the schedule list while the pane is open, shows it in a table, loads the action modules and runs the
/// edit sheet. Main thread.
///
/// Schedules are shared with whoever handed the list over and are never changed in place: each change puts a
/// changed copy in the entry's place.
class VXConfigurator : public Object, public TableViewDataSource, public TableViewDelegate {
public:
    /// Null when the interface file cannot be loaded. `bundle` is the pane's own; nib and platform outlive the result.
    static std::shared_ptr<VXConfigurator> init(std::shared_ptr<Bundle> bundle, ConfiguratorNib& nib,
                                                Platform& platform);

    // Interface file (ScheduleTable.cpp)
    ConfiguratorOutlets outlets;  ///< filled by the nib, before awakeFromNib
    void loadNib() {}             ///< nothing: `init` has loaded it
    void awakeFromNib();
    const std::shared_ptr<View>& configurationView() const { return outlets.mainView; }
    const std::shared_ptr<Bundle>& bundle() const { return _bundle; }

    // Schedule list (ScheduleList.cpp)
    /// Takes an array, or absent for none. An empty list is seeded; Schedules without a module are dropped.
    void setScheduleArray(const Value& list);
    const Array& scheduleArray() const { return _scheduleArray; }  ///< in the order of the table
    Value newEmptySchedule() const;
    int numberOfActionInScheduleArrayOfType(std::string_view type) const;
    void addSchedule(const Object* sender);
    void editSchedule(const Object* sender);
    void deleteSchedule(const Object* sender);

    // Lock and table (ScheduleTable.cpp)
    void setLocked(bool locked);
    bool isLocked() const { return _locked; }
    void makeColomnCheckBox(std::string_view identifier);
    void makeColomnActionCell(std::string_view identifier);
    int numberOfRowsInTableView() override;
    Value tableViewObjectValueForTableColumnRow(const TableColumn& column, int row) override;
    void tableViewSetObjectValueForTableColumnRow(const Value& value, const TableColumn& column, int row) override;
    void toggleEnabled(const Object* sender);  ///< of the selected row, by the keyboard: not while locked
    bool tableViewShouldEditTableColumnRow(const TableColumn& column, int row) override;
    void tableViewSelectionDidChange() override;
    bool selectionShouldChangeInTableView() override;

    // Sort (ScheduleSort.cpp)
    /// A click on a header: sorts, each time in the other direction, and is never answered with a selection.
    bool tableViewShouldSelectTableColumn(const TableColumn& column) override;

    // Drag and drop (DragAndDrop.cpp)
    bool tableViewWriteRowsToPasteboard(const std::vector<int>& rows, Pasteboard& pasteboard) override;
    DragOperation tableViewValidateDropProposedRowProposedDropOperation(int row, DropOperation operation) override;
    bool tableViewAcceptDropRowDropOperation(int row, DropOperation operation) override;

    // Action modules (ActionModules.cpp)
    void loadModules();
    void unloadModules();
    using Plugins = std::map<std::string, std::shared_ptr<VXPrefPanePlugInProtocol>, std::less<>>;
    using PluginNames = std::map<std::string, std::string, std::less<>>;
    /// Action-type identifier → module; absent after unloadModules.
    const std::optional<Plugins>& plugins() const { return _plugins; }
    /// Display name → action-type identifier.
    const PluginNames& pluginNames() const { return _pluginNames; }

    // Edit sheet (EditSheet.cpp)
    /// Fills the sheet from the Schedule and runs it; returns when it has been closed.
    void openEditSheetFor(const Value& schedule);
    void selectActionType(const Object* sender);  ///< a null sender keeps the module's flags
    void resizeEditSheetUsingHeight(double height);
    void checkAllDays(const Object* sender);
    void checkboxAction(const Object* sender);
    void saveSchedule(const Object* sender);
    void closeEditSheet(const Object* sender);
    bool isEditing() const { return _isEditing; }
    bool isAdding() const { return _isAdding; }

private:
    VXConfigurator(std::shared_ptr<Bundle> bundle, Platform& platform);

    bool isRegistered(const Value& identifier) const;                       ///< false for whatever is no text
    VXPrefPanePlugInProtocol& moduleOfType(const Value& identifier) const;  ///< a NoModule when none is
    VXPrefPanePlugInProtocol& chosenModule() const;                         ///< of the pop-up's selected title
    bool hasRow(int row) const;              ///< the table may ask for rows that are gone
    const Value& scheduleAt(int row) const;  ///< of a row that exists
    Value actionSummaryOf(const Value& schedule);
    std::string timeTextOf(const Value& schedule) const;
    void toggle(std::string_view identifier, int row);
    void clearSelection();
    void postEdited();

    std::shared_ptr<Bundle> _bundle;
    Platform& _platform;
    Array _scheduleArray;
    std::optional<Plugins> _plugins;
    PluginNames _pluginNames;
    bool _locked = true;
    bool _isEditing = false;
    bool _isAdding = false;
    int _draggedRow = -1;
    Size _editSheetMinSize;
};

}  // namespace quorel
