#include "qt/host/BusLoop.h"

#include <QAbstractEventDispatcher>

namespace quorel::qt {

BusLoop::BusLoop() : _notifier(sd_event_get_fd(_loop.get()), QSocketNotifier::Read) {
    const auto serveIt = [this] { serve(); };
    QObject::connect(&_notifier, &QSocketNotifier::activated, &_notifier, serveIt);
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, &_notifier,
                     serveIt);
}

/// Leaves the loop prepared: what was asked of it meanwhile is then part of what its file waits for. A callback may
/// have opened a loop of the toolkit's, which comes here again; the loop is then within its own callback, and waits.
void BusLoop::serve() {
    if (_serving) return;
    _serving = true;
    if (sd_event_get_state(_loop.get()) == SD_EVENT_ARMED && sd_event_wait(_loop.get(), 0) > 0)
        sd_event_dispatch(_loop.get());
    while (sd_event_get_state(_loop.get()) == SD_EVENT_INITIAL && sd_event_prepare(_loop.get()) > 0)
        sd_event_dispatch(_loop.get());
    _serving = false;
}

}  // namespace quorel::qt
