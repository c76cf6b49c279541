#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quorel {

/// Sends the lines of MOLLog to the standard error stream and, where there is one, to the system journal. Control
/// characters are replaced, so that what comes from outside cannot forge a line. `program` is the name the journal
/// shows; it must outlive the log. Call it before threads start.
void installJournalLog(const char* program);

/// Writes an entry that programs can find: by its message's id, 32 hexadecimal digits, and by fields, whose names are
/// capitals, digits and underscores. Outside of a service the message alone goes to the standard error stream. Control
/// characters in the message are replaced.
void writeJournalEntry(std::string_view messageId, std::string_view message,
                       const std::vector<std::pair<std::string_view, std::string>>& fields);

}  // namespace quorel
