#include "daemon/Daemon.h"

#include <csignal>
#include <stdexcept>

#include "kit/MOLLog.h"
#include "model/Wire.h"

namespace quorel {

Daemon::Daemon(const std::string& root, const Clocks& clocks, Touches touches)
    : _bus(connectTo(Bus::System, _loop)),
      _public(_loop),
      _emptyBus(_loop),
      _host(_loop, _callers, touches == Touches::kAll ? _bus.get() : _emptyBus.get(), root, clocks),
      _plan(_loop, root, [this](const Value& preferences) { _host.follow(preferences); }),
      _schedulerInterface(_callers, _host, _plan),
      _door(_loop, _callers, root, [this](const std::string& bytes) { _plan.stored(bytes); }) {
    _host.changedCallback = [this] { _schedulerInterface.changed(); };
    _loop.endOn({SIGTERM, SIGINT});
    _reloading = onSignal(_loop, SIGHUP, [this] { _plan.reload(); });
    if (!requestName(_public.get(), std::string(kDaemonName))) throw std::runtime_error("another daemon has the name");
    _plan.begin();
}

int Daemon::run() {
    MOLLog("The daemon serves.");
    const int status = _loop.run();
    // The connection is closed by now, whatever the loop ended for.
    MOLLog(status == 0 ? "The daemon ends." : "The bus has gone.");
    return status;
}

}  // namespace quorel
