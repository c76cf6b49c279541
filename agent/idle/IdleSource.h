#pragma once

#include <functional>
#include <optional>

#include "scheduler/Instant.h"

namespace quorel {

/// One way of telling for how long nobody has used this session. One thread, that of the loop; nothing here may wait.
class IdleSource {
public:
    /// Nothing: this one cannot tell, now or here.
    using Told = std::function<void(std::optional<Seconds>)>;

    virtual ~IdleSource() = default;
    /// `told` is called once, perhaps before this returns. Whoever asks gives up after two seconds, and may ask anew:
    /// then the earlier question needs no answer any more.
    virtual void ask(Told told) = 0;
};

}  // namespace quorel
