#pragma once

#include <cstddef>

#include "scheduler/Instant.h"

/// The figures of the rules by which Schedules run.
namespace quorel::rules {

/// So late an occurrence still runs; later it is missed.
inline constexpr Seconds kGrace = 2 * kMinute;
/// A missed action that its module allows to be made up runs that long after it was found missed.
inline constexpr Seconds kBeforeMakeUp = 2 * kMinute;
/// One that needs a user runs that long after somebody has come.
inline constexpr Seconds kAfterArrival = 10;
/// Further back nobody wants to know what was missed.
inline constexpr Seconds kLongestAbsence = 31 * kDay;

/// What cannot be written as begun, and what finds too many running, is tried again after as long.
inline constexpr Seconds kBetweenAttempts = 10;
/// So many actions run at once.
inline constexpr std::ptrdiff_t kMostRunning = 24;

/// Sleep and shut-down are looked at, and people warned, that long before.
inline constexpr Seconds kWarning = kMinute;
inline constexpr Seconds kBetweenLooks = kMinute;
/// How long something may hold a sleep or shut-down up, and how long people may by using the computer.
inline constexpr Seconds kPatience = 30 * kMinute;
inline constexpr Seconds kPatienceWithUse = 12 * kHour;
inline constexpr int kMostRefusals = 2;
/// How long a look may take, how long the call, and how long after that the computer, awake, to go.
inline constexpr Seconds kLongestLook = 30;
inline constexpr Seconds kLongestCall = 90;
inline constexpr Seconds kLongestParting = kMinute;
/// Each of these, and the word that it is back, for a sleep that may write the memory to disk.
inline constexpr Seconds kLongestWriting = 5 * kMinute;
/// How long, awake, the word that it is back may take. Other programs can hold the going up for half a minute.
inline constexpr Seconds kLongestSilence = 90;

/// Where no other is asked for, and within what.
inline constexpr Seconds kPostponement = 15 * kMinute;
inline constexpr Seconds kLeastPostponement = kMinute;
inline constexpr Seconds kMostPostponement = 12 * kHour;
/// How much people may set aside, and how far ahead.
inline constexpr std::size_t kMostOpen = 500;
inline constexpr Seconds kFurthest = 366 * kDay;
inline constexpr std::size_t kMostPauses = 16;
/// The hour at which "until tomorrow" ends.
inline constexpr int kMorning = 5;

/// A clock set by as much is corrected; by less it is taken for a change of summer time or the like.
inline constexpr Seconds kCorrection = 3 * kHour;
/// How long a clock that is behind is waited for, how long after a boot for one that nobody has set, and how often the
/// kernel is asked about it meanwhile.
inline constexpr Seconds kLongestBehind = 10 * kMinute;
inline constexpr Seconds kLongestUnsynchronised = kMinute;
inline constexpr Seconds kBetweenQuestions = 5;
/// Set back by more, as soon after the boot, the clock was ahead.
inline constexpr Seconds kLeastAhead = 2 * kMinute;
inline constexpr Seconds kYoung = 10 * kMinute;
/// Clocks that move against each other by less have not been set, or the computer has not slept; in milliseconds.
inline constexpr std::int64_t kLeastSet = 500;
inline constexpr std::int64_t kLeastSleep = 1000;

/// After a wake-up the computer stays awake for as long.
inline constexpr Seconds kKeptAwake = 10 * kMinute;
/// A computer that was woken for nothing goes back to sleep after as long.
inline constexpr Seconds kBeforeBack = 20;
/// Use within that time before it does so came after the waking, which some desktops take for use itself.
inline constexpr Seconds kUsedSince = 15;
/// How far from its time our alarm may wake the computer, to be what woke it.
inline constexpr Seconds kAlarmEarly = 2;
inline constexpr Seconds kAlarmLate = kMinute;
/// Waking takes a while, which a module's action does not wait for; starting the computer takes more.
inline constexpr Seconds kWakeEarly = 30;
inline constexpr Seconds kStartEarly = 2 * kMinute;
/// A computer that was started that long before a wake-up was started for it.
inline constexpr Seconds kStartedFor = 10 * kMinute;
/// Woken for something, the computer stays awake that long for it to begin.
inline constexpr Seconds kAwakeToBegin = kMinute;
/// A closed lid is kept from sending it back for as long.
inline constexpr Seconds kLidHeld = 30 * kMinute;
/// No sleep is begun so soon before a wake-up, and none from before one is left so long after it.
inline constexpr Seconds kSoonAwake = kMinute;
inline constexpr Seconds kClearOfSleep = 10 * kMinute;
/// An alarm nearer than this could go off before the computer sleeps, and keep it from sleeping.
inline constexpr Seconds kNearestAlarm = 5;
/// What every RTC's alarm reaches.
inline constexpr Seconds kAlarmReach = 23 * kHour;

}  // namespace quorel::rules
