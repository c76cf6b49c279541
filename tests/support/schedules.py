"""Schedules as the pane saves them."""
SLEEP, WAKE_UP, SHUT_DOWN = (f"com.quorel.plugin.{name}" for name in ("Sleep", "WakeUp", "ShutDown"))


def schedule(action, time, days=("Monday", "Tuesday"), **parameters):
    """At "23:15". Names of parameters have "_" for a blank."""
    hour, minute = time.split(":")
    return {"Is Enabled": 1, "Action Type": action, "Action Hour": hour, "Action Minute": minute,
            "Action Parameters": {key.replace("_", " "): parameters[key] for key in parameters},
            **{f"Active On {day}": True for day in days}}
