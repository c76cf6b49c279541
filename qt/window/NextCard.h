#pragma once

#include <functional>
#include <string>

#include "qt/host/Plan.h"
#include "qt/window/Card.h"

class QPushButton;

namespace quorel::qt {

/// What comes next, what follows, and what can be said to it.
class NextCard : public Card {
public:
    NextCard(QWidget* parent, Plan& plan, std::function<void(const QString& failure)> failed);

    /// The plan has changed, or a minute has passed.
    void show();

private:
    void change(const char* method);

    Plan& _plan;
    const std::function<void(const QString&)> _failed;
    QLabel* const _title;
    QLabel* const _line;
    QPushButton* const _postpone;
    QPushButton* const _skip;
    std::string _token;  ///< of what the buttons speak of
};

}  // namespace quorel::qt
