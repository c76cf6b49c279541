#pragma once

namespace quorel {

/// Sends the lines of MOLLog to the standard error stream and, where there is one, to the system journal. Control
/// characters are replaced, so that what comes from outside cannot forge a line. `program` is the name the journal
/// shows; it must outlive the log. Call it before threads start.
void installJournalLog(const char* program);

}  // namespace quorel
