#pragma once

#include <QSocketNotifier>

#include "linux/EventLoop.h"

namespace quorel::qt {

/// Serves a loop of ours within the toolkit's: before the toolkit sleeps, and when something has come. Main thread,
/// after the application was made.
class BusLoop {
public:
    BusLoop();

    EventLoop& loop() { return _loop; }

private:
    void serve();

    EventLoop _loop;
    bool _serving = false;
    QSocketNotifier _notifier;
};

}  // namespace quorel::qt
