// The daemon with clocks that stand still until a test moves them: stepping_daemon CLOCKS ROOT. The file CLOCKS holds
// the wall clock, time since boot and time awake, in milliseconds.
#include <csignal>
#include <fstream>
#include <string>

#include "daemon/Daemon.h"
#include "linux/JournalLog.h"
#include "linux/time/Clocks.h"

namespace {

class SteppingClocks : public quorel::Clocks {
public:
    explicit SteppingClocks(std::string path) : _path(std::move(path)) {}

    quorel::ClockReading now() const override {
        std::ifstream file(_path);
        quorel::ClockReading now;
        file >> now.wall >> now.boot >> now.awake;
        return now;
    }
    /// Soon: the daemon looks again and again whether it is time.
    timespec realTimeOf(quorel::Instant) const override {
        constexpr long kOften = 20'000'000;
        timespec time{};
        clock_gettime(CLOCK_REALTIME, &time);
        time.tv_nsec += kOften;
        if (time.tv_nsec >= 1'000'000'000) time = {time.tv_sec + 1, time.tv_nsec - 1'000'000'000};
        return time;
    }

private:
    std::string _path;
};

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) return 2;
    quorel::installJournalLog("quorel-daemon");
    std::signal(SIGPIPE, SIG_IGN);
    const SteppingClocks clocks(arguments[1]);
    return quorel::Daemon(arguments[2], clocks, quorel::Daemon::Touches::kAll).run();
}
