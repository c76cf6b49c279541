#pragma once

#include <functional>
#include <map>
#include <string>

#include "linux/units/TransientUnit.h"
#include "model/Value.h"

namespace quorel {

/// Runs modules' actions for the daemon, in the user's own service manager. They outlive the agent. One thread.
class UserActions {
public:
    /// What became of one, as the daemon's ReportAction takes it. May come more than once.
    using Report =
        std::function<void(const std::string& token, const std::string& end, int status, const std::string& reason)>;

    /// The session bus, which must outlive it.
    UserActions(sd_bus* bus, Report report);

    /// What the daemon wants run, as its Work tells, however often it tells: each is begun once, at most 16 at a time.
    void run(const Array& actions);

private:
    struct End {
        std::string end;
        int status = 0;
        std::string reason;
    };
    void begin(const std::string& token, const Value& action);
    void ended(const std::string& token, const End& end);

    const Report _report;
    TransientUnits _units;
    std::map<std::string, End> _taken;  // by token; what runs has no end yet
};

}  // namespace quorel
