#pragma once

namespace quorel {

/// Whether this was called in a graphical session that has no agent: there nobody warns, or tells how long nobody has
/// used the computer.
bool isAgentMissing();

}  // namespace quorel
