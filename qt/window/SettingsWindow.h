#pragma once

#include <QWidget>
#include <functional>

#include "qt/list/ScheduleTable.h"
#include "qt/sheet/EditSheet.h"
#include "qt/window/HappenedList.h"
#include "qt/window/NextCard.h"
#include "qt/window/OptionsDialog.h"

class QPushButton;
class QStackedLayout;

namespace quorel::qt {

/// The window's parts, where they stand, and which of them are to be seen. What they do the host says.
class SettingsWindow : public QWidget {
public:
    SettingsWindow(DaemonView& plan, const QString& copyright, const QString& picture);

    // Parts
    QFrame* const lockBar;
    QLabel* const lockText;
    QPushButton* const lockButton;
    QFrame* const noticeBar;
    QLabel* const noticeText;
    QPushButton* const noticeClose;
    NextCard* const next;
    QPushButton* const add;
    QPushButton* const edit;
    QPushButton* const remove;
    ScheduleList* const list;
    QFrame* const suggestion;
    QPushButton* const useThis;
    QPushButton* const makeOwn;
    QLabel* const happenedTitle;
    HappenedList* const happened;
    QPushButton* const showAll;
    QLabel *const daemonLight, *const daemonText, *const agentLight, *const agentText;
    QPushButton *const undo, *const revert, *const apply, *const options;
    EditSheet* const sheet;
    OptionsDialog* const optionsDialog;
    AboutDialog* const about;

    /// A line that stays until it is closed or another takes its place; an empty one goes.
    void notice(const QString& text);
    /// Nothing is stored: the list is a suggestion.
    void suggest(bool suggests);

    /// What became of the plan, the last of it or all.
    void showHappened(const Array& outcomes);

    std::function<void()> firstPainted;
    std::function<bool()> mayClose;

protected:
    void paintEvent(QPaintEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void layOut();
    void layOutSuggestion();
    void colourBars();
    void sizeHappened();
    bool _wasPainted = false;
};

}  // namespace quorel::qt
