"""When Schedules occur, against a reckoning of its own: every minute of a year is looked up in Python's zone data, and
what the wall clock shows there decides. Zones with leaps of an hour, half an hour and three, at midnight, and a missing
day."""
import collections
import datetime
import os
import random
import subprocess
import sys
import unittest
import zoneinfo

PROBE = sys.argv.pop(1)
YEARS = {"Europe/Paris": 2027, "Australia/Lord_Howe": 2027, "Pacific/Apia": 2011, "America/Nuuk": 2026,
         "America/Havana": 2026, "Antarctica/Casey": 2018}
SCHEDULES = 2000


def shown_minutes(zone, start, end):
    """For each minute of the wall clock, counted from 1970, the first instant at which it is shown or, where the clock
    leaps over it, as much later as it leaps."""
    instants, days, previous = {}, set(), None
    for instant in range(start, end, 60):
        offset = datetime.datetime.fromtimestamp(instant, zone).utcoffset()
        minute = instant // 60 + (offset.days * 86400 + offset.seconds) // 60
        if previous is not None and minute > previous + 1:
            for step, missing in enumerate(range(previous + 1, minute)):
                instants[missing] = instant + 60 * step
        instants.setdefault(minute, instant)
        days.add(minute // 1440)
        previous = minute
    # A day of which the clock shows nothing does not exist.
    return {minute: at for minute, at in instants.items() if minute // 1440 in days}


class Occurrences(unittest.TestCase):
    def check(self, name, year):
        zone = zoneinfo.ZoneInfo(name)
        start = int(datetime.datetime(year, 1, 1, tzinfo=datetime.timezone.utc).timestamp())
        end = int(datetime.datetime(year + 1, 1, 1, tzinfo=datetime.timezone.utc).timestamp())
        chance = random.Random(name)
        schedules = [(chance.randrange(24), chance.randrange(60), [int(chance.random() < 0.3) for _ in range(7)])
                     for _ in range(SCHEDULES)]
        by_minute = collections.defaultdict(list)
        for number, (hour, minute, days) in enumerate(schedules):
            by_minute[hour * 60 + minute].append((number, days))

        # A margin at both ends, so that days that lie half outside are known whole.
        # The first day of 1970 was a Thursday.
        expected = [(at, number) for minute, at in shown_minutes(zone, start - 2 * 86400, end + 2 * 86400).items()
                    if start < at < end for number, days in by_minute[minute % 1440] if days[(minute // 1440 + 3) % 7]]
        lines = "".join(f"{hour} {minute} {' '.join(map(str, days))}\n" for hour, minute, days in schedules)
        said = subprocess.run([PROBE, str(start), str(end)], input=lines, capture_output=True, text=True, check=True,
                              env={**os.environ, "TZ": name}).stdout
        found = [tuple(map(int, line.split())) for line in said.splitlines()]
        self.assertGreater(len(found), 300 * SCHEDULES * 0.25)
        if found != sorted(expected):
            self.fail(f"{name}: too many {sorted(set(found) - set(expected))[:5]}, "
                      f"missing {sorted(set(expected) - set(found))[:5]}, {len(found)} for {len(expected)}")


for one, its_year in YEARS.items():
    setattr(Occurrences, "test_" + one.replace("/", "_"), lambda self, one=one, its_year=its_year: self.check(one, its_year))

if __name__ == "__main__":
    unittest.main()
