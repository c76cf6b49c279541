#pragma once

#include <functional>
#include <string>

#include "linux/bus/DaemonView.h"
#include "qt/window/Card.h"

class QPushButton;

namespace quorel::qt {

/// What comes next, what follows, what stands against it, and what can be said to it.
class NextCard : public Card {
public:
    NextCard(QWidget* parent, DaemonView& plan, std::function<void(const QString& failure)> failed);

    /// What the daemon told last, or that it is not there. Again when a minute has passed.
    void show(const DaemonView::Told& told);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    /// A button, and the token of the occurrence that it is about; hidden without one.
    struct Choice {
        QPushButton* button;
        std::string token;
    };
    void connectButtons();
    void offer(Choice& choice, const Value* occurrence);
    void showPause(const DaemonView::Told& told);
    DaemonView::Done tellFailure() const;
    void showTroubles(const QStringList& troubles);

    DaemonView& _plan;
    const std::function<void(const QString&)> _failed;
    QLabel* const _title;
    QLabel* const _line;
    QLabel* const _troubles;
    Choice _letSleep, _unskip, _postpone, _skip;
    QPushButton* const _pause;
    std::string _pauseToken;  ///< of the pause that the button ends; empty: it begins one
};

}  // namespace quorel::qt
