#pragma once

#include <QDate>
#include <QTreeWidget>

#include "model/Value.h"

namespace quorel::qt {

/// What became of the plan, the newest first: a sentence a line, failures marked.
class HappenedList : public QTreeWidget {
public:
    explicit HappenedList(QWidget* parent);

    /// The last `most` of them.
    void show(const Array& outcomes, std::size_t most);

protected:
    void changeEvent(QEvent* event) override;

private:
    // What is shown, and on which day
    Array _outcomes;
    std::size_t _most = 0;
    QDate _day;
};

}  // namespace quorel::qt
