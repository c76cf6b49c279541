#pragma once

#include <string>

#include "model/Schedule.h"

namespace quorel::bench {

/// What the benchmarks' Schedules hold: one out of ten has no module, times and flags are scattered.
struct Content {
    std::string type;
    int hour;
    int minute;
    bool enabled;
    unsigned days;  ///< one bit a day
    int parameter;

    static Content ofNumber(int number) {
        const unsigned scattered = static_cast<unsigned>(number) * 2654435761u;
        const unsigned kind = scattered >> 8 & 0xff;
        return {std::string(kind < 26    ? "com.example.plugin.Gone"
                            : kind < 140 ? schedule_keys::kSleepType
                                         : schedule_keys::kWakeUpType),
                static_cast<int>((scattered >> 16 & 0xff) % 24),
                static_cast<int>((scattered >> 20 & 0xff) % 60),
                (scattered >> 5 & 1) != 0,
                scattered >> 25,
                number % 100};
    }
};

inline constexpr int kSchedulesPerFile = 1000;  // reading a large file at once takes Foundation minutes
inline constexpr const char* kInfosColumn = "Infos";
inline constexpr const char* kFlagColumn = "Active On Monday";

}  // namespace quorel::bench
