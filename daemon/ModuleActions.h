#pragma once

#include "scheduler/World.h"

namespace quorel {

/// The actions that modules bring along. None has a program yet.
class ModuleActions : public Actions {
public:
    std::optional<Module> module(const std::string&) const override { return {}; }
    void start(const Occurrence&) override {}
    void find(const Occurrence&) override {}
};

}  // namespace quorel
