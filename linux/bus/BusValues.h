#pragma once

#include <systemd/sd-bus.h>

#include <optional>

#include "model/Value.h"

namespace quorel {

// Values in messages: flags as `b`, integers as `x`, reals as `d`, texts as `s`, arrays as `av`, dictionaries as
// `a{sv}`. There is no place for others. Texts are made fit for the bus (plainLines): sd-bus refuses a whole message
// for one character. Writing answers as sd-bus does, below 0 for a failure.

int writeDictionary(sd_bus_message* message, const Dictionary& dictionary);
/// As `aa{sv}`. Whatever is no dictionary is left out.
int writeDictionaries(sd_bus_message* message, const Array& dictionaries);

/// Answer a call with one of these.
int replyDictionary(sd_bus_message* call, const Dictionary& dictionary);
int replyDictionaries(sd_bus_message* call, const Array& dictionaries);

/// What comes next, arrays of any such type among it; nothing where the message ends, holds something else or is nested
/// deeper than anything of ours.
std::optional<Value> readValue(sd_bus_message* message);

}  // namespace quorel
