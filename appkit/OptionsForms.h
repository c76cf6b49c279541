#pragma once

#include <memory>
#include <string>

#include "configurator/VXDescribedPlugIn.h"

namespace quorel::appkit {

/// Forms of described actions in the edit sheet, as wide as it offers, in the pane's language. Main thread.
class OptionsForms : public quorel::OptionsForms {
public:
    std::unique_ptr<OptionsForm> formOf(const ActionDescription &action) override;
    std::string language() const override;
};

}  // namespace quorel::appkit
