#include "linux/Bus.h"

namespace quorel {

BusConnection beginConnection(Bus bus) {
    sd_bus* connection = nullptr;
    const int result = bus == Bus::System ? sd_bus_open_system(&connection) : sd_bus_open_user(&connection);
    return {result < 0 ? nullptr : connection, sd_bus_close_unref};
}

}  // namespace quorel
